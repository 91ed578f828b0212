// SPDX-License-Identifier: MIT
// The alarm, sleeping and beeping.
#include <windows.h>

#include "alarm_clock.h"
#include "qwport.h"

// While an alarm is pending a new request is ignored; this is meant.
int32_t ALARM(const int32_t *time, void (*proc)()) { return portlib_set_alarm(*time, proc, PendingAlarm::stays); }

void SLEEP(const int32_t *time) {
  if (*time >= 0) SleepEx(portlib_wait_milliseconds(*time), TRUE);
}

void SLEEPQQ(const int32_t *duration) {
  if (*duration >= 0) SleepEx(static_cast<DWORD>(*duration), TRUE);
}

void BEEPQQ(const int32_t *frequency, const int32_t *duration) {
  Beep(static_cast<DWORD>(*frequency), static_cast<DWORD>(*duration));
}
