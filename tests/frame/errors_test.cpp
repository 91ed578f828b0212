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
  CHECK((IERRNO() == EINVAL && GETLASTERROR() == EINVAL && GETLASTERRORQQ() == EINVAL));
}

TEST_CASE("IERRNO and errno are kept apart") {
  RecordingCore core;
  core.answer("__msportlib_d_writechar", -5);
  FPUTC(&unit, "a", 1);
  core.answer("__msportlib_d_writechar", 0);
  CHECK(FPUTC(&unit, "a", 1) == 0);  // clears neither
  CHECK((IERRNO() == EINVAL && GETLASTERROR() == EINVAL));
  errno = ERANGE;
  core.answer("__msportlib_d_readchar", -9);
  CHECK(GETC(&character, 1) == -1);  // recorded nowhere
  CHECK((IERRNO() == EINVAL && GETLASTERROR() == ERANGE));
  core.answer("__msportlib_d_curpos", -9);
  CHECK(FTELL(&unit) == -9);  // stores into IERRNO only
  CHECK((IERRNO() == 9 && GETLASTERROR() == ERANGE));
}
