// SPDX-License-Identifier: MIT
// The core runtime's entries for units, on units of GNU Fortran's own run-time library.
#include <doctest/doctest.h>

#include <atomic>
#include <cerrno>
#include <string>

#include "guarded_text.h"
#include "qwcore.h"
#include "test_units.h"

namespace {
constexpr int32_t unit = 31;

int32_t read_character(int32_t from) { return __msportlib_d_readchar(from, nullptr, 0); }
}  // namespace

TEST_CASE("a unit that is not open, as libgfortran's own numbers for internal files, is a negative answer everywhere") {
  const TestFile file("closed");
  const int32_t new_unit = test_open_newunit_(file.name().data(), file.name().size());
  close_unit(new_unit);
  test_write_internal_();
  for (const int32_t closed : {77, -1, -2, -5, new_unit}) {
    CAPTURE(closed);
    CHECK((read_character(closed) == -EBADF && __msportlib_d_writechar(closed, 'a') == -EBADF));
    CHECK((__msportlib_d_fseek(closed, 0, 0) == -EBADF && __msportlib_d_fseek_i8(closed, 0, 0) == -EBADF));
    CHECK((__msportlib_d_curpos(closed) == -EBADF && __msportlib_d_curpos_i8(closed) == -EBADF));
    CHECK((__msportlib_d_get_POSIX_fd(closed) == -EBADF && FLUSHQQ(&closed) == 0 && COMMITQQ(&closed) == 0));
    char name[8] = "xxxxxxx";
    int32_t size = sizeof name;
    CHECK((__msportlib_d_gethandle(closed, name, &size) == -1 && size == 0 && name[0] == '\0'));
  }
}

