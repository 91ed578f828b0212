// SPDX-License-Identifier: MIT
// The core runtime's entries for units, on units of GNU Fortran's own run-time library.
#include <doctest/doctest.h>

#include <cerrno>
#include <string>

#include <io.h>

#include "child.h"
#include "qwcore.h"
#include "test_units.h"

namespace {
constexpr int32_t unit = 31;
constexpr int32_t closed_unit = 77;

int32_t read_character(int32_t from) { return __msportlib_d_readchar(from, nullptr, 0); }
}  // namespace

TEST_CASE("a unit that is not open is a negative answer everywhere") {
  CHECK(read_character(closed_unit) == -EBADF);
  CHECK(__msportlib_d_writechar(closed_unit, 'a') == -EBADF);
  CHECK(__msportlib_d_fseek(closed_unit, 0, 0) == -EBADF);
  CHECK(__msportlib_d_fseek_i8(closed_unit, 0, 0) == -EBADF);
  CHECK(__msportlib_d_curpos(closed_unit) == -EBADF);
  CHECK(__msportlib_d_curpos_i8(closed_unit) == -EBADF);
  CHECK(__msportlib_d_get_POSIX_fd(closed_unit) == -EBADF);
  CHECK(FLUSHQQ(&closed_unit) == 0);
  CHECK(COMMITQQ(&closed_unit) == 0);
  char name[8] = "xxxxxxx";
  int32_t size = sizeof name;
  CHECK(__msportlib_d_gethandle(closed_unit, name, &size) == -1);
  CHECK(size == 0);
  CHECK(std::string(name).empty());
}

TEST_CASE("libgfortran's own numbers for internal files are no units") {
  for (const int32_t internal : {-1, -2, -5}) {
    CHECK(read_character(internal) == -EBADF);
    CHECK(__msportlib_d_writechar(internal, 'a') == -EBADF);
    CHECK(__msportlib_d_fseek(internal, 0, 0) == -EBADF);
    CHECK(FLUSHQQ(&internal) == 0);
    CHECK(COMMITQQ(&internal) == 0);
  }
}

