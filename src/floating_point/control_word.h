// SPDX-License-Identifier: MIT
// The calling thread's floating-point control and status words, in the C run-time's encoding.
#pragma once

#include <cstdint>

constexpr uint32_t rounding_field = 0x300;
constexpr uint32_t precision_field = 0x30000;
constexpr uint32_t infinity_field = 0x40000;

constexpr uint32_t rounding_nearest = 0;
constexpr uint32_t rounding_down = 0x100;
constexpr uint32_t rounding_up = 0x200;
constexpr uint32_t rounding_to_zero = 0x300;

constexpr uint32_t precision_64 = 0;
constexpr uint32_t precision_53 = 0x10000;
constexpr uint32_t precision_24 = 0x20000;

// As a mask bit, a set one disables the trap; as a status bit, the exception has occurred.
constexpr uint32_t exception_inexact = 0x1;
constexpr uint32_t exception_underflow = 0x2;
constexpr uint32_t exception_overflow = 0x4;
constexpr uint32_t exception_zero_divide = 0x8;
constexpr uint32_t exception_invalid = 0x10;
constexpr uint32_t exception_denormal = 0x80000;
constexpr uint32_t all_exceptions = 0x8001F;

uint32_t portlib_control_word();

// Sets the fields that the mask names.
void portlib_change_control_word(uint32_t value, uint32_t mask);

uint32_t portlib_status_word();
void portlib_clear_status_word();
