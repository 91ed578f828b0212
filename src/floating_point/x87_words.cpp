// SPDX-License-Identifier: MIT
// The control and status words as they are.
#include "control_word.h"
#include "qwport.h"

using namespace qwport::floating_point;

namespace {

// The precision for each value of the field; the second one is reserved. LCWRQQ has no 53 bits; this is meant.
constexpr unsigned precision_shift = 8;
using Precisions = const uint32_t[4];
constexpr Precisions precisions = {precision_24, precision_64, precision_53, precision_64};
constexpr Precisions loaded_precisions = {precision_24, precision_64, precision_64, precision_64};

// Where there is no room for the precision the rest is set all the same.
void set_control_word(const int16_t *control, const Precisions &translated) {
  const uint32_t word = static_cast<uint16_t>(*control);
  const uint32_t precision = translated[(word & precision_field) >> precision_shift];
  change_control_word((word & ~precision_field) | precision,
                      all_exceptions | precision_field | rounding_field | infinity_field);
}

}  // namespace

void GETCONTROLFPQQ(int16_t *control) { *control = static_cast<int16_t>(control_word()); }

void SETCONTROLFPQQ(const int16_t *control) { set_control_word(control, precisions); }

void LCWRQQ(const int16_t *control) { set_control_word(control, loaded_precisions); }

void GETSTATUSFPQQ(int16_t *status) { *status = static_cast<int16_t>(status_word()); }

void SSWRQQ(int16_t *status) { GETSTATUSFPQQ(status); }

void CLEARSTATUSFPQQ() { clear_status_word(); }
