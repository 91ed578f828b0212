// SPDX-License-Identifier: MIT
// Processor times on a simulated host, in children, since what the routines remember lasts for the process; and what a
// Fortran program cannot see.
#include <cstdio>
#include <ctime>

#include "library_test.h"

#undef ETIME  // errno.h's macro

namespace {

// 2.5 s of user time, 0.5 s of system time and 7 s on the wall clock.
DWORD processor_count;
uint64_t user_ticks = 25'000'000, kernel_ticks = 5'000'000;
clock_t wall_clock_ms = 7000;
BOOL process_times_known;

FILETIME ticks(uint64_t count) { return {static_cast<DWORD>(count), static_cast<DWORD>(count >> 32)}; }

void WINAPI tell_system_info(SYSTEM_INFO *system) { system->dwNumberOfProcessors = processor_count; }

BOOL WINAPI tell_process_times(HANDLE, FILETIME *, FILETIME *, FILETIME *kernel, FILETIME *user) {
  *kernel = ticks(kernel_ticks);
  *user = ticks(user_ticks);
  return process_times_known;
}

template <class Real> void print(Real (*routine)(Real *), BOOL known = TRUE) {
  process_times_known = known;
  Real times[2] = {-7, -7};
  const Real sum = routine(times);
  std::printf("%g %g %g\n", static_cast<double>(times[0]), static_cast<double>(times[1]), static_cast<double>(sum));
}

}  // namespace

CHILD_PROGRAM(asks_for_times) {
  const ImportOverride system_info(library(), "GetSystemInfo", tell_system_info);
  const ImportOverride process_times(library(), "GetProcessTimes", tell_process_times);
  const ImportOverride clock(library(), "clock", [] { return wall_clock_ms; });
  processor_count = std::stoul(arguments.at(0));
  print(qwport::ETIME, FALSE);
  processor_count = 1;  // it is asked for once
  print(qwport::ETIME);
  print(DTIME);
  user_ticks += 10'000'000;
  kernel_ticks += 20'000'000;
  print(DTIMER8);
  print(DTIME, FALSE);
  user_ticks += 5'000'000;
  wall_clock_ms = 9000;
  print(DTIME);
  print(DTIME);
  user_ticks = 20'000'001;
  print(DTIME);
  print(DTIMER8);
  return 0;
}

TEST_CASE(
    "ETIME is processor time on one processor and the wall clock on several, as every second DTIME; DTIME and "
    "DTIMER8 share one memory of single precision, which a failure leaves alone") {
  CHECK(run_child("asks_for_times", {"1"}).output ==
        "-7 -7 -1\n2.5 0.5 3\n2.5 0.5 3\n1 2 3\n-7 -7 -1\n0.5 0 0.5\n0 0 0\n-2 0 -2\n1e-07 0 1e-07\n");
  CHECK(run_child("asks_for_times", {"2"}).output ==
        "7 0 7\n7 0 7\n2.5 0.5 3\n4.5 -0.5 4\n-7 -7 -1\n-3 2.5 -0.5\n5 -2.5 2.5\n-7 2.5 -4.5\n7 -2.5 4.5\n");
}

CHILD_PROGRAM(calls_gmtime_before_1970) {
  int32_t fields[9];
  call(GMTIME, -1, fields);
  return 99;
}

TEST_CASE("GMTIME of a time before 1970 fails an assertion") {
  check_assertion("calls_gmtime_before_1970", "myTM, file portability/gmtime, line 47");
}

TEST_CASE("texts are padded, or cut, which is reported") {
  RecordingCore core;
  const auto ctime = +[](char *text, size_t length) {
    const int32_t noon = 43200;
    CTIME(text, length, &noon);
  };
  const std::pair<void (*)(char *, size_t), size_t> forms[] = {
      {qwport::DATE, 8}, {DATE4, 11}, {JDATE, 5}, {CLOCK, 8}, {JDATE4, 7}, {TIME2, 8}, {FDATE, 24}, {ctime, 25}};
  for (const auto &[routine, length] : forms) {
    CAPTURE(length);
    const std::string padded = outcome(routine, Room{length + 3});
    CHECK_CALLS(padded.find_last_not_of(' '), (routine == qwport::DATE ? length : length - 1), "");
    CHECK_CALLS(outcome(routine, Room{length - 1}).find('#'), std::string::npos, reports(EINVAL));
  }
}
