// SPDX-License-Identifier: MIT
#include "module_hold.h"

// The linker's name for where the library begins, which is its module handle.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace {

HMODULE library() { return reinterpret_cast<HMODULE>(&__ImageBase); }

bool refer_to_library(DWORD how) {
  HMODULE module = nullptr;
  const DWORD flags = how | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS;
  return GetModuleHandleExA(flags, reinterpret_cast<const char *>(library()), &module) != FALSE;
}

}  // namespace

bool portlib_hold_library() { return refer_to_library(0); }

void portlib_release_library() { FreeLibrary(library()); }

void portlib_end_holding_thread(DWORD exit_code) { FreeLibraryAndExitThread(library(), exit_code); }

bool portlib_pin_library() { return refer_to_library(GET_MODULE_HANDLE_EX_FLAG_PIN); }
