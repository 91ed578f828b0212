// SPDX-License-Identifier: MIT
// Counting sort of numbers of one or two bytes: how often each value occurs is all there is to know.
#pragma once

#include <algorithm>
#include <limits>

#include "sort_keys.h"

namespace qwport::sorting {

template <class Number> constexpr size_t values_of = size_t{std::numeric_limits<Number>::max()} + 1;

// counts: a zero for every value that there is.
template <class Number> void counting_sort(Number *numbers, size_t count, size_t *counts) {
  for (size_t i = 0; i < count; ++i) ++counts[numbers[i]];
  for (size_t value = 0; value < values_of<Number>; ++value) {
    numbers = std::fill_n(numbers, counts[value], static_cast<Number>(value));
  }
}

}  // namespace qwport::sorting
