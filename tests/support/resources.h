// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include <windows.h>

// The process's open handles. Wine does not count them, but gives new ones the lowest free numbers.
inline DWORD handle_count() {
  DWORD count = 0;
  if (GetProcessHandleCount(GetCurrentProcess(), &count) && count > 0) return count;
  DWORD flags = 0;
  for (uintptr_t number = 4; number < 4 * 200; number += 4)
    if (GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags)) ++count;
  return count;
}

// The memory that the process has; Wine does not tell it otherwise.
inline size_t committed_bytes() {
  size_t sum = 0;
  MEMORY_BASIC_INFORMATION region;
  for (char *place = nullptr; VirtualQuery(place, &region, sizeof region) != 0; place += region.RegionSize)
    if (region.State == MEM_COMMIT) sum += region.RegionSize;
  return sum;
}
