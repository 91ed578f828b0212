// SPDX-License-Identifier: MIT
// Signal handlers and floating-point traps. Handlers are process-wide, so each test has a child.
#include <doctest/doctest.h>

#include <cerrno>
#include <cfloat>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include <windows.h>

#include "child.h"
#include "qwcore.h"

namespace {

void on_signal(int32_t signal_number) { std::printf("signal %d\n", signal_number); }
void on_other(int32_t signal_number) { std::printf("other %d\n", signal_number); }

void on_trap(const int32_t *signal_number, const int32_t *code) {
  std::printf("signal %d code %x\n", *signal_number, static_cast<unsigned>(*code));
}

template <class Handler> intptr_t address(Handler *handler) { return reinterpret_cast<intptr_t>(handler); }

volatile double zero = 0.0;
volatile double one = 1.0;
volatile double huge_value = 1e308;
volatile double tiny_value = 1e-308;
volatile double denormal = 4.9e-324;
volatile int32_t integer_zero = 0;

struct Trap {
  const char *name;
  unsigned mask;
  double (*provoke)();
};

const Trap traps[] = {
    {"invalid", _EM_INVALID, [] { return zero / zero; }},
    {"denormal", _EM_DENORMAL, [] { return denormal + one; }},
    {"division", _EM_ZERODIVIDE, [] { return one / zero; }},
    {"overflow", _EM_OVERFLOW, [] { return huge_value * 10; }},
    {"underflow", _EM_UNDERFLOW, [] { return tiny_value * 1e-10; }},
    {"inexact", _EM_INEXACT, [] { return one / 3; }},
};

ChildResult trap_output(const char *name) { return run_child("traps", {name}); }

}  // namespace

CHILD_PROGRAM(installs_and_raises) {
  constexpr int32_t signal_number = SIGTERM;
  std::printf("%d ", for__signal(signal_number, address(on_signal)) == address(SIG_DFL));
  std::printf("%d\n", for__raise(signal_number));
  std::printf("%d\n", for__raise(signal_number));  // still installed
  std::printf("%d\n", for__signal(signal_number, address(on_other)) == address(on_signal));
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

CHILD_PROGRAM(traps) {
  for__signal(SIGFPE, address(on_trap));
  for (const Trap &trap : traps) {
    if (arguments[0] != trap.name) continue;
    for (int i = 0; i < 2; ++i) {
      for (const Trap &earlier : traps) earlier.provoke();  // flags that must not be taken for the cause
      _control87(_MCW_EM & ~trap.mask, _MCW_EM);
      const double result = trap.provoke();
      _control87(_MCW_EM, _MCW_EM);
      std::printf("went on with %g\n", result);
    }
  }
  return 0;
}

CHILD_PROGRAM(ignores_a_trap) {
  for__signal(SIGFPE, 1);
  _clearfp();
  _control87(_MCW_EM & ~_EM_ZERODIVIDE, _MCW_EM);
  std::printf("went on with %g\n", one / zero);
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
  CHECK(result.output == "1 signal 15\n0\nsignal 15\n0\n1\nother 15\n1 0 1\nunknown 1 22 1\nraise unknown 1\n");
}

TEST_CASE("a raised fault calls its handler every time, and a raised signal 8 by address") {
  CHECK(run_child("raises_a_fault").output == "signal 11\nsignal 11\nsignal 8 code 8c\nsignal 8 code 8c\n");
}

TEST_CASE("a trap calls the handler with its code, and the default result stands when it returns") {
  const auto twice = [](const char *line, const char *value) {
    const std::string text = std::string("signal 8 code ") + line + "\nwent on with " + value + "\n";
    return text + text;
  };
  CHECK(trap_output("invalid").output == twice("81", "nan"));
  CHECK(trap_output("denormal").output == twice("82", "1"));
  CHECK(trap_output("division").output == twice("83", "inf"));
  CHECK(trap_output("overflow").output == twice("84", "inf"));
  CHECK(trap_output("underflow").output == twice("85", "9.99999e-319"));
  CHECK(trap_output("inexact").output == twice("86", "0.333333"));
}

TEST_CASE("an ignored trap gives the default result") {
  CHECK(run_child("ignores_a_trap").output == "went on with inf\n");
}

TEST_CASE("an integer division by zero calls the handler once and then ends the program") {
  const ChildResult result = run_child("divides_integers");
  CHECK(result.output.starts_with("signal 8 code 83\n"));
  CHECK(result.exit_code != 99);
  CHECK(result.exit_code != 0);
}
