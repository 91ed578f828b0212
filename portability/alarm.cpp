// SPDX-License-Identifier: MIT
// The alarm clock of the process, sleeping and beeping.
#include <algorithm>
#include <cerrno>

#include <windows.h>

#include "errors.h"
#include "lock.h"
#include "qwport.h"

namespace {

// The longest wait that the host knows, about 49 days, stands for all longer ones.
DWORD milliseconds_of(int32_t seconds) {
  constexpr int64_t longest = INFINITE - 1;
  return static_cast<DWORD>(std::min(seconds * int64_t{1000}, longest));
}

using AlarmProcedure = void (*)();

// One alarm at a time; it cannot be cancelled.
struct Alarm {
  HANDLE thread = nullptr;
  HANDLE set = nullptr;  // counted up once an alarm
  bool is_pending = false;
  DWORD length_ms = 0;
  uint32_t start_tick = 0;
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

DWORD WINAPI run_alarms(void *) {
  DWORD timeout = INFINITE;
  for (;;) {
    const bool is_over = WaitForSingleObject(alarm.set, timeout) == WAIT_TIMEOUT;
    AlarmProcedure procedure = nullptr;
    {
      const LockGuard guard(alarm_lock());
      timeout = is_over ? INFINITE : alarm.length_ms;
      if (is_over) {
        alarm.is_pending = false;
        procedure = alarm.procedure;
      }
    }
    if (procedure != nullptr) procedure();
  }
}

// The thread never ends, so the library must stay loaded.
bool start_thread() {
  if (alarm.thread != nullptr) return true;
  constexpr LONG semaphore_limit = 32;
  if (alarm.set == nullptr) alarm.set = CreateSemaphoreA(nullptr, 0, semaphore_limit, nullptr);
  HMODULE library = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<const char *>(run_alarms), &library);
  if (alarm.set != nullptr) alarm.thread = CreateThread(nullptr, 0, run_alarms, nullptr, 0, nullptr);
  if (alarm.thread == nullptr) return false;
  SetThreadPriority(alarm.thread, THREAD_PRIORITY_HIGHEST);
  return true;
}

}  // namespace

int32_t ALARM(const int32_t *time, void (*proc)()) {
  const LockGuard guard(alarm_lock());
  if (!start_thread()) {
    portlib_report_errno(ENOMEM);
    return 0;
  }
  const uint32_t now = current_tick();
  if (alarm.is_pending) return seconds_left(now);  // the new request is ignored; this is meant
  if (*time < 1) return 0;
  alarm.is_pending = true;
  alarm.length_ms = milliseconds_of(*time);
  alarm.start_tick = now;
  alarm.procedure = proc;
  ReleaseSemaphore(alarm.set, 1, nullptr);
  return 0;
}

void SLEEP(const int32_t *time) {
  if (*time >= 0) SleepEx(milliseconds_of(*time), TRUE);
}

void SLEEPQQ(const int32_t *duration) {
  if (*duration >= 0) SleepEx(static_cast<DWORD>(*duration), TRUE);
}

void BEEPQQ(const int32_t *frequency, const int32_t *duration) {
  Beep(static_cast<DWORD>(*frequency), static_cast<DWORD>(*duration));
}
