// SPDX-License-Identifier: MIT
// A host whose clock a Fortran test may set: 2000-01-01 01:02:03.004, never changed.
#include <windows.h>

#include "import_override.h"

extern "C" {
void simulate_clock();
void last_set(SYSTEMTIME *time);
}

namespace {

SYSTEMTIME set_time;

BOOL WINAPI agree_to_adjust(HANDLE, BOOL, TOKEN_PRIVILEGES *, DWORD, TOKEN_PRIVILEGES *, DWORD *) { return TRUE; }

void WINAPI tell_time(SYSTEMTIME *time) { *time = {2000, 1, 6, 1, 1, 2, 3, 4}; }

BOOL WINAPI keep_time(const SYSTEMTIME *time) {
  set_time = *time;
  return TRUE;
}

}  // namespace

void simulate_clock() {
  HMODULE library = GetModuleHandleA("libqwport.dll");
  static const ImportOverride set(library, "SetLocalTime", keep_time);
  static const ImportOverride get(library, "GetLocalTime", tell_time);
  static const LookupOverride adjust(library, "AdjustTokenPrivileges", agree_to_adjust);
}

void last_set(SYSTEMTIME *time) { *time = set_time; }
