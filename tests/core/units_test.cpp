// SPDX-License-Identifier: MIT
// The core runtime's entries for units, on units of GNU Fortran's own run-time library.
#include <doctest/doctest.h>

#include <cerrno>
#include <string>

#include "child.h"
#include "guarded_text.h"
#include "qwcore.h"
#include "test_units.h"

namespace {
constexpr int32_t unit = 31;

int32_t read_character(int32_t from) { return __msportlib_d_readchar(from, nullptr, 0); }
}  // namespace

TEST_CASE("a unit that is not open, as libgfortran's own numbers for internal files, is a negative answer everywhere") {
  for (const int32_t closed : {77, -1, -2, -5}) {
    CAPTURE(closed);
    CHECK((read_character(closed) == -EBADF && __msportlib_d_writechar(closed, 'a') == -EBADF));
    CHECK((__msportlib_d_fseek(closed, 0, 0) == -EBADF && __msportlib_d_fseek_i8(closed, 0, 0) == -EBADF));
    CHECK((__msportlib_d_curpos(closed) == -EBADF && __msportlib_d_curpos_i8(closed) == -EBADF));
    CHECK((__msportlib_d_get_POSIX_fd(closed) == -EBADF && FLUSHQQ(&closed) == 0 && COMMITQQ(&closed) == 0));
    char name[8] = "xxxxxxx";
    int32_t size = sizeof name;
    CHECK(__msportlib_d_gethandle(closed, name, &size) == -1);
    CHECK((size == 0 && std::string(name).empty()));
  }
}

TEST_CASE("a character is taken and put where a READ stopped, though the READ has read ahead") {
  const TestFile file("ahead");
  const TestUnit opened(unit, file);
  for (int i = 0; i < 2000; ++i) write_line(unit, "line " + std::to_string(10'000 + i));
  CHECK((__msportlib_d_fseek(unit, 0, 0) == 0 && read_line(unit) == "line 10000"));
  CHECK((read_character(unit) == 'l' && read_line(unit) == "ine 10001"));
  CHECK((__msportlib_d_writechar(unit, 'X') == 0 && FLUSHQQ(&unit) == 1));
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
  open_unit(unit, arguments[0], 1);
  const bool buffered = __msportlib_d_writechar(unit, 'a') == 0;
  return buffered && FLUSHQQ(&unit) == 0 && COMMITQQ(&unit) == 0 ? 0 : 1;
}

TEST_CASE("writing to a unit opened for reading fails when the buffer is written") {
  const TestFile file("direction", "text");
  CHECK(run_child("writes_to_a_unit_opened_for_reading", {file.name()}).exit_code == 0);
  CHECK(file.contents() == "text");
}

TEST_CASE("what is written by character and by WRITE stands in one file in order") {
  const TestFile file("mixed");
  const TestUnit opened(unit, file);
  write_line(unit, "one");
  CHECK((__msportlib_d_writechar(unit, 'x') == 0 && __msportlib_d_writechar(unit, -28) == 0));
  CHECK(__msportlib_d_curpos(unit) == 7);
  CHECK((FLUSHQQ(&unit) == 1 && file.contents() == "one\r\nx\xE4"));
  CHECK((__msportlib_d_writechar(unit, 'y') == 0 && COMMITQQ(&unit) == 1 && file.contents() == "one\r\nx\xE4y"));
  CHECK((__msportlib_d_writechar(unit, 'z') == 0 && FLUSHQQ(nullptr) == 1 && file.contents() == "one\r\nx\xE4yz"));
}

TEST_CASE("seek takes the three origins, and one that makes no sense moves nothing") {
  const TestFile file("seek", "0123456789");
  const TestUnit opened(unit, file, true);
  CHECK((__msportlib_d_fseek(unit, 5, 0) == 0 && __msportlib_d_fseek(unit, -1, 1) == 0));
  const std::pair<int64_t, int32_t> refused[] = {{-1, 0}, {-5, 1}, {-11, 2}, {0, 3}, {0, -1}, {INT64_MAX, 1}};
  errno = 3;
  for (const auto &[offset, origin] : refused) CHECK(__msportlib_d_fseek_i8(unit, offset, origin) == -EINVAL);
  CHECK((__msportlib_d_curpos(unit) == 4 && read_character(unit) == '4'));
  CHECK((__msportlib_d_fseek_i8(unit, -1, 2) == 0 && read_character(unit) == '9' && errno == 3));
}

TEST_CASE("a position beyond 2 GiB is told in 64 bits and refused in 32") {
  const TestFile file("big");
  const TestUnit opened(unit, file);
  constexpr int64_t position = 5'000'000'000;
  CHECK((__msportlib_d_fseek_i8(unit, position, 0) == 0 && __msportlib_d_curpos_i8(unit) == position));
  CHECK(__msportlib_d_curpos(unit) == -ERANGE);
  CHECK((__msportlib_d_fseek_i8(unit, 2147483647, 0) == 0 && __msportlib_d_curpos(unit) == 2147483647));
}

TEST_CASE("READ and characters share one position, also after the end of the file") {
  const TestFile file("shared", "hello\r\nworld\r\nthird\r\n");
  const TestUnit opened(unit, file, true);
  CHECK((read_character(unit) == 'h' && read_line(unit) == "ello"));
  CHECK((read_character(unit) == 'w' && read_line(unit) == "orld"));
  CHECK((read_line(unit) == "third" && read_line(unit) == "iostat -1"));
  CHECK((__msportlib_d_fseek(unit, 7, 0) == 0 && read_line(unit) == "world"));
}

TEST_CASE("overwriting in the middle keeps the rest of the file") {
  const TestFile file("middle");
  const TestUnit opened(unit, file);
  for (const char c : std::string("0123456789")) __msportlib_d_writechar(unit, c);
  CHECK((__msportlib_d_fseek(unit, 3, 0) == 0 && __msportlib_d_writechar(unit, 'x') == 0));
  CHECK((__msportlib_d_fseek(unit, 0, 0) == 0 && read_character(unit) == '0'));
  CHECK((__msportlib_d_fseek(unit, 0, 2) == 0 && __msportlib_d_curpos(unit) == 10));
  CHECK((FLUSHQQ(&unit) == 1 && file.contents() == "012x456789"));
}

TEST_CASE("the handle of a unit is its file's, and its name is cut to the buffer") {
  const TestFile file("handle", "0123456789");
  const TestUnit opened(unit, file, true);
  intptr_t handle = 0;
  for (const size_t room : {file.name().size() + 1, size_t{6}}) {
    GuardedText name(room);
    auto size = static_cast<int32_t>(room);
    handle = __msportlib_d_gethandle(unit, name.data(), &size);
    CHECK(std::string(name.data()) == file.name().substr(0, room - 1));
    CHECK(size == static_cast<int32_t>(room - 1));
  }
  CHECK(GetFileSize(reinterpret_cast<HANDLE>(handle), nullptr) == 10);
  CHECK(__msportlib_d_gethandle(unit, nullptr, nullptr) == handle);
}

TEST_CASE("the POSIX I/O flag is kept and told") {
  const int32_t flags[] = {1, 0};
  int32_t old = -1;
  __msportlib_set_posix_io_flag(&flags[0], nullptr);
  __msportlib_set_posix_io_flag(&flags[1], &old);
  CHECK(old == 1);
}
