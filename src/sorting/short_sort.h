// SPDX-License-Identifier: MIT
// Sorts for a few elements.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace qwport::sorting {

constexpr size_t longest_short_sort = 24;

// Insertion, for elements that are nearly sorted.
template <class Element> void sort_by_insertion(Element *elements, size_t count) {
  for (size_t i = 1; i < count; ++i) {
    const Element taken = elements[i];
    size_t hole = i;
    for (; hole > 0 && taken < elements[hole - 1]; --hole) elements[hole] = elements[hole - 1];
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
