// SPDX-License-Identifier: MIT
// The digits that a radix sort deals by. A digit is a byte, digit 0 the least significant.
#pragma once

#include <array>
#include <cstddef>

namespace qwport::sorting {

using DigitCounts = std::array<size_t, 256>;

// The first digit to deal by, so that a key agrees with few others from there on; a sample tells. keys: so many of
// key_size bytes each. last_digit: those below it do not count.
size_t choose_first_digit(const unsigned char *keys, size_t count, size_t key_size, size_t last_digit);

}  // namespace qwport::sorting
