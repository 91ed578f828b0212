// SPDX-License-Identifier: MIT
// The end of the program. libgfortran writes out and closes its units as the process exits, and waits for none
// that a thread reads or writes at that time; its FLUSH would. So nothing is flushed here.
#include <csignal>
#include <cstdio>

#include "libgfortran.h"
#include "qwcore.h"

// As abort() does, but without its own message and with the exit steps that close the units. The handler is
// removed first: it may call this.
void for_abort(const char *text, size_t length) {
  std::fwrite(text, 1, length, stderr);
  std::fputc('\n', stderr);
  std::fflush(stderr);

  constexpr intptr_t ignored = 1;
  const intptr_t handler = for__signal(SIGABRT, 0);
  if (handler > ignored) reinterpret_cast<void (*)(int32_t)>(handler)(SIGABRT);
  constexpr int abort_status = 3;
  _gfortran_exit_i4(&abort_status);
}

void for_stop(const char *text, size_t length) { _gfortran_stop_string(text, text == nullptr ? 0 : length, false); }

void for_exit(const int32_t *status) { _gfortran_exit_i4(status); }
