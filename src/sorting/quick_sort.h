// SPDX-License-Identifier: MIT
// Quicksort in place, without branches that depend on the elements: a processor guesses every second of those
// wrong, which costs more than all moves.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

#include "sort_keys.h"

namespace qwport::sorting {

constexpr size_t longest_short_sort = 24;

// Comparison counting: an element's place is the number of elements that come before it. Equal ones keep
// their order.
template <class Element, class Less> void sort_short(Element *elements, size_t count, Less less) {
  std::array<Element, longest_short_sort> taken;
  std::array<uint32_t, longest_short_sort> places;
  for (size_t i = 0; i < count; ++i) {
    const Element element = elements[i];
    taken[i] = element;
    uint32_t place = 0;
    for (size_t j = 0; j < i; ++j) {
      const auto comes_first = static_cast<uint32_t>(less(element, taken[j]));
      places[j] += comes_first;
      place += 1 - comes_first;
    }
    places[i] = place;
  }
  for (size_t i = 0; i < count; ++i) elements[places[i]] = taken[i];
}

template <class Element, class Less>
const Element &median(const Element &a, const Element &b, const Element &c, Less less) {
  if (less(b, a)) return median(b, a, c, less);
  return less(c, b) ? (less(c, a) ? a : c) : b;
}

// From three elements, or nine of a long array.
template <class Element, class Less> Element choose_pivot(const Element *elements, size_t count, Less less) {
  constexpr size_t long_count = 200;
  const size_t step = count / 9;
  const auto median_at = [&](size_t first, size_t distance) -> const Element & {
    return median(elements[first], elements[first + distance], elements[first + 2 * distance], less);
  };
  if (count < long_count) return median_at(count / 4, count / 4);
  return median(median_at(0, step), median_at(3 * step, step), median_at(6 * step, step), less);
}

// Moves the elements that belong to the left to the front, and tells how many they are.
template <class Element, class Belongs> size_t partition(Element *elements, size_t count, Belongs belongs_left) {
  size_t left = 0;
  for (size_t i = 0; i < count; ++i) {
    const Element element = elements[i];
    elements[i] = elements[left];
    elements[left] = element;
    left += static_cast<size_t>(belongs_left(element));
  }
  return left;
}

template <class Element, class Less> void quick_sort_to_depth(Element *elements, size_t count, Less less, int depth) {
  while (count > longest_short_sort) {
    if (depth-- == 0) {  // pivots near the ends, time and again: heap sort is slower, but never much
      std::make_heap(elements, elements + count, less);
      return std::sort_heap(elements, elements + count, less);
    }
    const Element pivot = choose_pivot(elements, count, less);
    size_t left = partition(elements, count, [&](const Element &element) { return less(element, pivot); });
    if (left == 0) {  // the pivot is the least: what equals it is in place
      left = partition(elements, count, [&](const Element &element) { return !less(pivot, element); });
    } else {
      quick_sort_to_depth(elements, left, less, depth);
    }
    elements += left;
    count -= left;
  }
  sort_short(elements, count, less);
}

template <class Element, class Less> void quick_sort(Element *elements, size_t count, Less less) {
  quick_sort_to_depth(elements, count, less, 2 * static_cast<int>(std::bit_width(count)));
}

}  // namespace qwport::sorting
