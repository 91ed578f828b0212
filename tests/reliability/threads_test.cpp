// SPDX-License-Identifier: MIT
// Eight threads at once in what routines share: no crash, no deadlock, and each thread's own things stay its own.
// And a million calls of a routine of each family, after which the process is no larger.
#include <doctest/doctest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstring>
#include <string>
#include <vector>

#include <windows.h>

#include <psapi.h>

#include "../core/test_units.h"
#include "qwport.h"
#include "simulated_device.h"
#include "test_dir.h"

namespace {

constexpr int thread_count = 8;
constexpr int32_t shared_unit = 21;

std::atomic<int> signals_seen;
void count_signal(int32_t *) { ++signals_seen; }
void do_nothing() {}

int16_t compare(const void *left, const void *right) {
  return static_cast<int16_t>(*static_cast<const int32_t *>(left) - *static_cast<const int32_t *>(right));
}

// ---- What a thread does, again and again ---------------------------------------------------------
// Each gives false where it finds anything but its own.

// So many of each thread that the table of handles grows while others use it.
bool uses_structures(int own) {
  int32_t handles[40], error = 0, wrong = 0;
  const int32_t number = own;
  for (int32_t &handle : handles) {
    PXFSTRUCTCREATE("stat", &handle, &error, 4);
    if (error != 0) return false;
    PXFINTSET(&handle, "st_mode", &number, &error, 7);
  }
  for (int32_t &handle : handles) {
    int32_t read = -1;
    PXFINTGET(&handle, "st_mode", &read, &error, 7);
    PXFSTRUCTFREE(&handle, &error);
    wrong += read != own || error != 0;
  }
  return wrong == 0;
}

template <int own> void tell(int32_t *value) { *value = own; }
constexpr void (*tellers[])(int32_t *) = {tell<0>, tell<1>, tell<2>, tell<3>, tell<4>, tell<5>, tell<6>, tell<7>};

bool uses_procedures(int own) {
  int32_t handle = 0, error = 0, told = -1;
  PXFGETSUBHANDLE(tellers[own], &handle, &error);
  PXFCALLSUBHANDLE(&handle, &told, &error);
  return told == own && error == 0;
}

bool uses_directories(int) {
  const int32_t length = 1;
  int32_t stream = 0, entry = 0, error = 0;
  PXFOPENDIR(".", &length, &stream, &error, 1);
  PXFSTRUCTCREATE("dirent", &entry, &error, 6);
  PXFREADDIR(&stream, &entry, &error);
  const bool found = error == 0;
  PXFSTRUCTFREE(&entry, &error);
  PXFCLOSEDIR(&stream, &error);
  return found && error == 0;
}

// One variable for all, short and long by turns: what is read is one of its values, whole.
bool uses_environment(int own) {
  const std::string values[] = {"short", std::string(3000, 'l')};
  const std::string setting = "QWPORT_SHARED=" + values[own % 2];
  if (SETENVQQ(setting.data(), setting.size()) == 0) return false;
  std::string found(3000, ' ');
  found.resize(static_cast<size_t>(GETENVQQ("QWPORT_SHARED", found.data(), 13, found.size())));
  return found == values[0] || found == values[1];
}

bool scans_environment(int) {
  char name[40], value[200];
  SCANENV("QWPORT_", name, value, 7, sizeof name, sizeof value);
  return name[0] == ' ' || std::strncmp(name, "QWPORT_", 7) == 0;
}

bool raises(int) {
  const int32_t number = SIGINT;
  return RAISEQQ(&number) == 0;
}

bool sets_alarms(int own) {
  const int32_t seconds = own % 2 == 0 ? 1000 : 0;
  int32_t left = 0, error = 0;
  PXFALARM(&seconds, &left, &error);
  ALARM(&seconds, do_nothing);
  return error == 0;
}

bool connects(int own) {
  const int32_t port = 10 + own;
  if (SPORT_CONNECT(&port, nullptr) != 0) return false;
  const int32_t first = SPORT_RELEASE(&port), second = SPORT_RELEASE(&port);
  return first == 0 && second == 0;
}

bool sorts(int own) {
  int32_t numbers[] = {own, 3, -own, 100, 2 * own, 0};
  const int64_t count = std::size(numbers), size = sizeof numbers[0];
  QSORT(numbers, &count, &size, compare);
  return std::is_sorted(std::begin(numbers), std::end(numbers));
}

bool draws(int own) {
  const int32_t next = 0;
  int32_t seed = own + 2, again = own + 2;
  const float mine = RAN(&seed), same = RAN(&again);
  const double shared = DRAND(&next);
  return mine == same && shared >= 0 && shared < 1 && RANF() >= 0;
}

bool asks_for_times(int) {
  float times[2];
  double wide[2];
  return DTIME(times) == times[0] + times[1] && DTIMER8(wide) == wide[0] + wide[1] && TIMEF() >= 0;
}

// Half of the threads seek to the end between their characters, where they stand anyway.
bool writes(int own) {
  const char character = static_cast<char>('a' + own);
  const int32_t offset = 0, from_end = 2;
  if (own % 2 == 0 && FSEEK(&shared_unit, &offset, &from_end) != 0) return false;
  return FPUTC(&shared_unit, &character, 1) == 0 && FTELL(&shared_unit) > 0;
}

bool rounds(int own) {
  const std::string modes[] = {"nearest", "positive", "negative", "tozero"}, &mode = modes[own % 4];
  char out[10];
  IEEE_FLAGS("set", "direction", mode.data(), out, 3, 9, mode.size(), sizeof out);
  IEEE_FLAGS("get", "direction", "", out, 3, 9, 0, sizeof out);
  return std::string(out, mode.size()) == mode;
}

struct Group {
  const char *name;
  int rounds;
  bool (*work)(int own);
};
constexpr Group groups[] = {
    {"structures", 100, uses_structures},
    {"procedures", 2000, uses_procedures},
    {"directories", 100, uses_directories},
    {"environment", 500, uses_environment},
    {"scan", 500, scans_environment},
    {"signals", 500, raises},
    {"alarm", 200, sets_alarms},
    {"ports", 5, connects},
    {"QSORT", 2000, sorts},
    {"generators", 5000, draws},
    {"times", 500, asks_for_times},
    {"one unit", 2000, writes},
    {"control words", 2000, rounds},
};

struct Crew {
  const Group &group;
  std::atomic<int> next_number = 0, failures = 0;
};

DWORD WINAPI work(void *argument) {
  auto &crew = *static_cast<Crew *>(argument);
  const int own = crew.next_number++;
  for (int i = 0; i < crew.group.rounds; ++i)
    if (!crew.group.work(own)) ++crew.failures;
  return 0;
}

// How many rounds of a group's threads went wrong; -1 if they do not come to an end.
int failures_of(const Group &group) {
  Crew crew{group};
  HANDLE threads[thread_count];
  for (HANDLE &thread : threads) thread = CreateThread(nullptr, 0, work, &crew, 0, nullptr);
  const bool ended = WaitForMultipleObjects(thread_count, threads, TRUE, 100'000) != WAIT_TIMEOUT;
  for (HANDLE thread : threads) CloseHandle(thread);
  return ended ? crew.failures.load() : -1;
}

// ---- A million calls ----------------------------------------------------------------------------

struct Soak {
  const char *family;
  void (*call)();
};
const Soak soaks[] = {
    {"units", [] { FTELL(&shared_unit); }},
    {"files",
     [] {
       char parts[4][40];
       SPLITPATHQQ("C:\\dir\\a.txt", parts[0], parts[1], parts[2], parts[3], 12, 40, 40, 40, 40);
     }},
    {"time",
     [] {
       char text[24];
       FDATE(text, sizeof text);
     }},
    {"processes",
     [] {
       char value[40];
       GETENVQQ("QWPORT_SHARED", value, 13, sizeof value);
     }},
    {"sorting", [] { sorts(5); }},
    {"numeric", [] { LNBLNK("a text   ", 9); }},
    {"random", [] { draws(5); }},
    {"floating_point",
     [] {
       int16_t word;
       GETCONTROLFPQQ(&word);
       SETCONTROLFPQQ(&word);
     }},
    {"serial",
     [] {
       const int32_t none = 250;
       int32_t present, count;
       SPORT_PEEK_DATA(&none, &present, &count);
     }},
    {"posix",
     [] {
       int32_t handle = 0, error = 0;
       PXFSTRUCTCREATE("stat", &handle, &error, 4);
       PXFSTRUCTFREE(&handle, &error);
     }},
    {"multibyte", [] { MBINDEX("a text in a text", "in", nullptr, 16, 2); }},
    {"nls",
     [] {
       char text[40];
       NLSFORMATNUMBER(text, "1234.5", nullptr, sizeof text, 6);
     }},
};

size_t private_bytes() {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS *>(&counters), sizeof counters);
  return counters.PrivateUsage;
}

}  // namespace

