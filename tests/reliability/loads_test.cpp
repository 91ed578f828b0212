// SPDX-License-Identifier: MIT
// Loading and unloading the library again and again, in every state that it can be left in, and ending a process
// while its threads are inside routines.
#include <doctest/doctest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <windows.h>

#include "child.h"
#include "handles.h"

namespace {

template <class Routine> Routine *entry(HMODULE library, const char *name) {
  return reinterpret_cast<Routine *>(reinterpret_cast<void *>(GetProcAddress(library, name)));
}

void on_signal(int32_t *) {}
void on_alarm() {}

void use_nothing(HMODULE) {}

void use_control_word(HMODULE library) {
  const int16_t word = 0x37f;
  entry<void(const int16_t *)>(library, "SETCONTROLFPQQ")(&word);
}

void handle_a_signal(HMODULE library) {
  const int32_t interrupt = 2, call_it = -1;
  entry<intptr_t(const int32_t *, void (*)(int32_t *), const int32_t *)>(library, "SIGNAL")(&interrupt, on_signal,
                                                                                            &call_it);
}

void leave_an_alarm(HMODULE library) {
  const int32_t seconds = 1;
  entry<int32_t(const int32_t *, void (*)())>(library, "ALARM")(&seconds, on_alarm);
}

struct Load {
  const char *name;
  int count;
  bool has_core;
  void (*use)(HMODULE library);
};
// There are 1088 thread-local indexes.
constexpr Load loads[] = {
    {"without a core runtime", 500, false, use_nothing},      {"with one", 500, true, use_nothing},
    {"after a control word", 1'200, false, use_control_word}, {"with a handler", 100, true, handle_a_signal},
    {"with an alarm pending", 3, false, leave_an_alarm},
};

size_t committed_bytes() {
  size_t sum = 0;
  MEMORY_BASIC_INFORMATION region;
  for (char *place = nullptr; VirtualQuery(place, &region, sizeof region) != 0; place += region.RegionSize)
    if (region.State == MEM_COMMIT) sum += region.RegionSize;
  return sum;
}

void load_and_unload(const Load &load) {
  HMODULE library = LoadLibraryA("libqwport.dll");
  if (library == nullptr) std::exit(98);
  load.use(library);
  FreeLibrary(library);
}

DWORD WINAPI call_for_ever(void *library) {
  char text[40];
  const int32_t mode = 4;
  const auto format = entry<int32_t(char *, const char *, const int32_t *, size_t, size_t)>(
      static_cast<HMODULE>(library), "NLSFORMATNUMBER");
  const auto sleep = entry<void(const int32_t *)>(static_cast<HMODULE>(library), "SLEEPQQ");
  const auto find = entry<int32_t(const char *, char *, size_t, size_t)>(static_cast<HMODULE>(library), "GETENVQQ");
  for (;;) {
    format(text, "1234.5", nullptr, sizeof text, 6);
    find("PATH", text, 4, sizeof text);
    sleep(&mode);
  }
}

}  // namespace

// Arguments: the number of a row, and how often instead of as it says. Prints by how much the process has grown.
CHILD_PROGRAM(loads_and_unloads) {
  const Load &load = loads[std::stoi(arguments.at(0))];
  const int count = arguments.size() > 1 ? std::stoi(arguments.at(1)) : load.count;
  if (load.has_core && LoadLibraryA("libqwcorert.dll") == nullptr) return 99;
  for (int i = 0; i < 20; ++i) load_and_unload(load);
  const DWORD handles_before = handle_count();
  const size_t before = committed_bytes();
  for (int i = 0; i < count; ++i) load_and_unload(load);
  Sleep(load.use == leave_an_alarm ? 1500 : 0);
  const DWORD handles = handle_count();
  const auto growth = static_cast<long long>(committed_bytes()) - static_cast<long long>(before);
  std::printf("%lld KiB, %d handles\n", growth / 1024, static_cast<int>(handles) - static_cast<int>(handles_before));
  return growth < 1'000'000 && handles <= handles_before ? 0 : 1;
}

// Arguments: milliseconds after which it ends, with status 7.
CHILD_PROGRAM(ends_while_four_threads_call) {
  if (LoadLibraryA("libqwcorert.dll") == nullptr) return 99;
  HMODULE library = LoadLibraryA("libqwport.dll");
  for (int i = 0; i < 4; ++i) CloseHandle(CreateThread(nullptr, 0, call_for_ever, library, 0, nullptr));
  Sleep(static_cast<DWORD>(std::stoul(arguments.at(0))));
  return 7;
}

TEST_CASE("the library can be loaded and unloaded without end") {
  for (size_t row = 0; row < std::size(loads); ++row) {
    const std::string name = loads[row].name;
    CAPTURE(name);
    const ChildResult result = run_child("loads_and_unloads", {std::to_string(row)});
    CAPTURE(result.output);
    CHECK(result.exit_code == 0);
  }
}

TEST_CASE("a process ends while four of its threads are inside routines, a hundred times") {
  int ended = 0;
  for (int i = 0; i < 100; ++i)
    ended += run_child("ends_while_four_threads_call", {std::to_string(i % 10)}).exit_code == 7;
  CHECK(ended == 100);
}