TEST_CASE("a character is taken and put where a READ stopped, though the READ has read ahead") {
  const TestFile file("ahead");
  const TestUnit opened(unit, file);
  for (int i = 0; i < 2000; ++i) write_line(unit, "line " + std::to_string(10'000 + i));
  CHECK(__msportlib_d_fseek(unit, 0, 0) == 0);
  CHECK(read_line(unit) == "line 10000");
  CHECK(read_character(unit) == 'l');
  CHECK(read_line(unit) == "ine 10001");
  CHECK(__msportlib_d_writechar(unit, 'X') == 0);
  CHECK(FLUSHQQ(&unit) == 1);
  CHECK(file.contents().substr(24, 12) == "Xine 10002\r\n");
}

TEST_CASE("characters are bytes 0 to 255, then end of file, again and again") {
  const TestFile file("bytes", std::string("A\0\x80\xFF\r\n", 6));
  const TestUnit opened(unit, file, true);
  CHECK(COMMITQQ(&unit) == 1);  // there is nothing to write
  errno = 3;
  for (const int32_t expected : {'A' + 0, 0, 128, 255, 13, 10, -2, -2}) CHECK(read_character(unit) == expected);
  CHECK(errno == 3);
}

// libgfortran keeps what it cannot write, so the unit cannot be closed: this needs a process of its own.
CHILD_PROGRAM(writes_to_a_unit_opened_for_reading) {
  test_open_for_reading(unit, arguments[0].data(), arguments[0].size());
  const int32_t buffered = __msportlib_d_writechar(unit, 'a');
  const bool failed = FLUSHQQ(&unit) == 0 && COMMITQQ(&unit) == 0;
  return buffered == 0 && failed ? 0 : 1;
}

TEST_CASE("writing to a unit opened for reading fails when the buffer is written") {
  const TestFile file("direction", "text");
  CHECK(run_child("writes_to_a_unit_opened_for_reading", {file.name()}).exit_code == 0);
  CHECK(file.contents() == "text");
}

TEST_CASE("what is written by character and by WRITE stands in one file in order") {
  const TestFile file("mixed");
  {
    const TestUnit opened(unit, file);
    write_line(unit, "one");
    CHECK(__msportlib_d_writechar(unit, 'x') == 0);
    CHECK(__msportlib_d_writechar(unit, static_cast<signed char>('\xE4')) == 0);
    CHECK(__msportlib_d_curpos(unit) == 7);
    CHECK(FLUSHQQ(&unit) == 1);
    CHECK(file.contents() == "one\r\nx\xE4");
    CHECK(__msportlib_d_writechar(unit, 'y') == 0);
    CHECK(COMMITQQ(&unit) == 1);
    CHECK(file.contents() == "one\r\nx\xE4y");
    CHECK(__msportlib_d_writechar(unit, 'z') == 0);
    CHECK(FLUSHQQ(nullptr) == 1);
    CHECK(file.contents() == "one\r\nx\xE4yz");
  }
}

TEST_CASE("seek takes the three origins, and one that makes no sense moves nothing") {
  const TestFile file("seek", "0123456789");
  const TestUnit opened(unit, file, true);
  CHECK(__msportlib_d_fseek(unit, 5, 0) == 0);
  CHECK(__msportlib_d_fseek(unit, -1, 1) == 0);
  const std::pair<int64_t, int32_t> refused[] = {{-1, 0}, {-5, 1}, {-11, 2}, {0, 3}, {0, -1}, {INT64_MAX, 1}};
  errno = 3;
  for (const auto &[offset, origin] : refused) CHECK(__msportlib_d_fseek_i8(unit, offset, origin) == -EINVAL);
  CHECK(__msportlib_d_curpos(unit) == 4);
  CHECK(read_character(unit) == '4');
  CHECK(__msportlib_d_fseek_i8(unit, -1, 2) == 0);
  CHECK(errno == 3);
  CHECK(read_character(unit) == '9');
}

TEST_CASE("a position beyond 2 GiB is told in 64 bits and refused in 32") {
  const TestFile file("big");
  const TestUnit opened(unit, file);
  constexpr int64_t position = 5'000'000'000;
  CHECK(__msportlib_d_fseek_i8(unit, position, 0) == 0);
  CHECK(__msportlib_d_curpos_i8(unit) == position);
  CHECK(__msportlib_d_curpos(unit) == -ERANGE);
  CHECK(__msportlib_d_fseek_i8(unit, 2147483647, 0) == 0);
  CHECK(__msportlib_d_curpos(unit) == 2147483647);
}

TEST_CASE("READ and characters share one position, also after the end of the file") {
  const TestFile file("shared", "hello\r\nworld\r\nthird\r\n");
  const TestUnit opened(unit, file, true);
  CHECK(read_character(unit) == 'h');
  CHECK(read_line(unit) == "ello");
  CHECK(read_character(unit) == 'w');
  CHECK(read_line(unit) == "orld");
  CHECK(read_line(unit) == "third");
  CHECK(read_line(unit) == "iostat -1");
  CHECK(__msportlib_d_fseek(unit, 7, 0) == 0);
  CHECK(read_line(unit) == "world");
}

TEST_CASE("overwriting in the middle keeps the rest of the file") {
  const TestFile file("middle");
  const TestUnit opened(unit, file);
  for (const char c : std::string("0123456789")) __msportlib_d_writechar(unit, c);
  CHECK(__msportlib_d_fseek(unit, 3, 0) == 0);
  CHECK(__msportlib_d_writechar(unit, 'x') == 0);
  CHECK(__msportlib_d_fseek(unit, 0, 0) == 0);
  CHECK(read_character(unit) == '0');
  CHECK(__msportlib_d_fseek(unit, 0, 2) == 0);
  CHECK(__msportlib_d_curpos(unit) == 10);
  CHECK(FLUSHQQ(&unit) == 1);
  CHECK(file.contents() == "012x456789");
}

TEST_CASE("the handle of a unit is its file's, and its name is cut to the buffer") {
  const TestFile file("handle", "0123456789");
  const TestUnit opened(unit, file, true);
  char name[64];
  int32_t size = sizeof name;
  const auto handle = reinterpret_cast<HANDLE>(__msportlib_d_gethandle(unit, name, &size));
  CHECK(GetFileSize(handle, nullptr) == 10);
  CHECK(std::string(name) == file.name());
  CHECK(size == static_cast<int32_t>(file.name().size()));

  char short_name[6];
  size = sizeof short_name;
  __msportlib_d_gethandle(unit, short_name, &size);
  CHECK(std::string(short_name) == file.name().substr(0, 5));
  CHECK(size == 5);
  CHECK(reinterpret_cast<HANDLE>(__msportlib_d_gethandle(unit, nullptr, nullptr)) == handle);
}

TEST_CASE("the descriptor of a unit can be written to next to the unit") {
  const TestFile file("descriptor");
  const TestUnit opened(unit, file);
  write_line(unit, "unit");
  const int32_t descriptor = __msportlib_d_get_POSIX_fd(unit);
  REQUIRE(descriptor > 2);
  CHECK(_write(descriptor, "descriptor", 10) == 10);
  CHECK(file.contents() == "unit\r\ndescriptor");
}

TEST_CASE("the POSIX I/O flag is kept and told") {
  const int32_t on = 1;
  const int32_t off = 0;
  int32_t old = -1;
  __msportlib_set_posix_io_flag(&on, &old);
  CHECK(old == 0);
  __msportlib_set_posix_io_flag(&off, &old);
  CHECK(old == 1);
  __msportlib_set_posix_io_flag(&off, nullptr);
}
