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
  open_unit(unit, name);
  write_line(unit, "written before the end");
}

void on_abort(int32_t signal_number) {
  std::printf("handler %d\n", signal_number);
  std::fflush(stdout);
}

void check_end(const char *child, const char *more, uint32_t status, const std::string &output) {
  const TestFile file("end");
  const ChildResult result = run_child(child, {file.name(), more});
  CHECK(result.exit_code == status);
  CHECK(result.output == output);
  CHECK(file.contents() == "written before the end\r\n");
}

}  // namespace

CHILD_PROGRAM(exits) {
  write_unflushed(arguments[0]);
  const int32_t status = std::atoi(arguments[1].c_str());
  for_exit(arguments[1].empty() ? nullptr : &status);
  return 99;
}

CHILD_PROGRAM(aborts) {
  write_unflushed(arguments[0]);
  if (!arguments[1].empty()) for__signal(SIGABRT, reinterpret_cast<intptr_t>(on_abort));
  for_abort("the end is here", 7);
  return 99;
}

CHILD_PROGRAM(stops) {
  write_unflushed(arguments[0]);
  for_stop(arguments[1].empty() ? nullptr : arguments[1].data(), arguments[1].size());
  return 99;
}

TEST_CASE("for_exit, for_abort and for_stop end with their status and text, SIGABRT's handler called, files complete") {
  check_end("exits", "7", 7, "");
  check_end("exits", "-1", 0xFFFFFFFF, "");
  check_end("exits", "", 0, "");
  check_end("aborts", "", 3, "the end\n");
  check_end("aborts", "handler", 3, "the end\nhandler 22\n");
  check_end("stops", "", 0, "");
  check_end("stops", "all done", 0, "STOP all done\n");
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
