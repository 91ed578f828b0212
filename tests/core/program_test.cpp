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

#include "child.h"
#include "qwcore.h"
#include "test_units.h"

namespace {

constexpr int32_t unit = 51;

// What a child leaves in a unit's buffer must be in the file when it has ended.
void write_unflushed(const std::string &name) {
  test_open_new(unit, name.data(), name.size());
  write_line(unit, "written before the end");
}

void on_abort(int32_t signal_number) {
  std::printf("handler %d\n", signal_number);
  std::fflush(stdout);
}

void check_end(const char *child, const Arguments &more, uint32_t status, const std::string &output) {
  const TestFile file("end");
  Arguments arguments = {file.name()};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const ChildResult result = run_child(child, arguments);
  CHECK(result.exit_code == status);
  CHECK(result.output == output);
  CHECK(file.contents() == "written before the end\r\n");
}

}  // namespace

CHILD_PROGRAM(exits) {
  write_unflushed(arguments[0]);
  const int32_t status = arguments.size() > 1 ? std::atoi(arguments[1].c_str()) : 0;
  for_exit(arguments.size() > 1 ? &status : nullptr);
  return 99;
}

CHILD_PROGRAM(aborts) {
  write_unflushed(arguments[0]);
  if (arguments.size() > 1) for__signal(SIGABRT, reinterpret_cast<intptr_t>(on_abort));
  for_abort("the end is here", 7);
  return 99;
}

CHILD_PROGRAM(stops) {
  write_unflushed(arguments[0]);
  if (arguments.size() > 1) for_stop("all done", 8);
  for_stop(nullptr, 0);
  return 99;
}

TEST_CASE("for_exit gives the status, 0 without one, and the files are complete") {
  check_end("exits", {"7"}, 7, "");
  check_end("exits", {"-1"}, 0xFFFFFFFF, "");
  check_end("exits", {}, 0, "");
}

TEST_CASE("for_abort prints its text, calls a handler of SIGABRT and ends with 3") {
  check_end("aborts", {}, 3, "the end\n");
  check_end("aborts", {"handler"}, 3, "the end\nhandler 22\n");
}

TEST_CASE("for_stop prints its text and ends with 0") {
  check_end("stops", {}, 0, "");
  check_end("stops", {"text"}, 0, "STOP all done\n");
}

TEST_CASE("allocated memory is the C heap's, and what cannot be had is 12") {
  void *address = nullptr;
  REQUIRE(for_allocate(1000, &address) == 0);
  std::memset(address, 1, 1000);
  std::free(address);

  REQUIRE(for_allocate(0, &address) == 0);
  CHECK(address != nullptr);
  CHECK(for_deallocate(&address) == 0);
  CHECK(address == nullptr);
  CHECK(for_deallocate(&address) == 0);

  address = &address;
  CHECK(for_allocate(SIZE_MAX / 2, &address) == ENOMEM);
  CHECK(address == nullptr);
}
