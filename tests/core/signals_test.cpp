// SPDX-License-Identifier: MIT
// Signal handlers and floating-point traps. Handlers are process-wide, so each test has a child.
#include <doctest/doctest.h>

#include <cerrno>
#include <cfloat>
#include <csetjmp>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <string>

#include <windows.h>
#include <xmmintrin.h>

#include "child.h"
#include "qwcore.h"

namespace {

void on_signal(int32_t signal_number) { std::printf("signal %d\n", signal_number); }
void on_other(int32_t signal_number) { std::printf("other %d\n", signal_number); }

void on_trap(const int32_t *signal_number, const int32_t *code) {
  std::printf("signal %d code %x\n", *signal_number, static_cast<unsigned>(*code));
}

template <class Handler> intptr_t address(Handler *handler) { return reinterpret_cast<intptr_t>(handler); }

volatile double zero = 0, one = 1, huge_value = 1e308, tiny_value = 1e-308, denormal = 4.9e-324;
volatile int32_t integer_zero = 0;

struct Trap {
  unsigned mask;
  double (*provoke)();
};

constexpr Trap traps[] = {
    {_EM_INVALID, [] { return zero / zero; }},          {_EM_DENORMAL, [] { return denormal + one; }},
    {_EM_ZERODIVIDE, [] { return one / zero; }},        {_EM_OVERFLOW, [] { return huge_value * 10; }},
    {_EM_UNDERFLOW, [] { return tiny_value * 1e-10; }}, {_EM_INEXACT, [] { return one / 3; }},
};

void run_into(const Trap &trap) {
  for (const Trap &earlier : traps) earlier.provoke();  // flags that must not be taken for the cause
  _control87(_MCW_EM & ~trap.mask, _MCW_EM);
  const double result = trap.provoke();
  _control87(_MCW_EM, _MCW_EM);
  std::printf("went on with %g\n", result);
}

// ---- Handlers that do not return -----------------------------------------------------------------

int *volatile nowhere = nullptr;
std::jmp_buf way_out;

void tell_fault(int32_t signal_number) {
  on_signal(signal_number);
  std::fflush(stdout);
}
void fault(int32_t signal_number) {
  tell_fault(signal_number);
  *nowhere = 1;
}
void jump_out(int32_t signal_number) {
  on_signal(signal_number);
  std::longjmp(way_out, 1);
}

// ---- Flags and the x87 --------------------------------------------------------------------------

constexpr unsigned inexact = 0x20, zero_divide = 0x04, invalid = 0x01;
constexpr uint16_t x87_default = 0x37F;

unsigned sse_flags() { return _mm_getcsr() & 0x3F; }
uint16_t x87_flags() {
  uint16_t status = 0;
  __asm__ volatile("fnstsw %0" : "=m"(status));
  return status & 0x3F;
}

}  // namespace

CHILD_PROGRAM(faults_in_a_raised_handler) {
  for__signal(SIGTERM, address(fault));
  for__signal(SIGSEGV, address(tell_fault));
  for__raise(SIGTERM);
  return 0;
}

CHILD_PROGRAM(jumps_out_of_handlers) {
  for__signal(SIGSEGV, address(jump_out));
  for__signal(SIGTERM, address(jump_out));
  if (setjmp(way_out) == 0) for__raise(SIGTERM);
  if (setjmp(way_out) == 0) *nowhere = 1;
  if (setjmp(way_out) == 0) *nowhere = 1;
  return 7;
}

CHILD_PROGRAM(keeps_flags) {
  for__signal(SIGFPE, address(on_trap));
  _mm_setcsr(0x1F80 | inexact);
  _mm_setcsr(_mm_getcsr() & ~(zero_divide << 7));
  volatile double result = one / zero;
  std::printf("%g flags %x masks %x\n", result, sse_flags(), (_mm_getcsr() >> 7) & 0x3F);
  // Raised before its trap was set: not the cause.
  _mm_setcsr((0x1F80 | invalid) & ~((invalid | zero_divide) << 7));
  result = one / zero;
  std::printf("%g flags %x\n", result, sse_flags());
  return 0;
}

CHILD_PROGRAM(traps_on_the_x87) {
  for__signal(SIGFPE, address(on_trap));
  _mm_setcsr((0x1F80 | invalid) & ~(invalid << 7));  // a flag of SSE that could be taken for the cause
  const uint16_t control = x87_default & ~zero_divide;
  __asm__ volatile("fninit; fld1; fldz; fldcw %0; fdivrp; fwait; fstp %%st(0)" : : "m"(control));
  const unsigned flags = x87_flags();
  std::printf("flags %x, SSE %x masks %x\n", flags, sse_flags(), (_mm_getcsr() >> 7) & 0x3F);
  return 0;
}

