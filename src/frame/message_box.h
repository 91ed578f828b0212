// SPDX-License-Identifier: MIT
// The two messages by which the library itself speaks to the user.
#pragma once

// Shows an error in a box with an OK button and waits for it; nothing where the host has no boxes.
void portlib_show_error(const char *text, const char *caption);
