// SPDX-License-Identifier: MIT
// The registers are read and written here: the C run-times' functions differ in what they cover, and the numbers
// of <fenv.h> in what they mean.
#include "control_word.h"

#include <cerrno>

#include <windows.h>
#include <xmmintrin.h>

namespace qwport::floating_point {

namespace {

constexpr unsigned mxcsr_mask_shift = 7;
constexpr unsigned mxcsr_rounding_shift = 3;  // the same two bits, further left

constexpr uint32_t mxcsr_fields(uint32_t word) {
  return (word & all_exceptions) << mxcsr_mask_shift | (word & rounding_field) << mxcsr_rounding_shift;
}

// ---- Fields that SSE lacks ----------------------------------------------------------------------
// Each thread has a cell of the host's for them; an empty one stands for what every thread begins with.

constexpr uint32_t kept_fields = precision_field | infinity_field;
constexpr uint32_t initial_settings = precision_64;

struct ThreadCell {
  DWORD index = TlsAlloc();
  ThreadCell() = default;
  ThreadCell(const ThreadCell &) = delete;
  ThreadCell &operator=(const ThreadCell &) = delete;
  ~ThreadCell() { TlsFree(index); }
};
const ThreadCell cell;

uint32_t kept_settings() {
  const DWORD error = GetLastError();  // which a look into the cell clears
  const auto kept = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(TlsGetValue(cell.index)));
  SetLastError(error);
  return kept ^ initial_settings;
}

bool keep_settings(uint32_t settings) {
  if (settings == kept_settings()) return true;  // also where there is no cell
  return TlsSetValue(cell.index, reinterpret_cast<void *>(uintptr_t{settings ^ initial_settings})) != 0;
}

// ---- The x87's flags ----------------------------------------------------------------------------

uint32_t x87_flags() {
  uint16_t status = 0;
  __asm__ volatile("fnstsw %0" : "=am"(status));
  return status & all_exceptions;
}

void clear_x87_flags() { __asm__ volatile("fnclex"); }

}  // namespace

uint32_t control_word() {
  const uint32_t mxcsr = _mm_getcsr();
  return (mxcsr >> mxcsr_mask_shift & all_exceptions) | (mxcsr >> mxcsr_rounding_shift & rounding_field) |
         kept_settings();
}

bool change_control_word(uint32_t value, uint32_t mask) {
  const uint32_t changed = mxcsr_fields(mask);
  _mm_setcsr((_mm_getcsr() & ~changed) | (mxcsr_fields(value) & changed));
  const uint32_t kept = (kept_settings() & ~mask) | (value & mask & kept_fields);
  if (keep_settings(kept)) return true;
  errno = ENOMEM;
  return false;
}

uint32_t status_word() { return (_mm_getcsr() & all_exceptions) | x87_flags(); }

void clear_status_word() {
  _mm_setcsr(_mm_getcsr() & ~all_exceptions);
  clear_x87_flags();
}

}  // namespace qwport::floating_point
