// SPDX-License-Identifier: MIT
// The procedures that callers have set for signals, by the host's signal numbers.
#pragma once

#include <cstdint>

using SignalHandler = void (*)(int32_t *number);

constexpr int32_t portlib_kill_signal = 9;

// Not one of the host's: this library's alarm raises it.
constexpr int32_t portlib_alarm_signal = 14;

// The core runtime's handler values besides a procedure's address.
constexpr intptr_t portlib_default_action = 0;
constexpr intptr_t portlib_ignore_signal = 1;

// Has a signal call a procedure with the address of a number, the one that the caller knows the signal by.
// Result: the core runtime's answer.
intptr_t portlib_handle_signal(int32_t host_signal, SignalHandler handler, int32_t number);

// The procedure that was set for a signal, if the core runtime's handler value stands for it; else null.
SignalHandler portlib_handler_behind(int32_t host_signal, intptr_t value);

// Calls the procedure that was set for a signal; false if there is none.
bool portlib_dispatch_signal(int32_t host_signal);

// Waits until a procedure for a signal has returned; false when the time is over first.
bool portlib_wait_for_signal(uint32_t timeout_ms);

// Ends a process with exit code 9; false with the host's error set.
bool portlib_terminate(int32_t pid);
