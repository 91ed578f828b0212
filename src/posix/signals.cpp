// SPDX-License-Identifier: MIT
// Signals, the alarm and waiting for either. Signals have the numbers that PXFCONST gives.
#include <algorithm>
#include <atomic>
#include <csignal>
#include <iterator>

#include "alarm_clock.h"
#include "handle.h"
#include "handles.h"
#include "qwport.h"
#include "signal_table.h"

using namespace qwport::posix;

namespace {

// What the host does not have, kept for the next PXFSIGACTION to give back.
struct KeptFields {
  int32_t sa_mask;
  int32_t sa_flags;
};
std::atomic<KeptFields> kept_fields[portlib_signal_limit];

// The handler that was told last, and the number that it is called with: SIGNAL's, if SIGNAL has set it.
struct ToldHandler {
  std::atomic<Procedure *> procedure;
  std::atomic<int32_t> number;
};
ToldHandler told_handlers[portlib_signal_limit];

// Those that PXFCONST knows, but for SIGKILL.
constexpr int32_t signals_to_handle[] = {SIGINT,  SIGILL,   SIGFPE, SIGSEGV, portlib_alarm_signal,
                                         SIGTERM, SIGBREAK, SIGABRT};

bool can_be_handled(int32_t signal) {
  return std::find(std::begin(signals_to_handle), std::end(signals_to_handle), signal) != std::end(signals_to_handle);
}

// Whether a record's handler is an action, or the handle of a procedure, which is then given out.
bool read_handler(const SigactionRecord &record, Procedure *&procedure) {
  procedure = nullptr;
  if (record.sa_handler == portlib_default_action || record.sa_handler == portlib_ignore_signal) return true;
  procedure = find_procedure(static_cast<int32_t>(record.sa_handler));
  return procedure != nullptr;
}

bool set_action(int32_t signal, const SigactionRecord &record, Procedure *procedure) {
  // A handler of SIGNAL that is put back is called with SIGNAL's number again.
  const ToldHandler &told = told_handlers[signal];
  const int32_t number = procedure == told.procedure ? told.number.load() : signal;
  const intptr_t previous = procedure == nullptr ? portlib_set_signal(signal, static_cast<intptr_t>(record.sa_handler))
                                                 : portlib_handle_signal(signal, procedure, number);
  return previous != portlib_no_such_signal;
}

// An action, or the handle of a procedure. What was not set as a procedure with the number by address counts as the
// default action. 0 and ENOHANDLE in ierror when no handle can be made.
int64_t handler_field(const SignalAction &action, int32_t *ierror) {
  if (action.handler == nullptr) {
    return action.value == portlib_ignore_signal ? portlib_ignore_signal : portlib_default_action;
  }
  const int32_t handle = register_procedure(action.handler);
  if (handle == 0) fail(ierror, no_such_handle, EINVAL);
  return handle;
}

// An ended process can be opened as long as somebody has it open.
bool is_running(int32_t pid) {
  const OwnedHandle process = portlib_open_process(pid, SYNCHRONIZE);
  if (process == nullptr) return GetLastError() == ERROR_ACCESS_DENIED;
  return WaitForSingleObject(process.get(), 0) == WAIT_TIMEOUT;
}

void ring() { portlib_raise_signal(portlib_alarm_signal); }

}  // namespace

void PXFSIGACTION(const int32_t *isig, const int32_t *jsigact, const int32_t *josigact, int32_t *ierror) {
  const int32_t signal = *isig;
  if (!can_be_handled(signal)) return fail(ierror, EINVAL);
  const SigactionRecord *wanted = *jsigact == 0 ? nullptr : record_of<SigactionRecord>(*jsigact, ierror);
  if (wanted == nullptr && *jsigact != 0) return;
  SigactionRecord *old = *josigact == 0 ? nullptr : record_of<SigactionRecord>(*josigact, ierror);
  if (old == nullptr && *josigact != 0) return;
  Procedure *procedure = nullptr;
  if (wanted != nullptr && !read_handler(*wanted, procedure)) return fail(ierror, EINVAL);

  const SignalAction before = portlib_signal_action(signal);
  const KeptFields fields_before = kept_fields[signal];
  *ierror = 0;
  const int64_t handler_before = old == nullptr ? 0 : handler_field(before, ierror);
  if (*ierror != 0) return;
  if (old != nullptr && before.handler != nullptr) {
    told_handlers[signal].number = before.number;
    told_handlers[signal].procedure = before.handler;
  }
  if (wanted != nullptr) {
    if (!set_action(signal, *wanted, procedure)) return fail(ierror, EINVAL);
    kept_fields[signal] = {wanted->sa_mask, wanted->sa_flags};
  }
  if (old != nullptr) *old = {Tag::sigaction, handler_before, fields_before.sa_mask, fields_before.sa_flags};
}

void PXFKILL(const int32_t *ipid, const int32_t *isig, int32_t *ierror) {
  constexpr int32_t existence_test = 0;
  *ierror = 0;
  if (*isig == existence_test || *isig == portlib_kill_signal) {
    if (!is_running(*ipid)) return fail(ierror, ESRCH);
    if (*isig == portlib_kill_signal && portlib_terminate(*ipid) == nullptr) fail_by_host(ierror);
    return;
  }
  // Only its own process can have a signal delivered.
  const bool is_own = static_cast<DWORD>(*ipid) == GetCurrentProcessId();
  if (!is_own || !portlib_raise_signal(*isig)) fail(ierror, EINVAL);
}

void PXFALARM(const int32_t *iseconds, int32_t *isecleft, int32_t *ierror) {
  if (*iseconds < 0) return fail(ierror, EINVAL);
  const int32_t seconds_left = portlib_set_alarm(*iseconds, ring, PendingAlarm::is_replaced);
  if (seconds_left < 0) return fail(ierror, ENOMEM);
  *isecleft = seconds_left;
  *ierror = 0;
}

void PXFPAUSE(int32_t *ierror) {
  portlib_wait_for_signal(INFINITE);
  fail(ierror, EINTR);
}

void PXFSLEEP(const int32_t *iseconds, int32_t *isecleft, int32_t *ierror) {
  if (*iseconds < 0) return fail(ierror, EINVAL);
  constexpr ULONGLONG second_ms = 1000;
  const uint32_t wait_ms = portlib_wait_milliseconds(*iseconds);
  const ULONGLONG end = GetTickCount64() + wait_ms;
  const bool was_interrupted = portlib_wait_for_signal(wait_ms);
  const ULONGLONG now = GetTickCount64();
  *isecleft = was_interrupted && now < end ? static_cast<int32_t>((end - now + second_ms - 1) / second_ms) : 0;
  *ierror = 0;
}
