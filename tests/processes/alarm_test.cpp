// SPDX-License-Identifier: MIT
// The alarm, on a clock that the test sets, and sleeping.
#include <atomic>

#include "library_test.h"

namespace {

// The clock, and the wait of the alarm thread, which ends only when the test says so. The thread may keep these
// addresses.
std::atomic<ULONGLONG> clock_ms;
ULONGLONG WINAPI tell_clock() { return clock_ms; }
std::atomic<DWORD> waited_ms;
HANDLE time_is_over;
std::atomic<bool> is_late;  // a request comes when the time is over already
void request_late() {
  const int32_t seconds = 9;
  int32_t left = 0, error = 0;
  PXFALARM(&seconds, &left, &error);
}
decltype(&WaitForSingleObject) real_wait = WaitForSingleObject;
DWORD WINAPI wait_for_test(HANDLE semaphore, DWORD timeout) {
  if (timeout != 0) waited_ms = timeout;
  if (timeout == INFINITE || timeout == 0) return real_wait(semaphore, timeout);
  real_wait(time_is_over, INFINITE);
  if (is_late.exchange(false)) request_late();
  return WAIT_TIMEOUT;
}

HANDLE called;
std::atomic<DWORD> calling_thread;
std::atomic<int> first_calls, second_calls;
void first_procedure() {
  calling_thread = GetCurrentThreadId();
  ++first_calls;
  SetEvent(called);
}
void second_procedure() {
  ++second_calls;
  SetEvent(called);
}

void end_alarm() {
  SetEvent(time_is_over);
  CHECK(real_wait(called, 60000) == WAIT_OBJECT_0);
}

std::string slept;
DWORD WINAPI note_sleep(DWORD duration, BOOL alertable) {
  slept = std::to_string(duration) + (alertable ? " alertable" : "");
  return 0;
}

}  // namespace

TEST_CASE("one alarm at a time, with the remainder rounded up; a request in time replaces one that is over") {
  time_is_over = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  called = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  const ImportOverride clock(library(), "GetTickCount64", tell_clock);
  const ImportOverride wait(library(), "WaitForSingleObject", wait_for_test);

  clock_ms = 1'000'003;  // ticks of 4 ms
  for (const int32_t seconds : {0, -4, 5}) CHECK(call(ALARM, seconds, first_procedure) == 0);
  const std::pair<DWORD, int32_t> remainders[] = {{1, 5},    {999, 4},  {1000, 4}, {1996, 4},
                                                  {2004, 3}, {4996, 1}, {5000, 1}, {9000, 1}};
  for (const auto &[elapsed, seconds] : remainders) {
    clock_ms = 1'000'003 + elapsed;
    CAPTURE(elapsed);
    CHECK(call(ALARM, 1, second_procedure) == seconds);
  }
  CHECK(call(ALARM, 0, second_procedure) == 1);  // nor does 0 cancel it
  end_alarm();
  CHECK(waited_ms != 0);
  CHECK(first_calls == 1);
  CHECK(calling_thread != GetCurrentThreadId());

  // It fires once, and the next request is a new alarm.
  CHECK(call(ALARM, 2147483, second_procedure) == 0);
  CHECK(call(ALARM, 1, first_procedure) == 2147483);
  end_alarm();
  CHECK((first_calls == 1 && second_calls == 1));

  CHECK(call(ALARM, 5, second_procedure) == 0);
  is_late = true;
  SetEvent(time_is_over);
  while (waited_ms != 9000) Sleep(1);
  const int32_t none = 0;
  int32_t left = 0, error = 0;
  PXFALARM(&none, &left, &error);  // cancels the late one
  CHECK((left == 9 && error == 0));
  SetEvent(time_is_over);
  while (waited_ms != INFINITE) Sleep(1);
  CHECK(call(ALARM, 3, first_procedure) == 0);
  end_alarm();
  CHECK((first_calls == 2 && second_calls == 1));
}

TEST_CASE("sleeping is alertable, and not done for a negative time") {
  const ImportOverride sleep(library(), "SleepEx", note_sleep);
  const std::tuple<void (*)(const int32_t *), int32_t, std::string> cases[] = {
      {SLEEP, -1, ""},   {SLEEP, 0, "0 alertable"},    {SLEEP, 5000000, "4294967294 alertable"},
      {SLEEPQQ, -5, ""}, {SLEEP, 3, "3000 alertable"}, {SLEEPQQ, 250, "250 alertable"}};
  for (const auto &[routine, time, expected] : cases) {
    slept.clear();
    call(routine, time);
    CHECK(slept == expected);
  }
}

TEST_CASE("BEEPQQ sounds the speaker") {
  static std::pair<DWORD, DWORD> beep;
  const ImportOverride speaker(library(), "Beep", [](DWORD frequency, DWORD duration) -> BOOL {
    return beep = {frequency, duration}, FALSE;
  });
  call(BEEPQQ, 440, 100);
  CHECK(beep == std::pair<DWORD, DWORD>(440, 100));
}
