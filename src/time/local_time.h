// SPDX-License-Identifier: MIT
// Local time by the C run-time, for the calendar and the clocks.
#pragma once

#include <ctime>

// A time in local time; false if the C run-time rejects it.
bool portlib_local_time(std::time_t time, std::tm &local);

// Now in local time.
std::tm portlib_local_now();
