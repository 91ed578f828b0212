// SPDX-License-Identifier: MIT
// Entries of system DLLs that are looked up when they are needed: not every host has them, or few programs need a DLL
// that would, imported, take most of every program's start.
#pragma once

#include <windows.h>

// A DLL of the system's directory and no other, which stays loaded; null, with the host's last error, if missing.
inline HMODULE portlib_system_dll(const char *dll) {
  return LoadLibraryExA(dll, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
}

// Null, with the host's last error, if the DLL or the entry is missing.
template <class Function> Function *portlib_late_entry(const char *dll, const char *name) {
  HMODULE module = portlib_system_dll(dll);
  if (module == nullptr) return nullptr;
  return reinterpret_cast<Function *>(reinterpret_cast<void *>(GetProcAddress(module, name)));
}

template <class Function> Function *portlib_kernel_entry(const char *name) {
  return portlib_late_entry<Function>("kernel32.dll", name);
}

// The host's users, tokens and privileges.
template <class Function> Function *portlib_security_entry(const char *name) {
  return portlib_late_entry<Function>("advapi32.dll", name);
}
