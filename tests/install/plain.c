// SPDX-License-Identifier: MIT
// A C program without a C run-time, so that any linker links it from its object, qwport.lib and kernel32 alone.
#include <windows.h>

#include <qwport.h>

void start(void) {
  char text[80];
  DWORD written;
  const int32_t shift = 3, one = 1;
  const BOOL right = FOR_QWPORT_VERSION(text, sizeof text) == 4 && LSHIFT(&one, &shift) == 8;
  WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), right ? text : "failed", 6, &written, NULL);
  ExitProcess(0);
}
