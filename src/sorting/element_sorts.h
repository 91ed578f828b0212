// SPDX-License-Identifier: MIT
// The sorts of SORTQQ, by what the elements are. Each leaves what the Shell sort leaves.
#pragma once

#include <cstddef>
#include <cstdint>

#include "element_types.h"

namespace qwport::sorting {

// Without memory it takes longer. type: one of the numeric types.
void sort_numbers(void *array, size_t count, ElementType type);

// The bits of single and double precision.
void sort_reals(uint32_t *reals, size_t count);
void sort_reals(uint64_t *reals, size_t count);

// In the order of memcmp. False if there is no memory for one element; the array is as it was then.
bool sort_strings(unsigned char *array, size_t count, size_t size);

}  // namespace qwport::sorting
