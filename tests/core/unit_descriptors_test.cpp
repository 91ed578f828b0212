// SPDX-License-Identifier: MIT
// Descriptors connected to units.
#include <doctest/doctest.h>

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include "qwcore.h"
#include "test_units.h"

namespace {

constexpr int32_t unit = 41;

int open_file(const TestFile &file, int flags) { return _open(file.name().c_str(), flags | _O_BINARY); }

int32_t connect(int descriptor, std::string_view access = "") {
  return for_fdopen(descriptor, unit, access.data(), access.size());
}

bool is_open(int descriptor) { return _get_osfhandle(descriptor) != -1; }

}  // namespace

TEST_CASE("a descriptor connected to a unit is read by READ and closed by CLOSE") {
  const TestFile file("fd_read", "one\r\ntwo\r\n");
  const int descriptor = open_file(file, _O_RDONLY);
  REQUIRE(connect(descriptor) == 0);
  CHECK((read_line(unit) == "one" && read_line(unit) == "two" && read_line(unit) == "iostat -1"));
  CHECK(__msportlib_d_get_POSIX_fd(unit) == descriptor);
  CHECK(connect(descriptor) == 0);  // to the unit that has it
  CHECK(__msportlib_d_curpos(unit) == 10);
  close_unit(unit);
  CHECK_FALSE(is_open(descriptor));
}

TEST_CASE("a unit goes on where the descriptor stands, and keeps its number with gaps below it") {
  const TestFile file("fd_position", "one\r\ntwo\r\nthree\r\n");
  const int gap = open_file(file, _O_RDONLY);
  const int descriptor = open_file(file, _O_RDONLY);
  const int next = open_file(file, _O_RDONLY);
  _close(gap);
  _lseek(descriptor, 5, SEEK_SET);
  REQUIRE(connect(descriptor) == 0);
  CHECK(__msportlib_d_get_POSIX_fd(unit) == descriptor);
  CHECK((!is_open(gap) && is_open(next)));
  CHECK(read_line(unit) == "two");
  close_unit(unit);
  _close(next);
}

TEST_CASE("a descriptor is written by WRITE, at the end when that is asked for") {
  const TestFile file("fd_write", "first\r\n");
  REQUIRE(connect(open_file(file, _O_WRONLY), "form=formatted, POSITION=append") == 0);
  write_line(unit, "second");
  CHECK(__msportlib_d_readchar(unit, nullptr, 0) == -EBADF);
  close_unit(unit);
  CHECK(file.contents() == "first\r\nsecond\r\n");
}

TEST_CASE("a pipe joins two units, and ends when its writing unit is closed") {
  constexpr int32_t writer = 42;
  int ends[2];
  REQUIRE(_pipe(ends, 4096, _O_BINARY | _O_NOINHERIT) == 0);
  REQUIRE(connect(ends[0]) == 0);
  REQUIRE(for_fdopen(ends[1], writer, nullptr, 0) == 0);
  write_line(writer, "through the pipe");
  CHECK(FLUSHQQ(&writer) == 1);
  errno = 3;
  CHECK((__msportlib_d_readchar(unit, nullptr, 0) == 't' && read_line(unit) == "hrough the pipe"));
  CHECK((__msportlib_d_curpos(unit) == -ESPIPE && __msportlib_d_fseek(unit, 0, 0) == -ESPIPE && errno == 3));
  close_unit(writer);
  CHECK(read_line(unit) == "iostat -1");
  close_unit(unit);
}

TEST_CASE("what cannot be connected is refused and left open") {
  const TestFile file("fd_refused", "text");
  const int descriptor = open_file(file, _O_RDONLY);
  for (const int none : {-1, 500, 100'000}) CHECK(connect(none) == EBADF);
  for (const char *access : {"form=binary", "form"}) CHECK(connect(descriptor, access) == EINVAL);
  CHECK(for_fdopen(descriptor, -7, nullptr, 0) == EIO);  // no such unit number
  char text[5] = "";
  CHECK((_read(descriptor, text, 4) == 4 && std::string(text) == "text"));
  _close(descriptor);
}

TEST_CASE("the access text takes keywords in any case, with blanks and empty places") {
  const TestFile file("fd_access", "text");
  for (const char *access :
       {"", "  ", ",", "Form=Unformatted", " blank=zero ,status=OLD", "newline=no,STATUS=unknown"}) {
    CAPTURE(access);
    CHECK(connect(open_file(file, _O_RDONLY), access) == 0);
    close_unit(unit);
  }
}
