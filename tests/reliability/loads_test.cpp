// SPDX-License-Identifier: MIT
// Loading and unloading the library again and again, in every state that it can be left in, and ending a process
// while its threads are inside routines.
#include <doctest/doctest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <windows.h>

#include "child.h"
#include "qwport.h"
#include "resources.h"

namespace {

// Calls a routine of a loaded library, for a program that does not import it.
#define CALL(library, routine, ...) \
  reinterpret_cast<decltype(&routine)>(reinterpret_cast<void *>(GetProcAddress(library, #routine)))(__VA_ARGS__)

void on_signal(int32_t *) {}
void on_alarm() {}

const int32_t one_second = 1, interrupt = 2, call_it = -1, some_milliseconds = 4;
const int16_t default_word = 0x37f;

void leave_an_alarm(HMODULE library) { CALL(library, ALARM, &one_second, on_alarm); }

void register_procedures(HMODULE library) {
  int32_t handle = 0, error = 0;
  for (intptr_t number = 1000; number < 2300; ++number)  // several blocks of handles
    CALL(library, PXFGETSUBHANDLE, reinterpret_cast<void (*)(int32_t *)>(number), &handle, &error);
}

struct Load {
  const char *name;
  int count;
  bool has_core;
  void (*use)(HMODULE library);
};
// There are 1088 thread-local indexes.
const Load loads[] = {
    {"without a core runtime", 500, false, [](HMODULE) {}},
    {"with one", 500, true, [](HMODULE) {}},
    {"after a control word", 1'200, false, [](HMODULE library) { CALL(library, SETCONTROLFPQQ, &default_word); }},
    {"with a handler", 100, true, [](HMODULE library) { CALL(library, SIGNAL, &interrupt, on_signal, &call_it); }},
    {"after procedures have got handles", 150, false, register_procedures},
    {"with an alarm pending", 3, false, leave_an_alarm},
};

void load_and_unload(const Load &load) {
  HMODULE library = LoadLibraryA("libqwport.dll");
  if (library == nullptr) std::exit(98);
  load.use(library);
  FreeLibrary(library);
}

DWORD WINAPI call_for_ever(void *module) {
  auto *library = static_cast<HMODULE>(module);
  for (char text[40];;) {
    CALL(library, NLSFORMATNUMBER, text, "1234.5", nullptr, sizeof text, 6);
    CALL(library, GETENVQQ, "PATH", text, 4, sizeof text);
    CALL(library, SLEEPQQ, &some_milliseconds);
  }
}

}  // namespace

// Argument: the number of a row. Prints by how much the process has grown.
CHILD_PROGRAM(loads_and_unloads) {
  const Load &load = loads[std::stoi(arguments.at(0))];
  if (load.has_core && LoadLibraryA("libqwcorert.dll") == nullptr) return 99;
  for (int i = 0; i < 20; ++i) load_and_unload(load);
  const auto handles = static_cast<int>(handle_count());
  const auto bytes = static_cast<long long>(committed_bytes());
  for (int i = 0; i < load.count; ++i) load_and_unload(load);
  Sleep(load.use == leave_an_alarm ? 1500 : 0);
  const int more_handles = static_cast<int>(handle_count()) - handles;
  const long long growth = static_cast<long long>(committed_bytes()) - bytes;
  std::printf("%lld KiB, %d handles\n", growth / 1024, more_handles);
  return growth < 1'000'000 && more_handles <= 0 ? 0 : 1;
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
    const ChildResult result = run_child("loads_and_unloads", {std::to_string(row)});
    CHECK_MESSAGE(result.exit_code == 0, loads[row].name, ": ", result.output);
  }
}

TEST_CASE("a process ends while four of its threads are inside routines, a hundred times") {
  for (int i = 0; i < 100; ++i)
    CHECK(run_child("ends_while_four_threads_call", {std::to_string(i % 10)}).exit_code == 7);
}
