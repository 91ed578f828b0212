// SPDX-License-Identifier: MIT
// Eight threads at once in what routines share: no crash, no deadlock, and each thread's own things stay its own.
#include <doctest/doctest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <string>
#include <tuple>

#include <windows.h>

#include "../core/test_units.h"
#include "qwport.h"
#include "simulated_device.h"
#include "test_dir.h"
#include "thread.h"

namespace {

constexpr int32_t shared_unit = 21;
constexpr int signal_count = 500, character_count = 2000;  // of each thread

std::atomic<int> signals_seen;
void count_signal(int32_t *) { ++signals_seen; }
void do_nothing() {}

int16_t compare(const void *left, const void *right) {
  return static_cast<int16_t>(*static_cast<const int32_t *>(left) - *static_cast<const int32_t *>(right));
}

// ---- What a thread does, again and again ---------------------------------------------------------
// Each gives false where it finds anything but its own.

// So many of each thread that the table of handles grows while others use it.
bool uses_structures(int32_t own) {
  int32_t handles[40], error = 0, failures = 0;
  for (int32_t &handle : handles) {
    PXFSTRUCTCREATE("stat", &handle, &error, 4);
    PXFINTSET(&handle, "st_mode", &own, &error, 7);
    failures += error;
  }
  for (int32_t &handle : handles) {
    int32_t read = -1;
    PXFINTGET(&handle, "st_mode", &read, &error, 7);
    PXFSTRUCTFREE(&handle, &error);
    failures += read != own || error != 0;
  }
  return failures == 0;
}

bool uses_directories(int32_t) {
  const int32_t length = 1;
  int32_t stream = 0, entry = 0, error = 0, close_error = 0;
  PXFOPENDIR(".", &length, &stream, &error, 1);
  PXFSTRUCTCREATE("dirent", &entry, &error, 6);
  PXFREADDIR(&stream, &entry, &error);
  PXFSTRUCTFREE(&entry, &close_error);
  PXFCLOSEDIR(&stream, &close_error);
  return error == 0 && close_error == 0;
}

// One variable for all, short and long by turns: what is read is one of its values, whole.
bool uses_environment(int32_t own) {
  const std::string values[] = {"short", std::string(3000, 'l')}, setting = "QWPORT_SHARED=" + values[own % 2];
  std::string found(3000, ' ');
  if (SETENVQQ(setting.data(), setting.size()) == 0) return false;
  found.resize(static_cast<size_t>(GETENVQQ("QWPORT_SHARED", found.data(), 13, found.size())));
  return found == values[0] || found == values[1];
}

bool raises(int32_t) {
  const int32_t number = SIGINT;
  return RAISEQQ(&number) == 0;
}

bool sets_alarms(int32_t own) {
  const int32_t seconds = own % 2 == 0 ? 1000 : 0;
  int32_t left = 0, error = 0;
  PXFALARM(&seconds, &left, &error);
  ALARM(&seconds, do_nothing);
  return error == 0;
}

bool connects(int32_t own) {
  const int32_t port = 10 + own;
  return SPORT_CONNECT(&port, nullptr) == 0 && SPORT_RELEASE(&port) == 0 && SPORT_RELEASE(&port) == 0;
}

bool sorts(int32_t own) {
  int32_t numbers[] = {own, 3, -own, 100, 2 * own, 0};
  const int64_t count = std::size(numbers), size = sizeof numbers[0];
  QSORT(numbers, &count, &size, compare);
  return std::is_sorted(std::begin(numbers), std::end(numbers));
}

bool draws(int32_t own) {
  const int32_t next = 0;
  int32_t seed = own + 2, again = own + 2;
  const float mine = RAN(&seed), same = RAN(&again);
  const double shared = DRAND(&next);
  return mine == same && shared >= 0 && shared < 1 && RANF() >= 0;
}

// Half of the threads seek to the end between their characters, where they stand anyway.
bool writes(int32_t own) {
  const char character = static_cast<char>('a' + own);
  const int32_t offset = 0, from_end = 2;
  if (own % 2 == 0 && FSEEK(&shared_unit, &offset, &from_end) != 0) return false;
  return FPUTC(&shared_unit, &character, 1) == 0 && FTELL(&shared_unit) > 0;
}

constexpr std::tuple<const char *, int, bool (*)(int32_t own)> groups[] = {
    {"structures", 100, uses_structures},
    {"directories", 100, uses_directories},
    {"environment", 500, uses_environment},
    {"signals", signal_count, raises},
    {"alarm", 200, sets_alarms},
    {"ports", 5, connects},
    {"QSORT", 2000, sorts},
    {"generators", 5000, draws},
    {"one unit", character_count, writes},
};

}  // namespace

TEST_CASE("eight threads in what routines share find what is theirs") {
  const TestDir dir;
  const SimulatedDevice device_behind_all_ports;
  const int32_t interrupt = SIGINT, call_it = -1;
  SIGNAL(&interrupt, count_signal, &call_it);
  open_unit(shared_unit, "written.txt");
  for (const auto &[name, round_count, work] : groups) {
    std::printf("%s\n", name);
    std::fflush(stdout);  // that a deadlock has a name
    const DWORD failures = on_eight_threads([&](void *number) -> DWORD {
      DWORD count = 0;
      for (int i = 0; i < round_count; ++i)
        if (!work(static_cast<int32_t>(reinterpret_cast<intptr_t>(number)))) ++count;
      return count;
    });
    CHECK_MESSAGE(failures == 0, name);
  }
  CHECK(signals_seen == signal_count * 8);
  close_unit(shared_unit);
  const std::string text = file_contents("written.txt");
  for (char own = 'a'; own < 'a' + 8; ++own) CHECK(std::count(text.begin(), text.end(), own) == character_count);
}
