// SPDX-License-Identifier: MIT
// What the PXF routines give in ierror, and the results that are LOGICAL.
#pragma once

#include <cerrno>
#include <cstdint>

#include "errors.h"

namespace qwport::posix {

// Error numbers of the interface itself, beside those of errno.
constexpr int32_t end_of_file = -1;
constexpr int32_t no_such_name = 126;
constexpr int32_t no_such_handle = 127;
constexpr int32_t text_was_cut = 129;

constexpr int32_t logical_true = -1;
constexpr int32_t logical_false = 0;

inline void fail(int32_t *ierror, int32_t error, int32_t errno_value) {
  *ierror = error;
  portlib_report_errno(errno_value);
}

inline void fail(int32_t *ierror, int32_t error) { fail(ierror, error, error); }

// The calling thread's last operating-system error as the result.
inline void fail_by_host(int32_t *ierror) {
  portlib_map_os_error();
  *ierror = errno;
}

// A failed call's errno as the result; never 0, also where the C run-time has set nothing.
inline void fail_by_errno(int32_t *ierror) {
  const int32_t error = errno;
  fail(ierror, error == 0 ? EINVAL : error);
}

// The result of a C run-time call that sets errno when it fails.
inline void settle(int32_t *ierror, bool done) {
  if (!done) return fail_by_errno(ierror);
  *ierror = 0;
}

}  // namespace qwport::posix
