// SPDX-License-Identifier: MIT
// The sorts of keys, one for each width: numbers and byte strings share them.
#include "key_sort.h"

namespace qwport::sorting {

void sort_keys(uint16_t *keys, size_t count) { sort_keys_by(keys, count, 0, KeyOrder{}); }
void sort_keys(uint32_t *keys, size_t count) { sort_keys_by(keys, count, 0, KeyOrder{}); }
void sort_keys(uint64_t *keys, size_t count) { sort_keys_by(keys, count, 0, KeyOrder{}); }
void sort_keys(WideKey *keys, size_t count) { sort_keys_by(keys, count, 0, KeyOrder{}); }

}  // namespace qwport::sorting
