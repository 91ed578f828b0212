// SPDX-License-Identifier: MIT
// Failures that a routine's contract makes an assertion failure of the C run-time.
#pragma once

// Reports the expression, source and line as a failed assert() does, and ends the program abnormally.
[[noreturn]] void portlib_fail_assertion(const char *expression, const char *source, unsigned line);
