// SPDX-License-Identifier: MIT
// Which failures IERRNO shows: errno has them all.
#include "library_test.h"

namespace {

constexpr int32_t earlier_error = 77;

struct Failure {
  const char *routine;
  void (*cause)();
  int32_t recorded;  // what IERRNO gives afterwards
};

const char absent[] = "absent/name";
int32_t status[13];
int64_t wide_status[13];

// The core runtime answers -1 to all that it is asked for a unit.
const Failure failures[] = {
    {"ACCESS", [] { call(ACCESS, absent, "r"); }, ENOENT},
    {"CHDIR", [] { call(CHDIR, absent); }, ENOENT},
    {"CHMOD", [] { call(CHMOD, absent, "+w"); }, ENOENT},
    {"FGETC", [] { call(FGETC, 9, Room{1}); }, EINVAL},
    {"FPUTC", [] { call(FPUTC, 9, "c"); }, EINVAL},
    {"FSTAT", [] { call(FSTAT, 9, status); }, EINVAL},
    {"FSTATI8", [] { call(FSTATI8, 9, wide_status); }, EINVAL},
    {"FTELL", [] { call(FTELL, 9); }, 1},
    {"KILL", [] { call(KILL, 1, 3); }, EINVAL},
    {"PUTC", [] { call(PUTC, "c"); }, EINVAL},
    {"RENAME", [] { call(RENAME, absent, "other"); }, ENOENT},
    {"STAT", [] { call(STAT, absent, status); }, ENOENT},
    {"STATI8", [] { call(STATI8, absent, wide_status); }, ENOENT},
    {"UNLINK", [] { call(UNLINK, absent); }, ENOENT},
    {"CHANGEDIRQQ", [] { call(CHANGEDIRQQ, absent); }, earlier_error},
    {"DELDIRQQ", [] { call(DELDIRQQ, absent); }, earlier_error},
    {"GETC", [] { call(GETC, Room{1}); }, earlier_error},
    {"GETPOS", [] { call(GETPOS, 9); }, earlier_error},
    {"ISATTY", [] { call(ISATTY, 9); }, earlier_error},
    {"MAKEDIRQQ", [] { call(MAKEDIRQQ, absent); }, earlier_error},
    {"RENAMEFILEQQ", [] { call(RENAMEFILEQQ, absent, "other"); }, earlier_error},
    {"SETFILEACCESSQQ", [] { call(SETFILEACCESSQQ, absent, 0); }, earlier_error},
    {"TTYNAM", [] { outcome(TTYNAM, Room{3}, 9); }, earlier_error},
};

}  // namespace

TEST_CASE_FIXTURE(InTestDir, "IERRNO shows the failures of the routines that record them, and of no other") {
  for (const char *entry :
       {"__msportlib_d_readchar", "__msportlib_d_writechar", "__msportlib_d_curpos", "__msportlib_d_gethandle"}) {
    RecordingCore::answer(entry, -1);
  }
  RecordingCore::answer("__msportlib_d_fseek", earlier_error);
  for (const Failure &failure : failures) {
    CAPTURE(failure.routine);
    call(FSEEK, 9, 0, 0);
    failure.cause();
    CHECK(IERRNO() == failure.recorded);
    core.calls();
  }
}
