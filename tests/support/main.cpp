// SPDX-License-Identifier: MIT
// The main program of every C++ test.
#define DOCTEST_CONFIG_IMPLEMENT
#include <doctest/doctest.h>

#include <cstdio>

#include <windows.h>

#include "child.h"

namespace {

// A crash says what it was and ends at once, instead of waiting for a debugger.
LONG WINAPI report_crash(EXCEPTION_POINTERS *exception) {
  std::fprintf(stderr, "crashed with exception %08lx at %p\n", exception->ExceptionRecord->ExceptionCode,
               exception->ExceptionRecord->ExceptionAddress);
  TerminateProcess(GetCurrentProcess(), 254);
  return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

int main(int argument_count, char **arguments) {
  SetUnhandledExceptionFilter(report_crash);
  int status = 0;
  if (run_as_child(argument_count, arguments, status)) return status;
  doctest::Context context(argument_count, arguments);
  return context.run();
}
