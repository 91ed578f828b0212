// SPDX-License-Identifier: MIT
// Setting the machine's local date and time.
#include <windows.h>

#include "handle.h"
#include "late_entry.h"
#include "qwport.h"

namespace {

OwnedHandle open_process_token() {
  const auto open = portlib_security_entry<decltype(OpenProcessToken)>("OpenProcessToken");
  HANDLE token = nullptr;
  const bool is_open = open != nullptr && open(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token) != 0;
  return OwnedHandle(is_open ? token : nullptr);
}

bool adjust_privileges(HANDLE token, bool disable_all, TOKEN_PRIVILEGES *privileges) {
  const auto adjust = portlib_security_entry<decltype(AdjustTokenPrivileges)>("AdjustTokenPrivileges");
  return adjust != nullptr && adjust(token, disable_all, privileges, 0, nullptr, nullptr) != 0;
}

bool enable_system_time_privilege(HANDLE token) {
  TOKEN_PRIVILEGES privileges{};
  privileges.PrivilegeCount = 1;
  privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
  // A name that is not known leaves a privilege that the next call refuses.
  const auto look_up = portlib_security_entry<decltype(LookupPrivilegeValueA)>("LookupPrivilegeValueA");
  if (look_up != nullptr) look_up(nullptr, "SeSystemTimePrivilege", &privileges.Privileges[0].Luid);
  return adjust_privileges(token, false, &privileges);
}

// Sets the local time to what change makes of it. The host checks the values.
template <class Change> int32_t set_local_time(Change change) {
  const OwnedHandle token = open_process_token();
  if (token == nullptr || !enable_system_time_privilege(token.get())) return 0;
  SYSTEMTIME time{};
  GetLocalTime(&time);
  change(time);
  if (!SetLocalTime(&time)) return 0;
  return adjust_privileges(token.get(), true, nullptr) ? 1 : 0;
}

int32_t set_time_of_day(WORD hour, WORD minute, WORD second, int32_t hundredths) {
  return set_local_time([=](SYSTEMTIME &time) {
    time.wHour = hour;
    time.wMinute = minute;
    time.wSecond = second;
    time.wMilliseconds = static_cast<WORD>(hundredths * 10);
  });
}

}  // namespace

int32_t SETDAT(const int16_t *year, const int16_t *month, const int16_t *day) {
  return set_local_time([=](SYSTEMTIME &time) {
    time.wYear = static_cast<WORD>(*year);
    time.wMonth = static_cast<WORD>(*month);
    time.wDay = static_cast<WORD>(*day);
  });
}

int32_t SETTIM(const int32_t *hour, const int32_t *minute, const int32_t *second, const int32_t *hundredths) {
  return set_time_of_day(static_cast<WORD>(*hour), static_cast<WORD>(*minute), static_cast<WORD>(*second), *hundredths);
}

int32_t SETTIMI2(const int16_t *hour, const int16_t *minute, const int16_t *second, const int16_t *hundredths) {
  return set_time_of_day(static_cast<WORD>(*hour), static_cast<WORD>(*minute), static_cast<WORD>(*second), *hundredths);
}
