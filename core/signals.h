// SPDX-License-Identifier: MIT
// What signals and floating-point traps share.
#pragma once

#include <csignal>
#include <cstdint>

namespace qwport::core {

constexpr int32_t floating_point_signal = SIGFPE;

// Whether traps are left to the host's default action.
bool leaves_traps_alone();

// Calls the procedure that is set for a signal, if there is one. code: that of a floating-point signal.
void call_signal_handler(int32_t signal_number, int32_t code);

// Has floating-point traps of every thread call the handler of their signal, from now on. False for no memory.
bool watch_floating_point_traps();

}  // namespace qwport::core
