// SPDX-License-Identifier: MIT
#include "signal_table.h"

#include <atomic>

#include <windows.h>

#include "core_entries.h"
#include "module_hold.h"

namespace {

constexpr int32_t floating_point_signal = 8;

struct SignalEntry {
  std::atomic<intptr_t> value;
  std::atomic<SignalHandler> handler;
  std::atomic<int32_t> number;
};
SignalEntry signal_table[portlib_signal_limit];

bool is_in_table(int32_t host_signal) { return 0 <= host_signal && host_signal < portlib_signal_limit; }

// ---- Waiting for a handler ----------------------------------------------------------------------

SRWLOCK handled_lock = SRWLOCK_INIT;
CONDITION_VARIABLE handled_changed = CONDITION_VARIABLE_INIT;
uint32_t handled_count = 0;

void count_handled_signal() {
  AcquireSRWLockExclusive(&handled_lock);
  ++handled_count;
  ReleaseSRWLockExclusive(&handled_lock);
  WakeAllConditionVariable(&handled_changed);
}

// ---- Delivery -----------------------------------------------------------------------------------

void dispatch(int32_t host_signal) {
  if (!is_in_table(host_signal)) return;
  const SignalHandler handler = signal_table[host_signal].handler;
  if (handler == nullptr) return;
  int32_t number = signal_table[host_signal].number;
  handler(&number);
  count_handled_signal();
}

// A handler of this signal is called with two addresses where all others get the number: it reads neither.
void dispatch_floating_point() { dispatch(floating_point_signal); }

intptr_t dispatcher_of(int32_t host_signal) {
  return host_signal == floating_point_signal ? reinterpret_cast<intptr_t>(dispatch_floating_point)
                                              : reinterpret_cast<intptr_t>(dispatch);
}

// The default action is that of Unix: the program ends.
void raise_alarm() {
  const intptr_t value = signal_table[portlib_alarm_signal].value;
  if (value == portlib_default_action) TerminateProcess(GetCurrentProcess(), portlib_alarm_signal);
  if (value != portlib_ignore_signal) dispatch(portlib_alarm_signal);
}

}  // namespace

intptr_t portlib_set_host_signal(int32_t host_signal, intptr_t value) {
  const intptr_t previous = core::for__signal(host_signal, value);
  const bool is_kept = is_in_table(host_signal) && host_signal != portlib_alarm_signal;
  if (previous != portlib_no_such_signal && is_kept) signal_table[host_signal].value = value;
  return previous;
}

intptr_t portlib_set_signal(int32_t signal, intptr_t value) {
  const bool is_handler = value != portlib_default_action && value != portlib_ignore_signal;
  if (is_handler && !portlib_pin_library()) return portlib_no_such_signal;
  if (signal == portlib_alarm_signal) return signal_table[signal].value.exchange(value);
  return portlib_set_host_signal(signal, value);
}

intptr_t portlib_handle_signal(int32_t signal, SignalHandler handler, int32_t number) {
  if (is_in_table(signal)) {
    signal_table[signal].number = number;
    signal_table[signal].handler = handler;
  }
  return portlib_set_signal(signal, dispatcher_of(signal));
}

SignalAction portlib_signal_action(int32_t host_signal) {
  const SignalEntry &entry = signal_table[host_signal];
  const intptr_t value = entry.value;
  if (value != dispatcher_of(host_signal)) return {value, nullptr, 0};
  return {value, entry.handler, entry.number};
}

bool portlib_raise_signal(int32_t host_signal) {
  if (host_signal != portlib_alarm_signal) return core::for__raise(host_signal) == 0;
  raise_alarm();
  return true;
}

bool portlib_wait_for_signal(uint32_t timeout_ms) {
  AcquireSRWLockExclusive(&handled_lock);
  const uint32_t count_before = handled_count;
  bool is_in_time = true;
  while (is_in_time && handled_count == count_before) {
    is_in_time = SleepConditionVariableSRW(&handled_changed, &handled_lock, timeout_ms, 0) != FALSE;
  }
  const bool was_handled = handled_count != count_before;
  ReleaseSRWLockExclusive(&handled_lock);
  return was_handled;
}

OwnedHandle portlib_open_process(int32_t pid, uint32_t access) {
  OwnedHandle process(OpenProcess(access | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(pid)));
  if (process == nullptr || GetProcessId(process.get()) == static_cast<DWORD>(pid)) return process;
  process.reset();
  SetLastError(ERROR_INVALID_PARAMETER);
  return process;
}

OwnedHandle portlib_terminate(int32_t pid) {
  OwnedHandle process = portlib_open_process(pid, PROCESS_TERMINATE);
  if (process == nullptr || TerminateProcess(process.get(), portlib_kill_signal)) return process;
  const DWORD error = GetLastError();
  process.reset();
  SetLastError(error);
  return process;
}
