// SPDX-License-Identifier: MIT
#include "key_sort.h"

#include "existing_order.h"
#include "quick_sort.h"
#include "radix_sort.h"

namespace qwport::sorting {

namespace {

template <class Key> void sort_by_digits_from(Key *keys, size_t count, size_t last_digit) {
  constexpr size_t worth_dealing = sizeof(Key) * 150;
  if (sort_by_existing_order(keys, count)) return;
  if (count >= worth_dealing && radix_sort(keys, count, last_digit)) return;
  quick_sort(keys, count);
}

}  // namespace

void sort_keys(uint32_t *keys, size_t count) { sort_by_digits_from(keys, count, 0); }
void sort_keys(uint64_t *keys, size_t count) { sort_by_digits_from(keys, count, 0); }
void sort_keys(WideKey *keys, size_t count) { sort_by_digits_from(keys, count, 0); }
void sort_keys_by_high_half(WideKey *keys, size_t count) { sort_by_digits_from(keys, count, sizeof keys->low); }

}  // namespace qwport::sorting
