// SPDX-License-Identifier: MIT
// The three error queries, by way of routines that fail on purpose.
#include <doctest/doctest.h>

#include <cerrno>

#include "qwport.h"
#include "recording.h"

namespace {
const int32_t unit = 11;
char character = 'x';
}  // namespace

TEST_CASE("a recorded error is in errno, in IERRNO and in the core runtime's error status") {
  RecordingCore core;
  core.answer("__msportlib_d_writechar", -5);
  errno = 0;
  CHECK(FPUTC(&unit, "a", 1) == EINVAL);
  CHECK(core.calls() == "__msportlib_d_writechar(11, 97) for_errsns_load(0, 22, 0, 0, 0)");
  CHECK(IERRNO() == EINVAL);
  CHECK(GETLASTERROR() == EINVAL);
  CHECK(GETLASTERRORQQ() == EINVAL);
}

TEST_CASE("IERRNO and errno are kept apart") {
  RecordingCore core;
  core.answer("__msportlib_d_writechar", -5);
  core.answer("__msportlib_d_curpos", -9);
  FPUTC(&unit, "a", 1);

  SUBCASE("FTELL stores into IERRNO only") {
    CHECK(FTELL(&unit) == -9);
    CHECK(IERRNO() == 9);
    CHECK(GETLASTERROR() == EINVAL);
  }
  SUBCASE("the queries follow errno, not IERRNO") {
    errno = ERANGE;
    CHECK(GETLASTERROR() == ERANGE);
    CHECK(IERRNO() == EINVAL);
  }
  SUBCASE("a successful transfer clears neither") {
    core.answer("__msportlib_d_writechar", 0);
    CHECK(FPUTC(&unit, "a", 1) == 0);
    CHECK(IERRNO() == EINVAL);
    CHECK(GETLASTERROR() == EINVAL);
  }
  SUBCASE("a failure of GETC is recorded nowhere") {
    core.answer("__msportlib_d_readchar", -9);
    errno = 0;
    CHECK(GETC(&character, 1) == -1);
    CHECK(IERRNO() == EINVAL);
    CHECK(GETLASTERROR() == 0);
  }
}