TEST_CASE("a character is taken and put where a READ stopped, though the READ has read ahead") {
  const TestUnit file(unit, "ahead");
  for (int i = 0; i < 2000; ++i) write_line(unit, "line " + std::to_string(10'000 + i));
  CHECK((__msportlib_d_fseek(unit, 0, 0) == 0 && read_line(unit) == "line 10000"));
  CHECK((read_character(unit) == 'l' && read_line(unit) == "ine 10001"));
  CHECK((__msportlib_d_writechar(unit, 'X') == 0 && FLUSHQQ(&unit) == 1));
  CHECK(file.contents().substr(24, 12) == "Xine 10002\r\n");
}

TEST_CASE("characters are bytes 0 to 255, then end of file, again and again") {
  const TestUnit file(unit, "bytes", std::string("A\0\x80\xFF\r\n", 6), true);
  CHECK(COMMITQQ(&unit) == 1);  // there is nothing to write
  errno = 3;
  for (const int32_t expected : {'A' + 0, 0, 128, 255, 13, 10, -2, -2}) CHECK(read_character(unit) == expected);
  CHECK(errno == 3);
}

TEST_CASE("writing to a unit opened for reading fails at once, also where another ended, and the unit can be closed") {
  const TestFile file("direction");
  for (const bool for_reading : {false, true, false}) {
    open_unit(unit, file.name(), for_reading);
    errno = 3;
    CHECK((__msportlib_d_writechar(unit, 'a') == (for_reading ? -EACCES : 0) && errno == 3));
    close_unit(unit);
  }
  CHECK(file.contents() == "a");
}

TEST_CASE("FLUSH of every unit is also of those that NEWUNIT numbered") {
  const TestFile file("newunit");
  const int32_t units[] = {test_open_newunit_("other", 5), test_open_newunit_(file.name().data(), file.name().size())};
  write_line(units[1], "line");
  CHECK((FLUSHQQ(nullptr) == 1 && file.contents() == "line\r\n"));
  for (const int32_t each : units) close_unit(each);
}

TEST_CASE("what a READ has read ahead of a pipe is taken next, and asking for the position does not lose it") {
  const int writer = open_pipe_unit(unit);
  REQUIRE(writer >= 0);
  _write(writer, "one\ntwo\r\nx\n", 11);
  CHECK((read_line(unit) == "one" && __msportlib_d_curpos(unit) == -ESPIPE));
  CHECK(__msportlib_d_fseek(unit, 0, 0) == -ESPIPE);
  for (const char expected : std::string("two\n")) CHECK(read_character(unit) == expected);
  CHECK(read_line(unit) == "x");
  _close(writer);
  errno = 3;
  CHECK((read_character(unit) == -2 && read_character(unit) == -2 && errno == 3));
  close_unit(unit);
}

TEST_CASE("what is written by character and by WRITE stands in one file in order") {
  const TestUnit file(unit, "mixed");
  write_line(unit, "one");
  CHECK((__msportlib_d_writechar(unit, 'x') == 0 && __msportlib_d_writechar(unit, -28) == 0));
  CHECK(__msportlib_d_curpos(unit) == 7);
  CHECK((FLUSHQQ(&unit) == 1 && file.contents() == "one\r\nx\xE4"));
  CHECK((__msportlib_d_writechar(unit, 'y') == 0 && COMMITQQ(&unit) == 1 && file.contents() == "one\r\nx\xE4y"));
  CHECK((__msportlib_d_writechar(unit, 'z') == 0 && FLUSHQQ(nullptr) == 1 && file.contents() == "one\r\nx\xE4yz"));
}

TEST_CASE("seek takes the three origins, and one that makes no sense moves nothing") {
  const TestUnit file(unit, "seek", "0123456789", true);
  CHECK((__msportlib_d_fseek(unit, 5, 0) == 0 && __msportlib_d_fseek(unit, -1, 1) == 0));
  const std::pair<int64_t, int32_t> refused[] = {{-1, 0}, {-5, 1}, {-11, 2}, {0, 3}, {0, -1}, {INT64_MAX, 1}};
  errno = 3;
  for (const auto &[offset, origin] : refused) CHECK(__msportlib_d_fseek_i8(unit, offset, origin) == -EINVAL);
  CHECK((__msportlib_d_curpos(unit) == 4 && read_character(unit) == '4'));
  CHECK((__msportlib_d_fseek_i8(unit, -1, 2) == 0 && read_character(unit) == '9' && errno == 3));
}

TEST_CASE("a position beyond 2 GiB is told in 64 bits and refused in 32") {
  const TestUnit file(unit, "big");
  constexpr int64_t position = 5'000'000'000;
  CHECK((__msportlib_d_fseek_i8(unit, position, 0) == 0 && __msportlib_d_curpos_i8(unit) == position));
  CHECK(__msportlib_d_curpos(unit) == -ERANGE);
  CHECK((__msportlib_d_fseek_i8(unit, 2147483647, 0) == 0 && __msportlib_d_curpos(unit) == 2147483647));
}

TEST_CASE("READ and characters share one position, also after the end of the file") {
  const TestUnit file(unit, "shared", "hello\r\nworld\r\nthird\r\n", true);
  CHECK((read_character(unit) == 'h' && read_line(unit) == "ello"));
  CHECK((read_character(unit) == 'w' && read_line(unit) == "orld"));
  CHECK((read_line(unit) == "third" && read_line(unit) == "iostat -1"));
  CHECK((__msportlib_d_fseek(unit, 7, 0) == 0 && read_line(unit) == "world"));
}

TEST_CASE("overwriting in the middle keeps the rest of the file") {
  const TestUnit file(unit, "middle");
  for (const char c : std::string("0123456789")) __msportlib_d_writechar(unit, c);
  CHECK((__msportlib_d_fseek(unit, 3, 0) == 0 && __msportlib_d_writechar(unit, 'x') == 0));
  CHECK((__msportlib_d_fseek(unit, 0, 0) == 0 && read_character(unit) == '0'));
  CHECK((__msportlib_d_fseek(unit, 0, 2) == 0 && __msportlib_d_curpos(unit) == 10));
  CHECK((FLUSHQQ(&unit) == 1 && file.contents() == "012x456789"));
}

TEST_CASE("the handle of a unit is its file's, and its name is cut to the buffer") {
  const TestUnit file(unit, "handle", "0123456789", true);
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
  const int32_t on = 1, off = 0;
  int32_t old = -1;
  __msportlib_set_posix_io_flag(&on, nullptr);
  __msportlib_set_posix_io_flag(&off, &old);
  CHECK(old == 1);
}

// ---- Threads ------------------------------------------------------------------------------------

namespace {

std::atomic<bool> seeks_are_over{false};

DWORD WINAPI seek_behind_the_start(void *) {
  for (int i = 0; i < 1000; ++i) __msportlib_d_fseek(unit, 1, 0);
  seeks_are_over = true;
  return 0;
}

}  // namespace

TEST_CASE("a reader sees no position that a seek of another thread only passes") {
  const TestUnit file(unit, "passing", 'X' + std::string(100'000, '.'), true);
  __msportlib_d_fseek(unit, 1, 0);
  HANDLE thread = CreateThread(nullptr, 0, seek_behind_the_start, nullptr, 0, nullptr);
  int wrong = 0;
  while (!seeks_are_over) wrong += read_character(unit) == 'X' ? 1 : 0;
  CHECK(wrong == 0);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
}
