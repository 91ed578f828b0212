// SPDX-License-Identifier: MIT
// Control and status words in the 16-bit layout of the x87.
#include <fenv.h>

#include "control_word.h"
#include "qwport.h"

namespace {

// A bit here, in the C run-time's words, and among the flags of <fenv.h>.
struct Bit {
  uint32_t x87;
  uint32_t runtime;
  int flag;
};

#ifdef FE_DENORMAL
constexpr int denormal_flag = FE_DENORMAL;
#else
constexpr int denormal_flag = 0;
#endif
constexpr int all_flags = FE_ALL_EXCEPT | denormal_flag;

constexpr Bit exception_bits[] = {
    {0x01, exception_invalid, FE_INVALID},       {0x02, exception_denormal, denormal_flag},
    {0x04, exception_zero_divide, FE_DIVBYZERO}, {0x08, exception_overflow, FE_OVERFLOW},
    {0x10, exception_underflow, FE_UNDERFLOW},   {0x20, exception_inexact, FE_INEXACT},
};
constexpr uint32_t x87_infinity = 0x1000;

constexpr uint32_t x87_rounding = 0xC00;
constexpr unsigned rounding_shift = 2;

constexpr uint32_t x87_precision = 0x300;
constexpr uint32_t x87_precision_24 = 0;
constexpr uint32_t x87_precision_53 = 0x200;
constexpr uint32_t x87_precision_64 = 0x300;

constexpr uint32_t all_fields = all_exceptions | rounding_field | precision_field | infinity_field;

uint32_t x87_exceptions(uint32_t word) {
  uint32_t translated = 0;
  for (const Bit &bit : exception_bits) translated |= (word & bit.runtime) != 0 ? bit.x87 : 0;
  return translated;
}

uint32_t x87_control_word(uint32_t word) {
  const uint32_t precision = word & precision_field;
  return x87_exceptions(word) | ((word & infinity_field) != 0 ? x87_infinity : 0) |
         (precision == precision_53   ? x87_precision_53
          : precision == precision_24 ? x87_precision_24
                                      : x87_precision_64) |
         (word & rounding_field) << rounding_shift;
}

// All fields but the precision.
uint32_t runtime_control_word(uint32_t word) {
  uint32_t translated = (word & x87_rounding) >> rounding_shift;
  for (const Bit &bit : exception_bits) translated |= (word & bit.x87) != 0 ? bit.runtime : 0;
  if ((word & x87_infinity) != 0) translated |= infinity_field;
  return translated;
}

uint32_t word_of(const int16_t *argument) { return static_cast<uint16_t>(*argument); }

}  // namespace

void GETCONTROLFPQQ(int16_t *control) { *control = static_cast<int16_t>(x87_control_word(portlib_control_word())); }

void SETCONTROLFPQQ(const int16_t *control) {
  const uint32_t word = word_of(control);
  const uint32_t precision = word & x87_precision;
  const uint32_t translated = precision == x87_precision_24   ? precision_24
                              : precision == x87_precision_53 ? precision_53
                                                              : precision_64;
  portlib_change_control_word(runtime_control_word(word) | translated, all_fields);
}

// A request for 53 bits gives 64 here; this is meant.
void LCWRQQ(const int16_t *control) {
  const uint32_t word = word_of(control);
  const uint32_t translated = (word & x87_precision) == x87_precision_24 ? precision_24 : precision_64;
  portlib_change_control_word(runtime_control_word(word) | translated, all_fields);
}

void GETSTATUSFPQQ(int16_t *status) {
  const int raised = fetestexcept(all_flags);
  uint32_t word = 0;
  for (const Bit &bit : exception_bits) word |= (raised & bit.flag) != 0 ? bit.x87 : 0;
  *status = static_cast<int16_t>(word);
}

void SSWRQQ(int16_t *status) { *status = static_cast<int16_t>(x87_exceptions(portlib_status_word())); }

void CLEARSTATUSFPQQ() { feclearexcept(all_flags); }
