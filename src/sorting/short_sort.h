// SPDX-License-Identifier: MIT
// Sorts for a few elements.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace qwport::sorting {

constexpr size_t longest_short_sort = 24;

// Where elements are smaller than the one before them, by their keys, in the first block where any is: bit 0 stands for
// the block's first element. 0 if all are sorted. They are looked at without a branch for each.
template <class Element, class KeyOf> uint32_t find_descents(const Element *elements, size_t count, KeyOf key_of) {
  constexpr size_t block = 32;
  uint32_t descents = 0;
  auto last = key_of(elements[0]);
  for (size_t i = 1; i < count && descents == 0;) {
    const size_t end = std::min(count, i + block);
    for (uint32_t bit = 0; i < end; ++i, ++bit) {
      const auto key = key_of(elements[i]);
      descents |= static_cast<uint32_t>(key < last) << bit;
      last = key;
    }
  }
  return descents;
}

// Whether so few elements, with so many descents, are best sorted by insertion.
inline bool are_nearly_sorted(size_t count, uint32_t descents) {
  constexpr size_t few = 16;
  const uint32_t but_one = descents & (descents - 1);
  return count <= few && (but_one & (but_one - 1)) == 0;
}

// Insertion from the first descent on. There is one.
template <class Element, class KeyOf>
void sort_by_insertion(Element *elements, size_t count, uint32_t descents, KeyOf key_of) {
  for (size_t i = 1 + static_cast<size_t>(std::countr_zero(descents)); i < count; ++i) {
    const Element taken = elements[i];
    const auto key = key_of(taken);
    size_t hole = i;
    for (; hole > 0 && key < key_of(elements[hole - 1]); --hole) elements[hole] = elements[hole - 1];
    elements[hole] = taken;
  }
}

// Comparison counting: the place of each element is the number of elements that come before it. Equal ones keep
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

}  // namespace qwport::sorting
