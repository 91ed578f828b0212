// SPDX-License-Identifier: MIT
// Keeps the library loaded while the host may still run code of it that no caller is in: a thread that it has
// started, or a handler that it has set. Callers may unload the library at any time.
#pragma once

#include <windows.h>

// One more reference on the library, for one thread or handler; false with the host's error set.
bool portlib_hold_library();

// Gives such a reference back. Only where the caller's own reference keeps the library loaded meanwhile.
void portlib_release_library();

// Gives back the calling thread's reference and ends the thread, with no code of the library run in between.
[[noreturn]] void portlib_end_holding_thread(DWORD exit_code);

// Holds the library to the end of the process, however often it is called; false as above.
bool portlib_pin_library();
