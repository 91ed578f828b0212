// SPDX-License-Identifier: MIT
// The process's start time and the clocks measured from it.
#include <windows.h>

#include "file_time.h"
#include "libgfortran.h"
#include "qwcore.h"

double for__process_start_time() {
  FILETIME creation, exit, kernel, user;
  if (!GetProcessTimes(GetCurrentProcess(), &creation, &exit, &kernel, &user)) return portlib_seconds_since_1970();
  return portlib_seconds_since_1970(creation);
}

double for_since_epoch_t(const double *start) { return portlib_seconds_since_1970() - *start; }

float for_secnds_t(const float *start) { return _gfortran_secnds(start); }
