// SPDX-License-Identifier: MIT
// Signals and error handling: what the core runtime is asked, and the calls that the host gets.
#include <vector>

#include <process.h>

#include "library_test.h"

namespace {

std::vector<int32_t> handled;
void note_signal(int32_t *signum) {
  handled.push_back(*signum);
  *signum = 99;  // the caller's own copy
}
void other_handler(int32_t *) { handled.push_back(-1); }
void by_value_handler(int32_t) {}
constexpr int32_t kill_signal = 9;

constexpr std::pair<int32_t, int32_t> supported[] = {{2, 2}, {4, 4}, {6, 22}, {8, 8}, {9, 9}, {11, 11}, {15, 15}};
constexpr int32_t unsupported[] = {0, 1, 3, 5, 7, 10, 12, 13, 14, 16, -1, -2147483647};

std::string installs(int32_t host_signal, int flag) {
  return "for__signal(" + std::to_string(host_signal) + ", " + std::to_string(flag) + ")";
}

}  // namespace

CHILD_PROGRAM(sleeps) {
  Sleep(60000);
  return 0;
}

TEST_CASE("SIGNAL translates the number and installs a dispatcher that calls the user's handler") {
  RecordingCore core;
  core.answer("for__signal", 4711);
  using Dispatcher = void (*)(int32_t);
  for (const auto &[signum, host] : supported) {
    CAPTURE(signum);
    CHECK(call(SIGNAL, signum, note_signal, -1) == 4711);
    CHECK(core.first_call_argument(0) == host);
    // As the core runtime delivers it: the number, or for 8 two addresses.
    const intptr_t dispatcher = core.first_call_argument(1);
    constexpr int32_t code = 0x83;
    handled.clear();
    if (host == 8)
      reinterpret_cast<void (*)(const int32_t *, const int32_t *)>(dispatcher)(&host, &code);
    else
      reinterpret_cast<Dispatcher>(dispatcher)(host);
    CHECK(handled == std::vector<int32_t>{signum});
    core.calls();
    for (const int32_t flag : {0, 1}) {
      CHECK_CALLS(call(SIGNAL, signum, note_signal, flag), 4711, installs(host, flag));
    }
  }
  CHECK(call(SIGNAL, 11, other_handler, -5) == 4711);
  const auto dispatch = reinterpret_cast<Dispatcher>(core.first_call_argument(1));
  handled.clear();
  for (const int32_t host_signal : {11, 22, 21}) dispatch(host_signal);  // the last is nobody's
  CHECK(handled == std::vector<int32_t>{-1, 6});
  // SIGNALQQ puts a handler of SIGNAL back, which is called with SIGNAL's number again.
  call(SIGNALQQ, 22, by_value_handler);
  call(SIGNALQQ, 22, reinterpret_cast<void (*)(int32_t)>(dispatch));
  handled.clear();
  dispatch(22);
  CHECK(handled == std::vector<int32_t>{6});
}

TEST_CASE("SIGNAL and KILL refuse numbers and flags that do not exist") {
  RecordingCore core;
  CHECK_CALLS(call(SIGNAL, 2, note_signal, 2), EINVAL, reports(EINVAL));
  for (const int32_t signum : unsupported) {
    CHECK(call(SIGNAL, signum, note_signal, -1) == EINVAL);
    CHECK(core.calls() == reports(EINVAL));
    CHECK_CALLS(call(KILL, GETPID(), signum), EINVAL, records(EINVAL));
  }
}

TEST_CASE("SIGNALQQ, RAISEQQ and ESTABLISHQQ hand on what they are given") {
  RecordingCore core;
  core.answer("for__signal", 7);
  for (const int32_t number : {22, 14, 99, -1}) {  // 14 is the alarm's to others only
    CHECK(call(SIGNALQQ, number, by_value_handler) == 7);
    CHECK(core.first_call_argument(0) == number);
    CHECK(core.first_call_argument(1) == reinterpret_cast<intptr_t>(by_value_handler));
    core.calls();
  }
  core.answer("for__raise", -5);
  CHECK_CALLS(call(RAISEQQ, -3), -5, "for__raise(-3)");

  intptr_t handler = 0, context = 0;
  core.answer("for__establish_user_error_handler", 6);
  CHECK(ESTABLISHQQ(1234, -1, &handler, &context) == 1);
  CHECK((core.first_call_argument(0) == 1234 && core.first_call_argument(1) == -1));
  CHECK(core.first_call_argument(2) == reinterpret_cast<intptr_t>(&handler));
  CHECK(core.first_call_argument(3) == reinterpret_cast<intptr_t>(&context));
  core.answer("for__establish_user_error_handler", 0);
  CHECK(ESTABLISHQQ(0, 0, nullptr, nullptr) == 0);
}

TEST_CASE("KILL ends a process with exit code 9") {
  RecordingCore core;
  const std::string program = own_path();
  const intptr_t child = _spawnl(_P_NOWAIT, program.c_str(), program.c_str(), "--child", "sleeps", nullptr);
  REQUIRE(child != -1);
  const DWORD pid = GetProcessId(reinterpret_cast<HANDLE>(child));
  CHECK_CALLS(call(KILL, pid, 15), EINVAL, records(EINVAL));  // only its own process
  // The host takes pid + 1 to pid + 3 for pid.
  int32_t error = 0;
  for (DWORD other = pid + 1; other <= pid + 3; ++other) {
    CHECK_CALLS(call(KILL, other, 9), EINVAL, records(EINVAL));
    PXFKILL(reinterpret_cast<const int32_t *>(&other), &kill_signal, &error);
    CHECK(core.calls() == reports(error));
    CHECK(error != 0);
  }
  CHECK(WaitForSingleObject(reinterpret_cast<HANDLE>(child), 0) == WAIT_TIMEOUT);
  CHECK_CALLS(call(KILL, pid, 9), 0, "");
  int exit_code = 0;
  CHECK((_cwait(&exit_code, child, 0) == child && exit_code == 9));
}

TEST_CASE("KILL's failures are recorded, its own signals go through the core runtime") {
  RecordingCore core;
  CHECK_CALLS(call(KILL, GETPID(), 6), 0, "for__raise(22)");
  core.answer("for__raise", 1);
  CHECK_CALLS(call(KILL, GETPID(), 15), EINVAL, "for__raise(15) " + records(EINVAL));
  CHECK_CALLS(call(KILL, 0x7FFFFFFC, 9), EINVAL, records(EINVAL));  // no such process
  const ImportOverride denied(library(), "TerminateProcess", [](HANDLE, UINT exit_code) -> BOOL {
    CHECK(exit_code == 9);
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
  });
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