TEST_CASE("eight threads in what routines share find what is theirs") {
  const TestDir dir;
  const SimulatedDevice device_behind_all_ports;
  const int32_t interrupt = 2, call_it = -1;
  SIGNAL(&interrupt, count_signal, &call_it);
  open_unit(shared_unit, "written.txt");
  for (const Group &group : groups) {
    const std::string name = group.name;
    CAPTURE(name);
    const int failures = failures_of(group);
    CHECK(failures == 0);
    if (failures < 0) std::abort();  // its threads are still at work
  }
  CHECK(signals_seen == 500 * thread_count);
  close_unit(shared_unit);
  const std::string text = file_contents("written.txt");
  for (int own = 0; own < thread_count; ++own)
    CHECK(std::count(text.begin(), text.end(), static_cast<char>('a' + own)) == 2000);
}

TEST_CASE("a million calls of a routine of each family leave the process as large as it was") {
  const TestDir dir;
  open_unit(shared_unit, "written.txt");
  for (const Soak &soak : soaks) {
    const std::string family = soak.family;
    CAPTURE(family);
    for (int i = 0; i < 10'000; ++i) soak.call();
    const size_t before = private_bytes();
    for (int i = 0; i < 1'000'000; ++i) soak.call();
    CHECK(private_bytes() < before + 200'000);
  }
  close_unit(shared_unit);
}
