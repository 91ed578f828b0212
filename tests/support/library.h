// SPDX-License-Identifier: MIT
// The library's module, for host overrides.
#pragma once

#include <windows.h>

inline HMODULE library() { return GetModuleHandleA("libqwport.dll"); }
