// SPDX-License-Identifier: MIT
// The library's load-time entry.
#include "core_entries.h"

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID);

// Always answers success: a program that calls no bound routine runs without any core runtime.
BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) portlib_bind_core();
  return TRUE;
}
