// SPDX-License-Identifier: MIT
// What signals do, by the host's signal numbers, and the procedures that callers have set for them: one table for
// SIGNAL, IEEE_HANDLER and PXFSIGACTION. Ending processes for KILL and PXFKILL.
#pragma once

#include <cstdint>

#include "handle.h"

using SignalHandler = void (*)(int32_t *number);

// The host's signals are below it.
constexpr int32_t portlib_signal_limit = 23;

constexpr int32_t portlib_kill_signal = 9;

// Not one of the host's: this library's alarm raises it.
constexpr int32_t portlib_alarm_signal = 14;

// The core runtime's handler values besides a procedure's address.
constexpr intptr_t portlib_default_action = 0;
constexpr intptr_t portlib_ignore_signal = 1;
constexpr intptr_t portlib_no_such_signal = -1;

// Sets the core runtime's handler of any number. Result: the one before, or portlib_no_such_signal.
intptr_t portlib_set_host_signal(int32_t host_signal, intptr_t value);

// The same with an action or a procedure of the library's, which then stays loaded; portlib_no_such_signal also when
// it cannot. For the alarm's signal this is the library's own action, of which the host knows nothing.
intptr_t portlib_set_signal(int32_t signal, intptr_t value);

// Has such a signal call a procedure with the address of a number, the one that the caller knows the signal by.
// Result: as above.
intptr_t portlib_handle_signal(int32_t signal, SignalHandler handler, int32_t number);

// What a signal does by the last call of the above.
struct SignalAction {
  intptr_t value;
  SignalHandler handler;  // null unless it is such a procedure
  int32_t number;
};
SignalAction portlib_signal_action(int32_t host_signal);

// Raises a signal in this process; false for one that does not exist.
bool portlib_raise_signal(int32_t host_signal);

// Waits until a procedure for a signal has returned; false when the time is over first.
bool portlib_wait_for_signal(uint32_t timeout_ms);

// Opens the process of exactly this number: the host opens pid for pid + 1 to pid + 3, too. Null with the host's error
// set, 87 for a number that no process has.
OwnedHandle portlib_open_process(int32_t pid, uint32_t access);

// Ends a process with exit code 9. The process, or null with the host's error set.
OwnedHandle portlib_terminate(int32_t pid);
