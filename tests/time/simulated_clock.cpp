// SPDX-License-Identifier: MIT
// A host whose clock a Fortran test decides. From the program's start on, no routine reaches the machine's clock to set
// it.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <sys/timeb.h>
#include <windows.h>

#include "import_override.h"
#include "library.h"

// What module simulated_clock of time_test.f90 shows.
extern "C" {
int64_t now;    // seconds since 1970; 678 ms more for those who count them
int64_t ticks;  // of 100 ns since 1970, for those who count in these
SYSTEMTIME local_time;
SYSTEMTIME time_set;
int32_t is_refused;
void set_zone(const char *zone);
}

namespace {

__time64_t tell_time(__time64_t *time) {
  if (time != nullptr) *time = now;
  return now;
}

void tell_timeb(struct __timeb64 *time) {
  time->time = now;
  time->millitm = 678;
}

void WINAPI tell_ticks(FILETIME *time) {
  const int64_t since_1601 = ticks + 116444736000000000;
  std::memcpy(time, &since_1601, sizeof *time);
}

void WINAPI tell_local_time(SYSTEMTIME *time) { *time = local_time; }

// The host sets the clock for a process that has enabled its privilege.
bool is_enabled;
BOOL WINAPI adjust(HANDLE, BOOL disable_all, TOKEN_PRIVILEGES *wanted, DWORD, TOKEN_PRIVILEGES *, DWORD *) {
  constexpr DWORD system_time_privilege = 12;
  const auto privilege = disable_all != FALSE ? LUID_AND_ATTRIBUTES{} : wanted->Privileges[0];
  is_enabled = privilege.Luid.LowPart == system_time_privilege && privilege.Attributes == SE_PRIVILEGE_ENABLED;
  return TRUE;
}

BOOL WINAPI keep_time(const SYSTEMTIME *time) {
  time_set = *time;
  return is_enabled && is_refused == 0 ? TRUE : FALSE;
}

const ImportOverride overrides[] = {{library(), "SetLocalTime", keep_time},
                                    {library(), "GetLocalTime", tell_local_time},
                                    {library(), "_time64", tell_time},
                                    {library(), "_ftime64", tell_timeb},
                                    {library(), "GetSystemTimeAsFileTime", tell_ticks}};
const LookupOverride adjusting(library(), "AdjustTokenPrivileges", adjust);

}  // namespace

void set_zone(const char *zone) {
  _putenv_s("TZ", zone);
  _tzset();
}
