// SPDX-License-Identifier: MIT
// What the core runtime does to a process: signals and traps, diagnostics, the end with open units. Each row has a
// process of its own.
#include <doctest/doctest.h>

#include <atomic>
#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <regex>

#include <windows.h>
#include <xmmintrin.h>

#include "child.h"
#include "test_units.h"

namespace {

template <class Handler> intptr_t address(Handler *handler) { return reinterpret_cast<intptr_t>(handler); }

void on_signal(int32_t signal_number) { std::printf("signal %d\n", signal_number); }

int *volatile nowhere = nullptr;
std::jmp_buf way_out;

void jump_out(int32_t signal_number) {
  on_signal(signal_number);
  std::longjmp(way_out, 1);
}

void abort_again(int32_t signal_number) {
  on_signal(signal_number);
  for_abort("again", 5);
}

// ---- Traps --------------------------------------------------------------------------------------

void on_trap(const int32_t *signal_number, const int32_t *code) {
  std::printf("signal %d code %x\n", *signal_number, static_cast<unsigned>(*code));
}

volatile double zero = 0, one = 1, huge_value = 1e308, tiny_value = 1e-308, denormal = 4.9e-324;
volatile int32_t integer_zero = 0;

// In the order of their bits in MXCSR, where each flag has its mask 7 bits further left.
constexpr double (*provocations[])() = {
    [] { return zero / zero; },     [] { return denormal + one; },     [] { return one / zero; },
    [] { return huge_value * 10; }, [] { return tiny_value * 1e-10; }, [] { return one / 3; },
};
constexpr unsigned all_masked = 0x1F80, invalid = 0x01, zero_divide = 0x04;

// Runs into an exception with its trap set, while the flags of all others are raised from before. Tells the result, and
// the flags and masks after it.
void run_into(unsigned exception) {
  const unsigned own = 1U << exception;
  _mm_setcsr((all_masked | (0x3F & ~own)) & ~(own << 7));
  volatile double result = provocations[exception]();
  const unsigned state = _mm_getcsr();
  _mm_setcsr(all_masked);
  std::printf("%g flags %x masks %x\n", result, state & 0x3F, state >> 7 & 0x3F);
}

void divide_on_the_x87() {
  const uint16_t control = 0x37F & ~zero_divide;
  uint16_t status = 0;
  for__signal(SIGFPE, address(on_trap));
  _mm_setcsr((all_masked | invalid) & ~(invalid << 7));  // a flag of SSE that could be taken for the cause
  __asm__ volatile("fninit; fld1; fldz; fldcw %0; fdivrp; fwait; fstp %%st(0)" : : "m"(control));
  __asm__ volatile("fnstsw %0" : "=m"(status));
  std::printf("flags %x, SSE %x masks %x\n", status & 0x3F, _mm_getcsr() & 0x3F, (_mm_getcsr() >> 7) & 0x3F);
}

// ---- Diagnostics --------------------------------------------------------------------------------

// Takes errors of the code that its context names.
int32_t take_one_code(const int32_t *code, const int32_t *continuable, const char *text, const intptr_t *context,
                      size_t length) {
  std::printf("handler %d %d %.*s\n", *code, *continuable, static_cast<int>(length), text);
  return *code == *context ? -1 : 0;
}

void issue_diagnostics() {
  for__issue_diagnostic(0, 1, "first");
  for__issue_diagnostic(1, 2, "second");
  for__establish_user_error_handler(address(take_one_code), 4, nullptr, nullptr);
  for__issue_diagnostic(2, 4, "fourth");
  for__issue_diagnostic(2, 5, "fifth");
}

// ---- The end ------------------------------------------------------------------------------------

constexpr int32_t unit = 51, pipe_unit = 52;
const std::string written = "written before the end\r\n";

std::atomic<int> uses{0};

DWORD WINAPI use_unit(void *) {
  for (;; ++uses) {
    __msportlib_d_readchar(unit, nullptr, 0);
    __msportlib_d_fseek(unit, 3, 0);
  }
}

// What a program leaves in a unit's buffer must be in the file when it has ended, though other threads are inside unit
// routines and one waits for input.
void write_unflushed() {
  static HANDLE about_to_read = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  const auto read = [](void *) -> DWORD {
    SetEvent(about_to_read);
    return static_cast<DWORD>(__msportlib_d_readchar(pipe_unit, nullptr, 0));
  };
  open_unit(unit, TestFile::name);
  write_line(unit, std::string_view(written).substr(0, written.size() - 2));
  open_pipe_unit(pipe_unit);
  CreateThread(nullptr, 0, read, nullptr, 0, nullptr);
  WaitForSingleObject(about_to_read, INFINITE);
  for (int i = 0; i < 4; ++i) CreateThread(nullptr, 0, use_unit, nullptr, 0, nullptr);
  while (uses < 100) Sleep(1);
}

// ---- Rows ---------------------------------------------------------------------------------------

constexpr uint32_t crashed = 254;

struct Row {
  std::string rule;
  void (*act)();
  uint32_t status;
  std::string output;  // and what the file has been left with
};

const Row rows[] = {
    {"a handler may jump out, and a fault ends the program when its handler returns",
     [] {
       for__signal(SIGSEGV, address(jump_out));
       if (setjmp(way_out) == 0) *nowhere = 1;
       if (setjmp(way_out) == 0) *nowhere = 1;
       for__signal(SIGSEGV, address(on_signal));
       *nowhere = 1;
     },
     crashed, "signal 11\nsignal 11\nsignal 11\ncrashed with exception c0000005\n"},
    {"a trap calls its handler with its code and not that of an older flag; then the default result stands, and the "
     "flags",
     [] {
       for__signal(SIGFPE, 1);
       run_into(2);  // ignored
       for__signal(SIGFPE, address(on_trap));
       for (const unsigned exception : {0, 1, 2, 3, 4, 5}) run_into(exception);
     },
     0,
     "inf flags 3f masks 3f\nsignal 8 code 81\nnan flags 3f masks 3f\nsignal 8 code 82\n1 flags 3f masks 3f\n"
     "signal 8 code 83\ninf flags 3f masks 3f\nsignal 8 code 84\ninf flags 3f masks 3f\n"
     "signal 8 code 85\n9.99999e-319 flags 3f masks 3f\nsignal 8 code 86\n0.333333 flags 3f masks 3f\n"},
    {"an integer division by zero calls the handler once and then ends the program",
     [] {
       for__signal(SIGFPE, address(on_trap));
       std::printf("%d\n", 7 / integer_zero);
     },
     crashed, "signal 8 code 83\ncrashed with exception c0000094\n"},
    {"the same on the x87", divide_on_the_x87, 0, "signal 8 code 83\nflags 4, SSE 1 masks 3e\n"},
    {"diagnostics go to standard error unless the handler takes an error", issue_diagnostics, 0,
     "libqwcorert: info (1): first\nlibqwcorert: warning (2): second\n"
     "handler 4 1 fourth\nhandler 5 1 fifth\nlibqwcorert: error (5): fifth\n"},
    {"for_exit", [] { for_exit(&unit); }, unit, written},
    {"for_abort, and again by SIGABRT's handler",
     [] {
       for__signal(SIGABRT, address(abort_again));
       for_abort("the end is here", 7);
     },
     3, "the end\nsignal 22\nagain\n" + written},
    {"for_stop with a text", [] { for_stop("all done", 8); }, 0, "STOP all done\n" + written},
};

}  // namespace

CHILD_PROGRAM(acts) {
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  const Row &row = rows[std::stoul(arguments.at(0))];
  if (row.output.ends_with(written)) write_unflushed();
  row.act();
  return 0;
}

TEST_CASE("signals, traps, diagnostics and ends") {
  for (size_t i = 0; i < std::size(rows); ++i) {
    CAPTURE(rows[i].rule);
    const TestFile file;
    const ChildResult result = run_child("acts", {std::to_string(i)});
    CHECK(result.exit_code == rows[i].status);
    const std::string output = std::regex_replace(result.output, std::regex(" at [0-9a-f]+"), "");
    CHECK(output + file.contents() == rows[i].output);
  }
}

TEST_CASE("a handler is told when it is replaced, and there is none of an unknown signal") {
  intptr_t previous = 0;
  for (const intptr_t handler : {address(on_signal), intptr_t{1}, address(abort_again), intptr_t{0}}) {
    CHECK(for__signal(SIGTERM, handler) == previous);
    previous = handler;
  }
  for (const int32_t unknown : {9, -1, 23}) {
    errno = 0;
    CHECK((for__signal(unknown, 1) == -1 && errno == EINVAL && for__raise(unknown) != 0));
  }
}
