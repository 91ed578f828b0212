// SPDX-License-Identifier: MIT
#include "alarm_clock.h"

#include <algorithm>

#include <windows.h>

#include "lock.h"
#include "module_hold.h"

namespace {

struct Alarm {
  HANDLE thread = nullptr;
  HANDLE set = nullptr;  // counted up once a request
  bool is_pending = false;
  DWORD length_ms = 0;
  uint32_t start_tick = 0;
  ULONGLONG end_ms = 0;
  AlarmProcedure procedure = nullptr;
};
Alarm alarm;

PortlibLock &alarm_lock() {
  static PortlibLock lock;
  return lock;
}

// ---- The clock ----------------------------------------------------------------------------------
// Ticks of 4 ms, which start again at 2**30.

constexpr uint32_t ticks_a_second = 250;
constexpr uint32_t milliseconds_a_tick = 4;
constexpr int64_t tick_wrap = int64_t{1} << 30;

uint32_t current_tick() { return GetTickCount() / milliseconds_a_tick; }

// Rounded up to a whole second, and at least 1.
int32_t seconds_left(uint32_t now) {
  const int64_t unwrapped_now = now < alarm.start_tick ? now + tick_wrap : now;
  const int64_t end = int64_t{alarm.length_ms / milliseconds_a_tick} + alarm.start_tick;
  return static_cast<int32_t>(std::max<int64_t>((end - unwrapped_now + ticks_a_second - 1) / ticks_a_second, 1));
}

// ---- The thread ---------------------------------------------------------------------------------

// After a wait: the procedure to call, or null, and how long to wait next. A request that came when the time
// was over already takes the place of that alarm.
AlarmProcedure next_alarm(bool is_over, DWORD &timeout) {
  const LockGuard guard(alarm_lock());
  if (is_over && WaitForSingleObject(alarm.set, 0) == WAIT_TIMEOUT) {
    alarm.is_pending = false;
    timeout = INFINITE;
    return alarm.procedure;
  }
  const ULONGLONG now_ms = GetTickCount64();  // later than the request while a procedure ran
  const ULONGLONG left_ms = now_ms < alarm.end_ms ? alarm.end_ms - now_ms : 0;
  timeout = alarm.is_pending ? static_cast<DWORD>(left_ms) : INFINITE;
  return nullptr;
}

DWORD WINAPI run_alarms(void *) {
  DWORD timeout = INFINITE;
  for (;;) {
    const bool is_over = WaitForSingleObject(alarm.set, timeout) == WAIT_TIMEOUT;
    const AlarmProcedure procedure = next_alarm(is_over, timeout);
    if (procedure != nullptr) procedure();
  }
}

// The thread never ends, so the library must stay loaded.
bool start_thread() {
  if (alarm.thread != nullptr) return true;
  constexpr LONG semaphore_limit = 32;
  if (alarm.set == nullptr) alarm.set = CreateSemaphoreA(nullptr, 0, semaphore_limit, nullptr);
  if (alarm.set != nullptr && portlib_pin_library())
    alarm.thread = CreateThread(nullptr, 0, run_alarms, nullptr, 0, nullptr);
  if (alarm.thread == nullptr) return false;
  SetThreadPriority(alarm.thread, THREAD_PRIORITY_HIGHEST);
  return true;
}

}  // namespace

int32_t portlib_set_alarm(int32_t seconds, AlarmProcedure procedure, PendingAlarm pending) {
  const LockGuard guard(alarm_lock());
  if (!start_thread()) return -1;
  const uint32_t now = current_tick();
  const bool was_pending = alarm.is_pending;
  const int32_t left = was_pending ? seconds_left(now) : 0;
  if (was_pending && pending == PendingAlarm::stays) return left;
  alarm.is_pending = seconds > 0;
  alarm.length_ms = portlib_wait_milliseconds(std::max(seconds, 0));
  alarm.start_tick = now;
  alarm.end_ms = GetTickCount64() + alarm.length_ms;
  alarm.procedure = procedure;
  if (was_pending || alarm.is_pending) ReleaseSemaphore(alarm.set, 1, nullptr);
  return left;
}

uint32_t portlib_wait_milliseconds(int32_t seconds) {
  constexpr int64_t longest = INFINITE - 1;
  return static_cast<DWORD>(std::min(seconds * int64_t{1000}, longest));
}
