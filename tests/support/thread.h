// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

// What a procedure gives on a thread of its own.
inline DWORD on_other_thread(LPTHREAD_START_ROUTINE procedure) {
  HANDLE thread = CreateThread(nullptr, 0, procedure, nullptr, 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  DWORD result = 0;
  GetExitCodeThread(thread, &result);
  CloseHandle(thread);
  return result;
}
