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
int32_t steps_taken, failing_step;
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

// ---- Setting the clock --------------------------------------------------------------------------

enum Step { open = 1, look_up, enable, get, set, disable, wrong };

// Notes a step, or that its arguments are wrong.
BOOL take(Step step, bool is_right) {
  steps_taken = 10 * steps_taken + (is_right ? step : wrong);
  return step == failing_step ? FALSE : TRUE;
}

const HANDLE process_token = reinterpret_cast<HANDLE>(uintptr_t{77});
constexpr DWORD privilege = 12;

BOOL WINAPI open_token(HANDLE process, DWORD access, HANDLE *token) {
  *token = process_token;
  return take(open, process == GetCurrentProcess() && access == (TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY));
}

BOOL WINAPI look_up_privilege(const char *system, const char *name, LUID *luid) {
  luid->LowPart = privilege;
  return take(look_up, system == nullptr && std::strcmp(name, "SeSystemTimePrivilege") == 0);
}

BOOL WINAPI adjust(HANDLE token, BOOL disable_all, TOKEN_PRIVILEGES *wanted, DWORD, TOKEN_PRIVILEGES *, DWORD *) {
  if (disable_all != FALSE) return take(disable, token == process_token);
  const auto &[luid, attributes] = wanted->Privileges[0];
  return take(enable, token == process_token && wanted->PrivilegeCount == 1 && luid.LowPart == privilege &&
                          attributes == SE_PRIVILEGE_ENABLED);
}

void WINAPI tell_local_time(SYSTEMTIME *time) {
  take(get, true);
  *time = local_time;
}

BOOL WINAPI keep_time(const SYSTEMTIME *time) {
  time_set = *time;
  return take(set, true);
}

const ImportOverride overrides[] = {{library(), "SetLocalTime", keep_time},
                                    {library(), "GetLocalTime", tell_local_time},
                                    {library(), "_time64", tell_time},
                                    {library(), "_ftime64", tell_timeb},
                                    {library(), "GetSystemTimeAsFileTime", tell_ticks}};
const LookupOverride opening(library(), "OpenProcessToken", open_token);
const LookupOverride looking_up(library(), "LookupPrivilegeValueA", look_up_privilege);
const LookupOverride adjusting(library(), "AdjustTokenPrivileges", adjust);

}  // namespace

void set_zone(const char *zone) {
  _putenv_s("TZ", zone);
  _tzset();
}
