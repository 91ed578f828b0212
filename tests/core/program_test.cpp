// SPDX-License-Identifier: MIT
// The end of a program with open units, and memory.
#include <doctest/doctest.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <windows.h>

#include "child.h"
#include "guarded_text.h"
#include "qwcore.h"
#include "test_units.h"

namespace {

constexpr int32_t unit = 51;
constexpr int32_t pipe_unit = 52;

// What a child leaves in a unit's buffer must be in the file when it has ended, though another thread waits for input.
void write_unflushed(const std::string &name) {
  open_unit(unit, name);
  write_line(unit, "written before the end");
  open_pipe_unit(pipe_unit);
  static HANDLE about_to_read = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  const auto read = [](void *) -> DWORD {
    SetEvent(about_to_read);
    return static_cast<DWORD>(__msportlib_d_readchar(pipe_unit, nullptr, 0));
  };
  CreateThread(nullptr, 0, read, nullptr, 0, nullptr);
  WaitForSingleObject(about_to_read, INFINITE);
  Sleep(20);
}

void on_abort(int32_t signal_number) {
  std::printf("handler %d\n", signal_number);
  std::fflush(stdout);
}

void on_abort_again(int32_t signal_number) {
  on_abort(signal_number);
  for_abort("again", 5);
}

int32_t exit_while_writing() {
  const int32_t status = 5;
  for_exit(&status);
  return 0;
}

struct End {
  const char *child, *argument;
  uint32_t status;
  const char *output;
};

DWORD WINAPI use_unit(void *) {
  for (;;) {
    __msportlib_d_readchar(unit, nullptr, 0);
    __msportlib_d_fseek(unit, 3, 0);
  }
}

}  // namespace

CHILD_PROGRAM(exits) {
  write_unflushed(arguments[0]);
  const int32_t status = std::atoi(arguments[1].c_str());
  if (arguments[1] == "WRITE") test_write_value_(&unit, exit_while_writing);
  for_exit(arguments[1].empty() ? nullptr : &status);
  return 99;
}

CHILD_PROGRAM(aborts) {
  write_unflushed(arguments[0]);
  if (arguments[1] == "handler") for__signal(SIGABRT, reinterpret_cast<intptr_t>(on_abort));
  if (arguments[1] == "again") for__signal(SIGABRT, reinterpret_cast<intptr_t>(on_abort_again));
  for_abort("the end is here", 7);
  return 99;
}

CHILD_PROGRAM(stops) {
  write_unflushed(arguments[0]);
  for__issue_diagnostic(0, 1, "stops");
  for_stop(arguments[1].empty() ? nullptr : arguments[1].data(), arguments[1].size());
  return 99;
}

TEST_CASE("for_exit, for_abort and for_stop end with their status and text, SIGABRT's handler called, files complete") {
  const End ends[] = {
      {"exits", "7", 7, ""},
      {"exits", "-1", 0xFFFFFFFF, ""},
      {"exits", "", 0, ""},
      {"exits", "WRITE", 5, ""},
      {"aborts", "", 3, "the end\n"},
      {"aborts", "handler", 3, "the end\nhandler 22\n"},
      {"aborts", "again", 3, "the end\nhandler 22\nagain\n"},
      {"stops", "", 0, "libqwcorert: info (1): stops\n"},
      {"stops", "all done", 0, "libqwcorert: info (1): stops\nSTOP all done\n"},
  };
  for (const End &end : ends) {
    CAPTURE(end.argument);
    const TestFile file("end");
    const ChildResult result = run_child(end.child, {file.name(), end.argument});
    CHECK(result.exit_code == end.status);
    CHECK(result.output == end.output);
    CHECK(file.contents() == "written before the end\r\n");
  }
}

CHILD_PROGRAM(ends_while_threads_use_units) {
  open_unit(unit, arguments[0]);
  for (int i = 0; i < 4; ++i) CreateThread(nullptr, 0, use_unit, nullptr, 0, nullptr);
  Sleep(5);
  return 6;
}

TEST_CASE("a program ends while threads are inside unit routines") {
  const TestFile file("busy");
  for (int i = 0; i < 6; ++i) CHECK(run_child("ends_while_threads_use_units", {file.name()}).exit_code == 6);
}

TEST_CASE("the command line of a main program that is not in Fortran") {
  CHECK(for_nargs() == __argc);
  const int32_t program = 0;
  int64_t length = 0;
  GuardedText name(std::strlen(__argv[0]));
  for_getarg(&program, name.data(), &length, name.size());
  CHECK((name.str() == __argv[0] && length == static_cast<int64_t>(name.size())));
}

TEST_CASE("allocated memory is the C heap's, and what cannot be had is 12") {
  void *address = nullptr;
  REQUIRE(for_allocate(1000, &address) == 0);
  std::memset(address, 1, 1000);
  std::free(address);

  REQUIRE((for_allocate(0, &address) == 0 && address != nullptr));
  for (int i = 0; i < 2; ++i) CHECK((for_deallocate(&address) == 0 && address == nullptr));
  address = &address;
  CHECK((for_allocate(SIZE_MAX / 2, &address) == ENOMEM && address == nullptr));
}
