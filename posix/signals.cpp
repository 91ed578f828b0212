// SPDX-License-Identifier: MIT
// Signals, the alarm and waiting for either. Signals have the numbers that PXFCONST gives.
#include "alarm_clock.h"
#include "core_entries.h"
#include "handle.h"
#include "posix.h"
#include "qwport.h"
#include "signal_table.h"

namespace {

// What the host does not have, kept for the next PXFSIGACTION to give back.
struct KeptFields {
  int32_t sa_mask;
  int32_t sa_flags;
};
constexpr int32_t signal_limit = 23;
KeptFields kept_fields[signal_limit];

bool can_be_handled(int32_t signal) { return 0 < signal && signal < signal_limit && signal != portlib_kill_signal; }

// Whether a record's handler is an action, or the handle of a procedure, which is then given out.
bool read_handler(const SigactionRecord &action, PxfProcedure *&procedure) {
  procedure = nullptr;
  if (action.sa_handler == portlib_default_action || action.sa_handler == portlib_ignore_signal) return true;
  procedure = pxf_find_procedure(static_cast<int32_t>(action.sa_handler));
  return procedure != nullptr;
}

// What a value of the core runtime is to PXFSIGACTION: an action, or a handle. A handler that was not set as a
// procedure with the number by address counts as the default action.
int64_t handler_of(int32_t signal, intptr_t value) {
  if (value == portlib_ignore_signal) return value;
  const SignalHandler procedure = portlib_handler_behind(signal, value);
  return procedure == nullptr ? portlib_default_action : pxf_register_procedure(procedure);
}

// Whether a process exists is told by whether it can be opened.
bool process_exists(int32_t pid) {
  const OwnedHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(pid)));
  return process != nullptr || GetLastError() == ERROR_ACCESS_DENIED;
}

bool is_process_missing() { return GetLastError() == ERROR_INVALID_PARAMETER; }

void ring() { portlib_raise_signal(portlib_alarm_signal); }

}  // namespace

void PXFSIGACTION(const int32_t *isig, const int32_t *jsigact, const int32_t *josigact, int32_t *ierror) {
  const int32_t signal = *isig;
  if (!can_be_handled(signal)) return pxf_fail(ierror, EINVAL);
  const SigactionRecord *wanted = *jsigact == 0 ? nullptr : pxf_record<SigactionRecord>(*jsigact, ierror);
  if (wanted == nullptr && *jsigact != 0) return;
  SigactionRecord *old = *josigact == 0 ? nullptr : pxf_record<SigactionRecord>(*josigact, ierror);
  if (old == nullptr && *josigact != 0) return;
  PxfProcedure *procedure = nullptr;
  if (wanted != nullptr && !read_handler(*wanted, procedure)) return pxf_fail(ierror, EINVAL);

  // The core runtime tells a handler only when it gets another one.
  const intptr_t previous = portlib_set_signal(signal, portlib_ignore_signal);
  if (previous == -1) return pxf_fail(ierror, EINVAL);
  const SigactionRecord previous_action{Tag::sigaction, handler_of(signal, previous), kept_fields[signal].sa_mask,
                                        kept_fields[signal].sa_flags};
  if (wanted == nullptr) {
    portlib_set_signal(signal, previous);
  } else {
    if (procedure != nullptr) {
      portlib_handle_signal(signal, procedure, signal);
    } else {
      portlib_set_signal(signal, static_cast<intptr_t>(wanted->sa_handler));
    }
    kept_fields[signal] = {wanted->sa_mask, wanted->sa_flags};
  }
  if (old != nullptr) *old = previous_action;
  *ierror = 0;
}

void PXFKILL(const int32_t *ipid, const int32_t *isig, int32_t *ierror) {
  constexpr int32_t existence_test = 0;
  if (*isig == existence_test || *isig == portlib_kill_signal) {
    if (*isig == existence_test ? process_exists(*ipid) : portlib_terminate(*ipid)) {
      *ierror = 0;
    } else if (is_process_missing()) {
      pxf_fail(ierror, ESRCH);
    } else {
      pxf_fail_by_host(ierror);
    }
    return;
  }
  // Only its own process can have a signal delivered.
  const bool is_own = static_cast<DWORD>(*ipid) == GetCurrentProcessId();
  if (!is_own || !portlib_raise_signal(*isig)) return pxf_fail(ierror, EINVAL);
  *ierror = 0;
}

void PXFALARM(const int32_t *iseconds, int32_t *isecleft, int32_t *ierror) {
  if (*iseconds < 0) return pxf_fail(ierror, EINVAL);
  const int32_t seconds_left = portlib_set_alarm(*iseconds, ring, PendingAlarm::is_replaced);
  if (seconds_left < 0) return pxf_fail(ierror, ENOMEM);
  *isecleft = seconds_left;
  *ierror = 0;
}

void PXFPAUSE(int32_t *ierror) {
  portlib_wait_for_signal(INFINITE);
  pxf_fail(ierror, EINTR);
}

void PXFSLEEP(const int32_t *iseconds, int32_t *isecleft, int32_t *ierror) {
  if (*iseconds < 0) return pxf_fail(ierror, EINVAL);
  constexpr ULONGLONG second_ms = 1000;
  const uint32_t wait_ms = portlib_wait_milliseconds(*iseconds);
  const ULONGLONG end = GetTickCount64() + wait_ms;
  const bool was_interrupted = portlib_wait_for_signal(wait_ms);
  const ULONGLONG now = GetTickCount64();
  *isecleft = was_interrupted && now < end ? static_cast<int32_t>((end - now + second_ms - 1) / second_ms) : 0;
  *ierror = 0;
}
