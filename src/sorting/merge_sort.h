// SPDX-License-Identifier: MIT
// Merge sort, in which equal elements keep their order.
#pragma once

#include <algorithm>
#include <cstring>

#include "quick_sort.h"

namespace qwport::sorting {

// Merges two sorted parts that follow one another. other: room for the first.
template <class Element, class Less>
void merge(Element *elements, size_t middle, size_t count, Element *other, Less less) {
  if (middle >= count || !less(elements[middle], elements[middle - 1])) return;
  std::copy(elements, elements + middle, other);
  const Element *left = other;
  const Element *const left_end = other + middle;
  const Element *right = elements + middle;
  const Element *const right_end = elements + count;
  while (left != left_end && right != right_end) {
    const bool takes_right = less(*right, *left);
    *elements++ = takes_right ? *right : *left;
    right += static_cast<size_t>(takes_right);
    left += static_cast<size_t>(!takes_right);
  }
  std::copy(left, left_end, elements);
}

template <class Element, class Less> void merge_sort(Element *elements, size_t count, Element *other, Less less) {
  for (size_t start = 0; start < count; start += longest_short_sort) {
    sort_short(elements + start, std::min(longest_short_sort, count - start), less);
  }
  for (size_t length = longest_short_sort; length < count; length *= 2) {
    for (size_t start = 0; start < count; start += 2 * length) {
      merge(elements + start, length, std::min(2 * length, count - start), other, less);
    }
  }
}

}  // namespace qwport::sorting
