// SPDX-License-Identifier: MIT
// Keys in ascending order, by the sort that suits how many there are and how they stand. Without memory they
// are sorted in place.
#pragma once

#include "existing_order.h"
#include "quick_sort.h"
#include "radix_sort.h"

namespace qwport::sorting {

void sort_keys(uint16_t *keys, size_t count);
void sort_keys(uint32_t *keys, size_t count);
void sort_keys(uint64_t *keys, size_t count);
void sort_keys(WideKey *keys, size_t count);

// last_digit: 0, or the first digit of keys whose lower digits are for the order to judge.
template <class Key, class Less> void sort_keys_by(Key *keys, size_t count, size_t last_digit, Less less) {
  constexpr size_t worth_dealing = sizeof(Key) * 150;
  if (sort_by_existing_order(keys, count, less)) return;
  if (count >= worth_dealing && radix_sort(keys, count, last_digit, less)) return;
  quick_sort(keys, count, less);
}

}  // namespace qwport::sorting
