// SPDX-License-Identifier: MIT
// Handling and raising signals. Fortran programs use the numbers of Unix; the core runtime delivers those of
// the host's C run-time.
#include <cerrno>

#include <windows.h>

#include "core_entries.h"
#include "errors.h"
#include "qwport.h"
#include "signal_table.h"

namespace {

constexpr int32_t host_signals[] = {0, 0, 2, 0, 4, 0, 22, 0, 8, 9, 0, 11, 0, 0, 0, 15};

// The host's number of a signal, or 0 if it has none.
int32_t host_signal_of(int32_t signum) {
  constexpr int32_t signal_count = sizeof host_signals / sizeof *host_signals;
  return 0 <= signum && signum < signal_count ? host_signals[signum] : 0;
}

}  // namespace

intptr_t SIGNAL(const int32_t *signum, void (*proc)(int32_t *signum), const int32_t *flag) {
  const int32_t host_signal = host_signal_of(*signum);
  if (host_signal == 0 || *flag > portlib_ignore_signal) return portlib_report_errno(EINVAL);
  if (*flag < 0) return portlib_handle_signal(host_signal, proc, *signum);
  return portlib_set_host_signal(host_signal, *flag);  // the default action, or to ignore it
}

intptr_t SIGNALQQ(const int32_t *sig, void (*func)(int32_t sig)) {
  return portlib_set_host_signal(*sig, reinterpret_cast<intptr_t>(func));
}

int32_t RAISEQQ(const int32_t *sig) { return core::for__raise(*sig); }

int32_t KILL(const int32_t *pid, const int32_t *signum) {
  const int32_t host_signal = host_signal_of(*signum);
  if (host_signal == portlib_kill_signal) {
    // The handle stays open, so that the host gives the number to no other process while this one lives.
    return portlib_terminate(*pid).release() != nullptr ? 0 : portlib_record_os_error();
  }
  // Only its own process can have a signal delivered.
  const bool is_own = host_signal != 0 && static_cast<DWORD>(*pid) == GetCurrentProcessId();
  if (is_own && portlib_raise_signal(host_signal)) return 0;
  return portlib_record_errno(EINVAL);
}
