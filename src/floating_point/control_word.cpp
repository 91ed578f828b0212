// SPDX-License-Identifier: MIT
#include "control_word.h"

#include <float.h>

namespace {

constexpr uint32_t processor_fields = rounding_field | all_exceptions;
constexpr uint32_t kept_fields = precision_field | infinity_field;

// The processor has neither field, and the C run-time takes a request to change one for a programming error.
thread_local uint32_t kept_settings = precision_64;

}  // namespace

// _controlfp and _controlfp_s would leave the denormal mask alone.
uint32_t portlib_control_word() { return (_control87(0, 0) & processor_fields) | kept_settings; }

void portlib_change_control_word(uint32_t value, uint32_t mask) {
  kept_settings = (kept_settings & ~mask) | (value & mask & kept_fields);
  _control87(value, mask & processor_fields);
}

uint32_t portlib_status_word() { return _statusfp(); }

void portlib_clear_status_word() { _clearfp(); }
