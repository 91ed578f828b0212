// SPDX-License-Identifier: MIT
// Clocks and elapsed time on a simulated host. What a routine remembers lasts for the process, so tests
// that depend on it have children.
#include <cstdio>
#include <ctime>
#include <limits>

#include <sys/timeb.h>

#include "library_test.h"

#undef ETIME  // errno.h's macro

namespace {

SYSTEMTIME local_time;
FILETIME system_time;
DWORD processor_count;
uint64_t kernel_ticks, user_ticks;
BOOL process_times_known = TRUE;
clock_t wall_clock_ms;

FILETIME ticks(uint64_t count) { return {static_cast<DWORD>(count), static_cast<DWORD>(count >> 32)}; }

void WINAPI tell_local_time(SYSTEMTIME *time) { *time = local_time; }
void WINAPI tell_system_time(FILETIME *time) { *time = system_time; }
void WINAPI tell_system_info(SYSTEM_INFO *system) {
  *system = {};
  system->dwNumberOfProcessors = processor_count;
}
BOOL WINAPI tell_process_times(HANDLE, FILETIME *, FILETIME *, FILETIME *kernel, FILETIME *user) {
  *kernel = ticks(kernel_ticks);
  *user = ticks(user_ticks);
  return process_times_known;
}
clock_t tell_clock() { return wall_clock_ms; }
void tell_timeb(struct __timeb64 *time) {
  time->time = 5'000'000'123;
  time->millitm = 456;
}

constexpr uint64_t january_1_1970 = 116444736000000000;

// A host with so many processors, 2.5 s of user time, 0.5 s of system time and 7 s on the wall clock.
struct SimulatedProcess {
  explicit SimulatedProcess(DWORD processors) {
    processor_count = processors;
    user_ticks = 25'000'000;
    kernel_ticks = 5'000'000;
    wall_clock_ms = 7000;
  }
  ImportOverride system_info{library(), "GetSystemInfo", tell_system_info};
  ImportOverride process_times{library(), "GetProcessTimes", tell_process_times};
  ImportOverride clock{library(), "clock", tell_clock};
};

template <class Real> void print(Real (*routine)(Real *), BOOL known = TRUE) {
  process_times_known = known;
  Real times[2] = {-7, -7};
  const Real sum = routine(times);
  std::printf("%g %g %g\n", static_cast<double>(times[0]), static_cast<double>(times[1]), static_cast<double>(sum));
}

}  // namespace

TEST_CASE("SECNDS counts from midnight, without the first two milliseconds, over the next and never below 0") {
  struct {
    WORD hour, minute, second, milliseconds;
    float t0, seconds;
  } const cases[] = {
      {0, 0, 0, 1, 0, 0},
      {0, 0, 0, 2, 0, 0.002F},
      {10, 0, 0, 500, 0, 36000.5F},
      {23, 59, 59, 999, 0, 86400},  // REAL(4) resolves no better
      {10, 0, 0, 0, std::numeric_limits<float>::quiet_NaN(), 36000},
      {0, 0, 0, 0, 86399, 1},
      {10, 0, 1, 0, 36000, 1},
      {10, 0, 0, 0, 36000, 0},
      {10, 0, 0, 0, 200000, 0},
      {10, 0, 0, 0, -1, 36001},
  };
  const ImportOverride clock(library(), "GetLocalTime", tell_local_time);
  for (const auto &at : cases) {
    CAPTURE(at.seconds);
    local_time = {2023, 3, 0, 5, at.hour, at.minute, at.second, at.milliseconds};
    CHECK(SECNDS(&at.t0) == at.seconds);
  }
}

TEST_CASE("wall clocks in seconds and microseconds") {
  const ImportOverride timeb(library(), "_ftime64", tell_timeb);
  const ImportOverride clock(library(), "GetSystemTimeAsFileTime", tell_system_time);
  double microseconds = 0;
  CLOCKX(&microseconds);
  CHECK(microseconds == 5'000'000'123'456'000.0);
  int32_t tv[2] = {}, tz = 7;
  GETTIMEOFDAY(tv, &tz);
  CHECK((tv[0] == 705'032'827 && tv[1] == 456'000 && tz == 0));  // the seconds' low half
  system_time = ticks(january_1_1970 + 12'345'678);
  CHECK(RTC() == doctest::Approx(1.2345678).epsilon(1e-15));
}

CHILD_PROGRAM(calls_timef) {
  const ImportOverride clock(library(), "GetSystemTimeAsFileTime", tell_system_time);
  for (const uint64_t time : {10'000'000'000, 10'025'000'000, 9'990'000'000}) {
    system_time = ticks(january_1_1970 + time);
    std::printf("%.3f ", TIMEF());
  }
  return 0;
}

TEST_CASE("TIMEF counts from its first call, backwards if the clock is set back") {
  CHECK(run_child("calls_timef").output == "0.000 2.500 -1.000 ");
}

TEST_CASE("DCLOCK asks the core runtime for the start once, and hands its address on") {
  RecordingCore core;
  core.answer("for__process_start_time", 1000);
  core.answer("for_since_epoch_t", 17);
  CHECK_CALLS(DCLOCK(), 17.0, "for__process_start_time() for_since_epoch_t(&)");
  CHECK(DCLOCK() == 17.0);
  CHECK_CALLS(*reinterpret_cast<const double *>(core.first_call_argument(0)), 1000.0, "for_since_epoch_t(&)");
}

CHILD_PROGRAM(etime) {
  const SimulatedProcess process(std::stoul(arguments.at(0)));
  print(qwport::ETIME, FALSE);
  if (processor_count > 1) processor_count = 1;  // asked for once
  print(qwport::ETIME);
  return 0;
}

TEST_CASE("ETIME is processor time on one processor and the wall clock on several") {
  CHECK(run_child("etime", {"1"}).output == "-7 -7 -1\n2.5 0.5 3\n");
  CHECK(run_child("etime", {"2"}).output == "7 0 7\n7 0 7\n");
}

CHILD_PROGRAM(dtime) {
  const SimulatedProcess process(std::stoul(arguments.at(0)));
  print(DTIME);
  user_ticks += 10'000'000;
  kernel_ticks += 20'000'000;
  print(DTIMER8);
  print(DTIME, FALSE);
  user_ticks += 5'000'000;
  wall_clock_ms = 9000;
  print(DTIME);
  print(DTIME);
  if (processor_count > 1) return 0;
  user_ticks = 20'000'001;
  print(DTIME);
  print(DTIMER8);
  return 0;
}

TEST_CASE("DTIME and DTIMER8 share one memory of single precision, which a failure leaves alone") {
  CHECK(run_child("dtime", {"1"}).output == "2.5 0.5 3\n1 2 3\n-7 -7 -1\n0.5 0 0.5\n0 0 0\n-2 0 -2\n1e-07 0 1e-07\n");
  // On several processors every second call reads the wall clock.
  CHECK(run_child("dtime", {"4"}).output == "2.5 0.5 3\n4.5 -0.5 4\n-7 -7 -1\n-3 2.5 -0.5\n5 -2.5 2.5\n");
}
