// SPDX-License-Identifier: MIT
// The end of the program, its command line, and memory that GNU Fortran can free.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "libgfortran.h"
#include "qwcore.h"

// Units are flushed here; libgfortran closes them as the process exits.

void for_abort(const char *text, size_t length) {
  _gfortran_flush_i4(nullptr);
  std::fwrite(text, 1, length, stderr);
  std::fputc('\n', stderr);
  std::fflush(stderr);

  // As abort() does, but without its own message and with the exit steps that close the units.
  const auto handler = std::signal(SIGABRT, SIG_DFL);
  if (handler != SIG_DFL && handler != SIG_IGN && handler != SIG_ERR) handler(SIGABRT);
  constexpr int abort_status = 3;
  _gfortran_exit_i4(&abort_status);
}

void for_stop(const char *text, size_t length) {
  _gfortran_flush_i4(nullptr);
  _gfortran_stop_string(text, text == nullptr ? 0 : length, false);
}

void for_exit(const int32_t *status) {
  _gfortran_flush_i4(nullptr);
  _gfortran_exit_i4(status);
}

int32_t for_nargs() { return _gfortran_iargc() + 1; }

void for_getarg(const int32_t *number, char *buffer, int64_t *length, size_t buffer_length) {
  int stored_length = 0;
  int status = 0;
  // libgfortran takes an empty buffer for an error.
  char *const value = buffer_length == 0 ? nullptr : buffer;
  _gfortran_get_command_argument_i4(number, value, &stored_length, &status, buffer_length);
  constexpr int truncated = -1;
  *length = status == 0 || status == truncated ? stored_length : -1;
}

int32_t for_allocate(size_t size, void **address) {
  *address = std::malloc(size == 0 ? 1 : size);
  return *address != nullptr ? 0 : ENOMEM;
}

int32_t for_deallocate(void **address) {
  std::free(*address);
  *address = nullptr;
  return 0;
}
