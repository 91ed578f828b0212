// SPDX-License-Identifier: MIT
// Loads the DLL that the command line names. Ends with the time that it took, in tenths of microseconds; 0 for a
// failure.
#include <windows.h>

int main(int, char **arguments) {
  LARGE_INTEGER rate, begin, end;
  QueryPerformanceFrequency(&rate);
  QueryPerformanceCounter(&begin);
  if (LoadLibraryA(arguments[1]) == nullptr) return 0;
  QueryPerformanceCounter(&end);
  return static_cast<int>((end.QuadPart - begin.QuadPart) * 10'000'000 / rate.QuadPart);
}
