// SPDX-License-Identifier: MIT
// The command line, and memory that GNU Fortran can free.
#include <cerrno>
#include <cstdlib>

#include "libgfortran.h"
#include "qwcore.h"

namespace {

// A main program in Fortran hands its words to libgfortran; one in another language does not.
int count_arguments() {
  if (_gfortran_iargc() < 0) _gfortran_set_args(__argc, __argv);
  return _gfortran_iargc();
}

}  // namespace

int32_t for_nargs() { return count_arguments() + 1; }

void for_getarg(const int32_t *number, char *buffer, int64_t *length, size_t buffer_length) {
  count_arguments();
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
