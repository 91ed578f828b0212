// SPDX-License-Identifier: MIT
// Eight threads at once in the routines that share state.
#include <atomic>

#include "library_test.h"

namespace {

constexpr int thread_count = 8;
constexpr int rounds = 300;
std::atomic<int> wrong;

void expect(bool right) { wrong += right ? 0 : 1; }

const std::string short_value(20, 's'), long_value(3000, 'l');

void share_environment(int i) {
  expect(call(SETENVQQ, "QWPORT_SHARED=" + (i % 2 == 0 ? short_value : long_value)) == 1);
  const std::string found = outcome(GETENV, "QWPORT_SHARED", Room{3000});
  expect(found == short_value + std::string(2980, ' ') || found == long_value);
  const std::string scanned = outcome(SCANENV, "QWPORT_SHARED", Room{13}, Room{20});
  expect(scanned == "QWPORT_SHARED|" + short_value || scanned == "QWPORT_SHARED|" + long_value.substr(0, 20) ||
         scanned == std::string(13, ' ') + '|' + std::string(20, ' '));
}

void nothing() {}
void no_handler(int32_t *) {}

void share_signals(int i) {
  expect(call(ALARM, 1000, nothing) >= 0);
  expect(call(SIGNAL, i % 2 == 0 ? 2 : 15, no_handler, i % 3 - 1) != EINVAL);
}

void share_numbers(int i) {
  float times[2];
  const float sum = DTIME(times);
  expect(sum == times[0] + times[1]);
  const double number = call(DRAND, i % 4);
  expect(0 <= number && number < 1);
  expect(call(GETPID) == static_cast<int32_t>(GetCurrentProcessId()));
}

DWORD WINAPI work(void *) {
  for (int i = 0; i < rounds; ++i) {
    share_environment(i);
    share_signals(i);
    share_numbers(i);
  }
  return 0;
}

}  // namespace

TEST_CASE("eight threads at once find whole values and none waits for ever") {
  HANDLE threads[thread_count];
  for (HANDLE &thread : threads) thread = CreateThread(nullptr, 0, work, nullptr, 0, nullptr);
  CHECK(WaitForMultipleObjects(thread_count, threads, TRUE, 100'000) == WAIT_OBJECT_0);
  CHECK(wrong == 0);
  for (HANDLE thread : threads) CloseHandle(thread);
}
