// SPDX-License-Identifier: MIT
// Arrays that are sorted, reversed, or sorted but for a few elements: one look tells, and little is left to do.
#pragma once

#include <algorithm>

#include "quick_sort.h"
#include "sort_keys.h"

namespace qwport::sorting {

// Merges sorted elements that were taken out with the sorted rest, from the end.
template <class Element, class Less>
void merge_back(Element *elements, size_t rest, const Element *taken, size_t taken_count, Less less) {
  size_t hole = rest + taken_count;
  while (taken_count > 0) {
    const bool from_rest = rest > 0 && less(taken[taken_count - 1], elements[rest - 1]);
    elements[--hole] = from_rest ? elements[--rest] : taken[--taken_count];
  }
}

// Takes out what breaks the order, up to the room; false if that is too much, the elements then standing in
// some order. An element that breaks the order is either too small itself, or the one before it too large.
template <class Element, class Less>
bool sort_strays(Element *elements, size_t count, size_t sorted, Element *taken, size_t room, Less less) {
  constexpr size_t fewest = 4;
  constexpr size_t one_in = 8;
  size_t rest = sorted;
  size_t taken_count = 0;
  size_t next = sorted;
  for (; next < count; ++next) {
    const Element element = elements[next];
    if (!less(element, elements[rest - 1])) {
      elements[rest++] = element;
      continue;
    }
    if (taken_count == room || taken_count > fewest + next / one_in) break;
    const bool is_stray = rest > 1 && less(element, elements[rest - 2]);
    taken[taken_count++] = is_stray ? element : std::exchange(elements[rest - 1], element);
  }
  if (next < count) {
    std::copy(taken, taken + taken_count, elements + rest);
    return false;
  }
  quick_sort(taken, taken_count, less);
  merge_back(elements, rest, taken, taken_count, less);
  return true;
}

// True if the elements are sorted now, as a few of them always are. Equal elements must be the same bits.
template <class Element, class Less> bool sort_by_existing_order(Element *elements, size_t count, Less less) {
  constexpr size_t room = 64;
  constexpr size_t one_in = 16;
  const Element *const first = elements;
  const auto *descent = std::adjacent_find(
      first, first + count, [less](const Element &left, const Element &right) { return less(right, left); });
  if (descent == first + count) return true;
  if (descent == first) {
    const auto *ascent = std::adjacent_find(
        first, first + count, [less](const Element &left, const Element &right) { return !less(right, left); });
    if (ascent == first + count) return std::reverse(elements, elements + count), true;
  }
  if (count <= longest_short_sort) return sort_short(elements, count, less), true;
  const auto sorted = static_cast<size_t>(descent - first) + 1;
  std::array<Element, room> few;
  if (count <= room * one_in) return sort_strays(elements, count, sorted, few.data(), room, less);
  const auto many = allocate_elements<Element>(count / one_in);
  return many != nullptr && sort_strays(elements, count, sorted, many.get(), count / one_in, less);
}

}  // namespace qwport::sorting
