// SPDX-License-Identifier: MIT
// What the routines for characters of Fortran units share.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core_entries.h"

namespace qwport::units {

constexpr int32_t standard_input_unit = 5;
constexpr int32_t standard_output_unit = 6;

// The core runtime's answers besides a character.
constexpr int32_t core_end_of_file = -2;
constexpr int32_t core_invalid = -22;

// Reads a character into a variable's first place. Result: negative for the end of the file, a failure, and a
// variable without a place.
inline int32_t read_character(int32_t unit, char *c, size_t c_len) {
  if (c_len == 0) return core_invalid;
  const int32_t answer = core::__msportlib_d_readchar(unit, c, c_len);
  if (answer >= 0) *c = static_cast<char>(answer);
  return answer;
}

// Writes the first character of a text. Characters from 128 on are passed as negative numbers.
inline int32_t write_character(int32_t unit, const char *c, size_t c_len) {
  if (c_len == 0) return core_invalid;
  return core::__msportlib_d_writechar(unit, static_cast<signed char>(*c));
}

}  // namespace qwport::units
