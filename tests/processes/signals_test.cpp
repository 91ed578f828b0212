// SPDX-License-Identifier: MIT
// Signals and error handling: what the core runtime is asked, and the calls that the host gets.
#include <process.h>

#include "library_test.h"

namespace {

void handle(int32_t *) {}

}  // namespace

CHILD_PROGRAM(sleeps) {
  Sleep(60000);
  return 0;
}

TEST_CASE("SIGNAL translates the number, and hands on a dispatcher or a flag") {
  RecordingCore core;
  core.answer("for__signal", 4711);
  for (const auto &[signum, host] : {std::pair{2, 2}, {4, 4}, {6, 22}, {8, 8}, {9, 9}, {11, 11}, {15, 15}}) {
    CAPTURE(signum);
    CHECK(call(SIGNAL, signum, handle, -5) == 4711);
    CHECK((core.first_call_argument(0) == host && core.first_call_argument(1) != 0));
    core.calls();
    for (const int32_t flag : {0, 1})
      CHECK_CALLS(call(SIGNAL, signum, handle, flag), 4711,
                  "for__signal(" + std::to_string(host) + ", " + std::to_string(flag) + ")");
  }
}

TEST_CASE("KILL ends a process with exit code 9, and records its failures") {
  RecordingCore core;
  const std::string program = own_path();
  const intptr_t child = _spawnl(_P_NOWAIT, program.c_str(), program.c_str(), "--child", "sleeps", nullptr);
  REQUIRE(child != -1);
  const DWORD pid = GetProcessId(reinterpret_cast<HANDLE>(child));
  CHECK_CALLS(call(KILL, pid, 15), EINVAL, records(EINVAL));  // only its own process
  // The host takes pid + 1 to pid + 3 for pid.
  for (DWORD other = pid + 1; other <= pid + 3; ++other) CHECK_CALLS(call(KILL, other, 9), EINVAL, records(EINVAL));
  CHECK(WaitForSingleObject(reinterpret_cast<HANDLE>(child), 0) == WAIT_TIMEOUT);
  CHECK_CALLS(call(KILL, pid, 9), 0, "");
  int exit_code = 0;
  CHECK((_cwait(&exit_code, child, 0) == child && exit_code == 9));
  core.answer("for__raise", 1);
  CHECK_CALLS(call(KILL, GETPID(), 15), EINVAL, "for__raise(15) " + records(EINVAL));
  const FailingCall denied("TerminateProcess", ERROR_ACCESS_DENIED);
  CHECK_CALLS(call(KILL, GETPID(), 9), EACCES, records(EACCES));
}

TEST_CASE("SETERRORMODEQQ changes one bit of the error mode") {
  const UINT before = SetErrorMode(SEM_NOGPFAULTERRORBOX);
  for (const int32_t flag : {0, 1, -1}) {
    call(SETERRORMODEQQ, flag);
    CHECK(GetErrorMode() == (flag == 1 ? SEM_NOGPFAULTERRORBOX : SEM_NOGPFAULTERRORBOX | SEM_FAILCRITICALERRORS));
  }
  SetErrorMode(before);
}
