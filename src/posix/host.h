// SPDX-License-Identifier: MIT
// What several PXF routines ask the host.
#pragma once

#include <cstdint>

#include <sys/stat.h>
#include <windows.h>

namespace qwport::posix {

// The status of an open descriptor; false with errno set.
bool status_of_descriptor(int32_t descriptor, struct _stat64 &status);

// kernel32.dll, of the system's directory and no other, for entries that are looked up when they are needed; null if
// missing.
inline HMODULE kernel32() {
  HMODULE module = GetModuleHandleA("kernel32.dll");
  return module != nullptr ? module : LoadLibraryExA("kernel32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
}

template <class Function> Function *entry_of(HMODULE module, const char *name) {
  if (module == nullptr) return nullptr;
  return reinterpret_cast<Function *>(reinterpret_cast<void *>(GetProcAddress(module, name)));
}

}  // namespace qwport::posix
