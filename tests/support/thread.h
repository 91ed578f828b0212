// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

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

// The sum of what a procedure gives on eight threads at once, which get the numbers 0 to 7.
inline DWORD on_eight_threads(LPTHREAD_START_ROUTINE procedure) {
  HANDLE threads[8];
  for (size_t i = 0; i < 8; ++i) {
    threads[i] = CreateThread(nullptr, 0, procedure, reinterpret_cast<void *>(i), 0, nullptr);
  }
  WaitForMultipleObjects(8, threads, TRUE, INFINITE);
  DWORD sum = 0;
  for (HANDLE thread : threads) {
    DWORD result = 0;
    GetExitCodeThread(thread, &result);
    CloseHandle(thread);
    sum += result;
  }
  return sum;
}
