// SPDX-License-Identifier: MIT
// Reads and dismisses message boxes of another process, as its user would.
#pragma once

#include <string>

#include <windows.h>

// If the process shows a message box: presses its button and gives "[caption] text" and a line end, with
// an asterisk for each line end of the text. Otherwise gives nothing.
std::string dismiss_message_box(DWORD process);
