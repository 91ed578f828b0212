// SPDX-License-Identifier: MIT
// Keys in ascending order, by the sort that suits how many there are and how they stand. Without memory they
// are sorted in place. Numbers and byte strings share them, so that there is one for each width.
#pragma once

#include "sort_keys.h"

namespace qwport::sorting {

void sort_keys(uint32_t *keys, size_t count);
void sort_keys(uint64_t *keys, size_t count);
void sort_keys(WideKey *keys, size_t count);

// In the order of the keys with some bits flipped, as the signs of integers are.
void sort_narrow_keys(uint8_t *keys, size_t count, uint8_t flips);
void sort_narrow_keys(uint16_t *keys, size_t count, uint16_t flips);

// Keys whose lower halves ascend, as the places of elements do, or are of no matter.
void sort_keys_by_high_half(WideKey *keys, size_t count);

}  // namespace qwport::sorting
