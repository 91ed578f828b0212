// SPDX-License-Identifier: MIT
// The calling thread's floating-point control and status words, in the layout of the x87. Its exceptions stand in
// the order of MXCSR's, and the result of asking IEEE_FLAGS for flags is their sum.
#pragma once

#include <cstdint>

namespace qwport::floating_point {

// In the control word a set bit disables the trap; in the status word the exception has occurred.
constexpr uint32_t exception_invalid = 0x1;
constexpr uint32_t exception_denormal = 0x2;
constexpr uint32_t exception_zero_divide = 0x4;
constexpr uint32_t exception_overflow = 0x8;
constexpr uint32_t exception_underflow = 0x10;
constexpr uint32_t exception_inexact = 0x20;
constexpr uint32_t all_exceptions = 0x3F;

constexpr uint32_t precision_field = 0x300;
constexpr uint32_t precision_24 = 0;
constexpr uint32_t precision_53 = 0x200;
constexpr uint32_t precision_64 = 0x300;

constexpr uint32_t rounding_field = 0xC00;
constexpr uint32_t rounding_nearest = 0;
constexpr uint32_t rounding_down = 0x400;
constexpr uint32_t rounding_up = 0x800;
constexpr uint32_t rounding_to_zero = 0xC00;

constexpr uint32_t infinity_field = 0x1000;

uint32_t control_word();

// Sets the fields that the mask names. False, with errno ENOMEM and only rounding and exceptions set, if the
// thread has no room to keep the precision and infinity fields.
bool change_control_word(uint32_t value, uint32_t mask);

// Of SSE and x87 arithmetic.
uint32_t status_word();
void clear_status_word();

}  // namespace qwport::floating_point
