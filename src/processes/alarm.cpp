// SPDX-License-Identifier: MIT
// The alarm, sleeping and beeping.
#include <cerrno>

#include <windows.h>

#include "alarm_clock.h"
#include "errors.h"
#include "qwport.h"

// While an alarm is pending a new request is ignored; this is meant.
int32_t ALARM(const int32_t *time, void (*proc)()) {
  const int32_t seconds_left = portlib_set_alarm(*time, proc, PendingAlarm::stays);
  if (seconds_left >= 0) return seconds_left;
  portlib_report_errno(ENOMEM);
  return 0;
}

void SLEEP(const int32_t *time) {
  if (*time >= 0) SleepEx(portlib_wait_milliseconds(*time), TRUE);
}

void SLEEPQQ(const int32_t *duration) {
  if (*duration >= 0) SleepEx(static_cast<DWORD>(*duration), TRUE);
}

void BEEPQQ(const int32_t *frequency, const int32_t *duration) {
  Beep(static_cast<DWORD>(*frequency), static_cast<DWORD>(*duration));
}
