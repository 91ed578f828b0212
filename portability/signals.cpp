// SPDX-License-Identifier: MIT
// Handling and raising signals. Fortran programs use the numbers of Unix; the core runtime delivers those of
// the host's C run-time.
#include "signals.h"

#include <atomic>
#include <cerrno>

#include <windows.h>

#include "core_entries.h"
#include "errors.h"
#include "qwport.h"

namespace {

constexpr int32_t signal_count = 16;
constexpr int32_t floating_point_signal = 8;
constexpr int32_t kill_signal = 9;

constexpr int32_t host_signals[signal_count] = {0, 0, 2, 0, 4, 0, 22, 0, 8, 9, 0, 11, 0, 0, 0, 15};

using UserHandler = void (*)(int32_t *signum);
std::atomic<UserHandler> user_handlers[signal_count];

// The core runtime's handler values besides a procedure's address.
constexpr intptr_t default_action = 0;
constexpr intptr_t ignore_signal = 1;

void dispatch(int32_t host_signal) {
  for (int32_t signum = 0; signum < signal_count; ++signum) {
    const UserHandler handler = user_handlers[signum];
    if (host_signals[signum] != host_signal || handler == nullptr) continue;
    handler(&signum);
    return;
  }
}

// A handler of this signal is called with two addresses where all others get the number: it reads neither.
void dispatch_floating_point() { dispatch(floating_point_signal); }

intptr_t dispatcher_of(int32_t host_signal) {
  return host_signal == floating_point_signal ? reinterpret_cast<intptr_t>(dispatch_floating_point)
                                              : reinterpret_cast<intptr_t>(dispatch);
}

// The handle stays open, so that the host gives the number to no other process while this one lives.
bool terminate(int32_t pid) {
  constexpr UINT exit_code = kill_signal;
  HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, static_cast<DWORD>(pid));
  return process != nullptr && TerminateProcess(process, exit_code);
}

}  // namespace

int32_t portlib_host_signal(int32_t signum) { return 0 <= signum && signum < signal_count ? host_signals[signum] : 0; }

intptr_t SIGNAL(const int32_t *signum, void (*proc)(int32_t *signum), const int32_t *flag) {
  const int32_t host_signal = portlib_host_signal(*signum);
  if (host_signal == 0 || *flag > ignore_signal) return portlib_report_errno(EINVAL);
  if (*flag == default_action || *flag == ignore_signal) return core::for__signal(host_signal, intptr_t{*flag});
  user_handlers[*signum] = proc;
  return core::for__signal(host_signal, dispatcher_of(host_signal));
}

intptr_t SIGNALQQ(const int32_t *sig, void (*func)(int32_t sig)) {
  return core::for__signal(*sig, reinterpret_cast<intptr_t>(func));
}

int32_t RAISEQQ(const int32_t *sig) { return core::for__raise(*sig); }

int32_t KILL(const int32_t *pid, const int32_t *signum) {
  const int32_t host_signal = portlib_host_signal(*signum);
  if (host_signal == kill_signal) {
    if (terminate(*pid)) return 0;
    portlib_map_os_error();
    portlib_last_error = errno;
    return errno;
  }
  // Only its own process can have a signal delivered.
  const bool is_own = host_signal != 0 && static_cast<DWORD>(*pid) == GetCurrentProcessId();
  if (is_own && core::for__raise(host_signal) == 0) return 0;
  return portlib_record_errno(EINVAL);
}
