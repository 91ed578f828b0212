// SPDX-License-Identifier: MIT
// The signal numbers of Fortran programs.
#pragma once

#include <cstdint>

// The host's number of a signal, or 0 if it has none.
int32_t portlib_host_signal(int32_t signum);
