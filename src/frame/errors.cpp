// SPDX-License-Identifier: MIT
// Error reports and the three exported queries for them.
#include "errors.h"

#include <cerrno>

#include "core_entries.h"
#include "qwport.h"

std::atomic<int32_t> portlib_last_error{0};

int32_t portlib_report_errno(int32_t code) {
  errno = code;
  core::for_errsns_load(0, code, 0, 0, 0);
  return code;
}

int32_t portlib_fail(int32_t code) {
  portlib_report_errno(code);
  return 0;
}

int32_t portlib_keep_error(int32_t code) {
  portlib_last_error.store(code, std::memory_order_relaxed);
  return code;
}

int32_t portlib_record_errno(int32_t code) { return portlib_report_errno(portlib_keep_error(code)); }

int32_t IERRNO(void) { return portlib_last_error.load(std::memory_order_relaxed); }

int32_t GETLASTERROR(void) { return errno; }
