// SPDX-License-Identifier: MIT
#include "signal_table.h"

#include <atomic>

#include <windows.h>

#include "core_entries.h"

namespace {

constexpr int32_t signal_limit = 23;  // of the C run-time
constexpr int32_t floating_point_signal = 8;

struct UserHandler {
  std::atomic<SignalHandler> procedure;
  std::atomic<int32_t> number;
};
UserHandler user_handlers[signal_limit];

// Set whenever a procedure has returned.
HANDLE handled_event() {
  static HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  return event;
}

bool is_in_table(int32_t host_signal) { return 0 <= host_signal && host_signal < signal_limit; }

void dispatch(int32_t host_signal) {
  if (!is_in_table(host_signal)) return;
  const SignalHandler procedure = user_handlers[host_signal].procedure;
  if (procedure == nullptr) return;
  int32_t number = user_handlers[host_signal].number;
  procedure(&number);
  SetEvent(handled_event());
}

// A handler of this signal is called with two addresses where all others get the number: it reads neither.
void dispatch_floating_point() { dispatch(floating_point_signal); }

intptr_t dispatcher_of(int32_t host_signal) {
  return host_signal == floating_point_signal ? reinterpret_cast<intptr_t>(dispatch_floating_point)
                                              : reinterpret_cast<intptr_t>(dispatch);
}

// What the core runtime keeps of the other signals.
std::atomic<intptr_t> alarm_value;

// The default action is that of Unix: the program ends.
void raise_alarm() {
  if (alarm_value == portlib_default_action) TerminateProcess(GetCurrentProcess(), portlib_alarm_signal);
  if (alarm_value != portlib_ignore_signal) dispatch(portlib_alarm_signal);
}

}  // namespace

intptr_t portlib_set_signal(int32_t host_signal, intptr_t value) {
  return host_signal == portlib_alarm_signal ? alarm_value.exchange(value) : core::for__signal(host_signal, value);
}

intptr_t portlib_handle_signal(int32_t host_signal, SignalHandler handler, int32_t number) {
  if (is_in_table(host_signal)) {
    user_handlers[host_signal].number = number;
    user_handlers[host_signal].procedure = handler;
  }
  return portlib_set_signal(host_signal, dispatcher_of(host_signal));
}

SignalHandler portlib_handler_behind(int32_t host_signal, intptr_t value) {
  return value == dispatcher_of(host_signal) ? user_handlers[host_signal].procedure.load() : nullptr;
}

bool portlib_raise_signal(int32_t host_signal) {
  if (host_signal != portlib_alarm_signal) return core::for__raise(host_signal) == 0;
  raise_alarm();
  return true;
}

bool portlib_wait_for_signal(uint32_t timeout_ms) {
  ResetEvent(handled_event());
  return WaitForSingleObject(handled_event(), timeout_ms) == WAIT_OBJECT_0;
}

// The handle stays open, so that the host gives the number to no other process while this one lives.
bool portlib_terminate(int32_t pid) {
  constexpr UINT exit_code = portlib_kill_signal;
  HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, static_cast<DWORD>(pid));
  return process != nullptr && TerminateProcess(process, exit_code);
}
