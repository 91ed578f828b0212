// SPDX-License-Identifier: MIT
// Processor time of the process, and of the time since the last question.
#include <atomic>
#include <cstdint>
#include <ctime>

#include <windows.h>

#include "file_time.h"
#include "lock.h"
#include "qwport.h"

#undef ETIME  // errno.h's macro

namespace {

struct ProcessTimes {
  double user;  // seconds
  double system;
};

constexpr int32_t unknown = -1;
std::atomic<int32_t> cpu_count{unknown};

// DTIME and DTIMER8 write one slot and subtract the other, in turns.
PortlibLock dtime_lock;
bool dtime_phase = false;
ProcessTimes dtime_slot_a{};
ProcessTimes dtime_slot_b{};

bool has_several_processors() {
  if (cpu_count == unknown) {
    SYSTEM_INFO system{};
    GetSystemInfo(&system);
    cpu_count = static_cast<int32_t>(system.dwNumberOfProcessors);
  }
  return cpu_count >= 2;
}

bool read_process_times(ProcessTimes &times) {
  FILETIME creation, exit, kernel, user;
  if (!GetProcessTimes(GetCurrentProcess(), &creation, &exit, &kernel, &user)) return false;
  times = {portlib_seconds(user), portlib_seconds(kernel)};
  return true;
}

// Rounds a value to the precision of Real. The memory in between is the compiler's to write and read: GCC's vectoriser
// leaves out two adjacent roundings to single precision.
template <class Real> double rounded(double value) {
  const volatile Real result = static_cast<Real>(value);
  return result;
}

// Real is that of the routine: DTIME keeps single precision in slot a, DTIMER8 double.
template <class Real> Real time_since_last_call(Real *tarray) {
  const LockGuard guard(dtime_lock);
  ProcessTimes now{};
  if (!dtime_phase) {
    if (!read_process_times(now)) return Real{-1};
    now = {rounded<Real>(now.user), rounded<Real>(now.system)};
  } else if (has_several_processors()) {
    now = {static_cast<double>(std::clock()) * 0.001, 0.0};  // the wall clock as user time; this is meant
  } else if (!read_process_times(now)) {
    return Real{-1};
  }

  ProcessTimes &own_slot = dtime_phase ? dtime_slot_b : dtime_slot_a;
  const ProcessTimes &other_slot = dtime_phase ? dtime_slot_a : dtime_slot_b;
  own_slot = now;
  tarray[0] = static_cast<Real>(now.user - other_slot.user);
  tarray[1] = static_cast<Real>(now.system - other_slot.system);
  dtime_phase = !dtime_phase;
  return tarray[0] + tarray[1];
}

}  // namespace

float qwport::ETIME(float *tarray) {
  if (has_several_processors()) {
    // Wall-clock time since the start as user time; this is meant.
    tarray[0] = static_cast<float>(std::clock()) * 0.001F;
    tarray[1] = 0.0F;
  } else {
    ProcessTimes times{};
    if (!read_process_times(times)) return -1.0F;
    tarray[0] = static_cast<float>(times.user);
    tarray[1] = static_cast<float>(times.system);
  }
  return tarray[0] + tarray[1];
}

float DTIME(float *tarray) { return time_since_last_call(tarray); }

double DTIMER8(double *tarray) { return time_since_last_call(tarray); }
