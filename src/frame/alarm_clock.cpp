// SPDX-License-Identifier: MIT
#include "alarm_clock.h"

#include <algorithm>

#include <windows.h>

#include "handle.h"
#include "lock.h"
#include "module_hold.h"

namespace {

struct Alarm {
  HANDLE set = nullptr;  // a semaphore, counted up once a request; the thread is there when it is
  bool is_pending = false;
  int64_t end_ms = 0;  // on the host's clock since its start
  AlarmProcedure procedure = nullptr;
};
Alarm alarm;
PortlibLock alarm_lock;

int64_t current_ms() { return static_cast<int64_t>(GetTickCount64()); }

// In ticks of 4 ms, rounded up to a whole second, and at least 1.
int32_t seconds_left(int64_t now_ms) {
  constexpr int64_t tick_ms = 4;
  constexpr int64_t ticks_a_second = 250;
  const int64_t ticks = alarm.end_ms / tick_ms - now_ms / tick_ms;
  return static_cast<int32_t>(std::max<int64_t>((ticks + ticks_a_second - 1) / ticks_a_second, 1));
}

// After a wait: the procedure to call, or null, and how long to wait next. A request that came when the time
// was over already takes the place of that alarm.
AlarmProcedure next_alarm(bool is_over, DWORD &timeout) {
  const LockGuard guard(alarm_lock);
  if (is_over && WaitForSingleObject(alarm.set, 0) == WAIT_TIMEOUT) {
    alarm.is_pending = false;
    timeout = INFINITE;
    return alarm.procedure;
  }
  const int64_t left_ms = alarm.end_ms - current_ms();  // a request that came while a procedure ran may be over
  timeout = alarm.is_pending ? static_cast<DWORD>(std::max<int64_t>(left_ms, 0)) : INFINITE;
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

// The thread never ends, so the library stays loaded.
bool start_thread() {
  if (alarm.set != nullptr) return true;
  constexpr LONG semaphore_limit = 32;
  OwnedHandle set(CreateSemaphoreA(nullptr, 0, semaphore_limit, nullptr));
  if (set == nullptr || !portlib_hold_library()) return false;
  alarm.set = set.get();
  const OwnedHandle thread(CreateThread(nullptr, 0, run_alarms, nullptr, 0, nullptr));
  if (thread == nullptr) {
    alarm.set = nullptr;
    portlib_release_library();
    return false;
  }
  SetThreadPriority(thread.get(), THREAD_PRIORITY_HIGHEST);
  static_cast<void>(set.release());
  return true;
}

}  // namespace

int32_t portlib_set_alarm(int32_t seconds, AlarmProcedure procedure, PendingAlarm pending) {
  const LockGuard guard(alarm_lock);
  if (!start_thread()) return -1;
  const int64_t now_ms = current_ms();
  const bool was_pending = alarm.is_pending;
  const int32_t left = was_pending ? seconds_left(now_ms) : 0;
  if (was_pending && pending == PendingAlarm::stays) return left;
  alarm.is_pending = seconds > 0;
  alarm.end_ms = now_ms + portlib_wait_milliseconds(std::max(seconds, 0));
  alarm.procedure = procedure;
  if (was_pending || alarm.is_pending) ReleaseSemaphore(alarm.set, 1, nullptr);
  return left;
}

uint32_t portlib_wait_milliseconds(int32_t seconds) {
  constexpr int64_t longest = INFINITE - 1;
  return static_cast<DWORD>(std::min(seconds * int64_t{1000}, longest));
}
