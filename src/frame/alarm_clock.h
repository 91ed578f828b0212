// SPDX-License-Identifier: MIT
// The one alarm of the process, which ALARM and PXFALARM share, the thread that waits for it, and how long the host
// can wait.
#pragma once

#include <cstdint>

using AlarmProcedure = void (*)();

// What a request does when an alarm is pending.
enum class PendingAlarm { stays, is_replaced };

// Has a procedure called on the alarm's thread after a number of seconds; one below 1 sets no alarm. Result: the
// seconds left of the pending alarm, rounded up and at least 1; 0 if there was none; -1 if the thread could not be
// started.
int32_t portlib_set_alarm(int32_t seconds, AlarmProcedure procedure, PendingAlarm pending);

// Seconds as milliseconds that the host can wait: about 49 days stand for all longer times.
uint32_t portlib_wait_milliseconds(int32_t seconds);