CHILD_PROGRAM(installs_and_raises) {
  constexpr int32_t signal_number = SIGTERM;
  std::printf("%d ", for__signal(signal_number, address(on_signal)) == address(SIG_DFL));
  std::printf("%d\n", for__raise(signal_number));
  std::printf("%d\n", for__raise(signal_number));  // still installed
  std::printf("%d\n", for__signal(signal_number, address(on_other)) == address(on_signal));
  for__raise(signal_number);
  for__signal(signal_number, for__signal(signal_number, address(on_signal)));  // put back
  for__raise(signal_number);
  std::printf("%d ", for__signal(signal_number, 1) == address(on_other));
  std::printf("%d ", for__raise(signal_number));
  std::printf("%d\n", for__signal(signal_number, 0) == 1);
  std::printf("unknown %d %d %d\n", for__signal(9, address(on_signal)) == -1, errno, for__signal(-1, 0) == -1);
  std::printf("raise unknown %d\n", for__raise(9) != 0);
  return 0;
}

CHILD_PROGRAM(raises_a_fault) {
  for__signal(SIGSEGV, address(on_signal));
  for__raise(SIGSEGV);
  for__raise(SIGSEGV);
  for__signal(SIGFPE, address(on_trap));
  for__raise(SIGFPE);
  for__raise(SIGFPE);
  return 0;
}

CHILD_PROGRAM(runs_into_traps) {
  for__signal(SIGFPE, 1);
  run_into(traps[2]);
  for__signal(SIGFPE, address(on_trap));
  for (const Trap &trap : traps) {
    for (int i = 0; i < 2; ++i) run_into(trap);
  }
  return 0;
}

CHILD_PROGRAM(divides_integers) {
  for__signal(SIGFPE, address(on_trap));
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  std::printf("%d\n", 7 / integer_zero);
  return 99;
}

TEST_CASE("a handler is called by number, stays installed, and is told when it is replaced") {
  const ChildResult result = run_child("installs_and_raises");
  CHECK(result.exit_code == 0);
  CHECK(result.output ==
        "1 signal 15\n0\nsignal 15\n0\n1\nother 15\nother 15\n1 0 1\nunknown 1 22 1\nraise unknown 1\n");
}

TEST_CASE("a raised fault calls its handler every time, and a raised signal 8 by address") {
  CHECK(run_child("raises_a_fault").output == "signal 11\nsignal 11\nsignal 8 code 8c\nsignal 8 code 8c\n");
}

TEST_CASE(
    "a trap calls its handler with its code, and the default result stands when it returns or the trap is ignored") {
  std::string expected = "went on with inf\n";  // ignored
  for (const char *line :
       {"81\nwent on with nan\n", "82\nwent on with 1\n", "83\nwent on with inf\n", "84\nwent on with inf\n",
        "85\nwent on with 9.99999e-319\n", "86\nwent on with 0.333333\n"}) {
    expected += std::string("signal 8 code ") + line + "signal 8 code " + line;
  }
  CHECK(run_child("runs_into_traps").output == expected);
}

TEST_CASE("an integer division by zero calls the handler once and then ends the program") {
  const ChildResult result = run_child("divides_integers");
  CHECK(result.output.starts_with("signal 8 code 83\n"));
  CHECK((result.exit_code != 99 && result.exit_code != 0));
}

TEST_CASE("a handler that faults or jumps out leaves signals as they are") {
  const ChildResult fault = run_child("faults_in_a_raised_handler");
  CHECK((fault.output.starts_with("signal 15\nsignal 11\n") && fault.exit_code != 0));
  CHECK(fault.output.find("signal 11", 20) == std::string::npos);
  const ChildResult jump = run_child("jumps_out_of_handlers");
  CHECK((jump.output == "signal 15\nsignal 11\nsignal 11\n" && jump.exit_code == 7));
}

TEST_CASE("flags that are older than a trap are not its cause and stay raised, as its own, when the handler returns") {
  CHECK(run_child("keeps_flags").output == "signal 8 code 83\ninf flags 24 masks 3f\nsignal 8 code 83\ninf flags 5\n");
  CHECK(run_child("traps_on_the_x87").output == "signal 8 code 83\nflags 4, SSE 1 masks 3e\n");
}
