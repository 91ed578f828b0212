// SPDX-License-Identifier: MIT
// Error reports and the three exported queries for them.
#include "errors.h"

#include <cerrno>

#include "core_entries.h"
#include "qwport.h"

std::atomic<int32_t> portlib_last_error{0};

namespace {

// Some C run-times fail without an error number, and a failure must not look like a success.
int32_t error_number(int32_t code) { return code == 0 ? EINVAL : code; }

}  // namespace

int32_t portlib_report_errno(int32_t code) {
  code = error_number(code);
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

int32_t portlib_record_errno(int32_t code) { return portlib_report_errno(portlib_keep_error(error_number(code))); }

int32_t IERRNO(void) { return portlib_last_error.load(std::memory_order_relaxed); }

int32_t GETLASTERROR(void) { return errno; }
