// SPDX-License-Identifier: MIT
// Keys in ascending order, by the sort that suits how many there are and how they stand.
#pragma once

#include "existing_order.h"
#include "quick_sort.h"
#include "radix_sort.h"

namespace qwport::sorting {

// From here on dealing is faster than parting.
template <class Key> constexpr size_t radix_sort_from = sizeof(Key) * 150;

// last_digit: 0, or the first digit of keys whose lower digits are for the order to judge.
template <class Key, class Less> void sort_keys(Key *keys, size_t count, size_t last_digit, Less less) {
  if (sort_by_existing_order(keys, count, less)) return;
  if (count >= radix_sort_from<Key> && radix_sort(keys, count, last_digit, less)) return;
  quick_sort(keys, count, less);
}

template <class Key> void sort_keys(Key *keys, size_t count) { sort_keys(keys, count, 0, KeyOrder{}); }

}  // namespace qwport::sorting
