// SPDX-License-Identifier: MIT
// The alarm, on a clock that the test sets, and sleeping.
#include <atomic>

#include "library_test.h"

namespace {

// The clock, and the wait of the alarm thread, which ends only when the test says so. The thread may keep these
// addresses.
std::atomic<ULONGLONG> clock_ms;
std::atomic<DWORD> waited_ms;
HANDLE time_is_over, called;
std::atomic<int> calls;  // of the first and the second procedure, a digit each

ULONGLONG WINAPI tell_clock() { return clock_ms; }
DWORD WINAPI wait_for_test(HANDLE semaphore, DWORD timeout) {
  if (timeout != 0) waited_ms = timeout;
  if (timeout == INFINITE || timeout == 0) return WaitForSingleObject(semaphore, timeout);
  WaitForSingleObject(time_is_over, INFINITE);
  return WAIT_TIMEOUT;
}

template <int digit> void note_call() {
  calls = 10 * calls + digit;
  SetEvent(called);
}

int calls_at_end() {
  SetEvent(time_is_over);
  CHECK(WaitForSingleObject(called, 60000) == WAIT_OBJECT_0);
  return calls;
}

std::string noted;
DWORD WINAPI note_sleep(DWORD duration, BOOL alertable) {
  noted = std::to_string(duration) + (alertable ? " alertable" : "");
  return 0;
}

}  // namespace

TEST_CASE("one alarm at a time, with the remainder rounded up") {
  time_is_over = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  called = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  const ImportOverride clock(library(), "GetTickCount64", tell_clock);
  const ImportOverride wait(library(), "WaitForSingleObject", wait_for_test);

  clock_ms = 1'000'003;  // ticks of 4 ms
  for (const int32_t seconds : {0, -4, 5}) CHECK(call(ALARM, seconds, note_call<1>) == 0);
  while (waited_ms != 5000) Sleep(1);  // a clock that is ahead of the thread would end the alarm at once
  const std::pair<DWORD, int32_t> remainders[] = {{1, 5},    {999, 4},  {1000, 4}, {1996, 4},
                                                  {2004, 3}, {4996, 1}, {5000, 1}, {9000, 1}};
  for (const auto &[elapsed, seconds] : remainders) {
    clock_ms = 1'000'003 + elapsed;
    CAPTURE(elapsed);
    CHECK(call(ALARM, 1, note_call<2>) == seconds);
  }
  CHECK(call(ALARM, 0, note_call<2>) == 1);  // nor does 0 cancel it
  CHECK(calls_at_end() == 1);

  // It fires once, and the next request is a new alarm.
  CHECK(call(ALARM, 2147483, note_call<2>) == 0);
  CHECK(call(ALARM, 1, note_call<1>) == 2147483);
  CHECK(calls_at_end() == 12);
}

TEST_CASE("sleeping is alertable, and not done for a negative time") {
  const ImportOverride sleep(library(), "SleepEx", note_sleep);
  const std::tuple<void (*)(const int32_t *), int32_t, std::string> cases[] = {
      {SLEEP, -1, ""},   {SLEEP, 0, "0 alertable"},   {SLEEP, 5000000, "4294967294 alertable"},
      {SLEEPQQ, -5, ""}, {SLEEPQQ, 0, "0 alertable"}, {SLEEPQQ, 250, "250 alertable"}};
  for (const auto &[routine, time, expected] : cases) {
    noted.clear();
    call(routine, time);
    CHECK(noted == expected);
  }
}
