// SPDX-License-Identifier: MIT
// The host's times: counts of 100 nanoseconds, from 1601-01-01 00:00:00 UTC where they are dates.
#pragma once

#include <cstdint>

#include <windows.h>

constexpr double portlib_seconds_per_tick = 1e-7;

inline uint64_t portlib_ticks(const FILETIME &time) {
  return (static_cast<uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

// A duration in seconds.
inline double portlib_seconds(const FILETIME &duration) {
  return static_cast<double>(portlib_ticks(duration)) * portlib_seconds_per_tick;
}

// A date in seconds since 1970-01-01 00:00:00 UTC.
inline double portlib_seconds_since_1970(const FILETIME &time) {
  constexpr uint64_t ticks_from_1601_to_1970 = 116444736000000000;
  return static_cast<double>(portlib_ticks(time) - ticks_from_1601_to_1970) * portlib_seconds_per_tick;
}

inline double portlib_seconds_since_1970() {
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  return portlib_seconds_since_1970(now);
}
