// SPDX-License-Identifier: MIT
// The process's start time and the clocks measured from it.
#include <cstdint>

#include <windows.h>

#include "libgfortran.h"
#include "qwcore.h"

namespace {

double seconds_since_1970(const FILETIME &time) {
  constexpr uint64_t ticks_from_1601_to_1970 = 116444736000000000;
  constexpr double seconds_per_tick = 1e-7;
  const uint64_t ticks = (static_cast<uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
  return static_cast<double>(ticks - ticks_from_1601_to_1970) * seconds_per_tick;
}

double now() {
  FILETIME time;
  GetSystemTimeAsFileTime(&time);
  return seconds_since_1970(time);
}

}  // namespace

double for__process_start_time() {
  FILETIME creation, exit, kernel, user;
  if (!GetProcessTimes(GetCurrentProcess(), &creation, &exit, &kernel, &user)) return now();
  return seconds_since_1970(creation);
}

double for_since_epoch_t(const double *start) { return now() - *start; }

float for_secnds_t(const float *start) { return _gfortran_secnds(start); }
