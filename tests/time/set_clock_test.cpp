// SPDX-License-Identifier: MIT
// Setting the clock. Every host call is overridden: no test may set the clock of the machine.
#include <cstring>

#include "library_test.h"

namespace {

// What the host was asked, and which of its calls fails.
std::string asked;
std::string failing_call;
SYSTEMTIME set_time;
const HANDLE process_token = reinterpret_cast<HANDLE>(uintptr_t{77});

BOOL note(const std::string &what) {
  asked += what + ' ';
  return what == failing_call ? FALSE : TRUE;
}

BOOL WINAPI open_token(HANDLE process, DWORD access, HANDLE *token) {
  CHECK((process == GetCurrentProcess() && access == 40));
  *token = process_token;
  return note("open");
}

BOOL WINAPI look_up(const char *system, const char *name, LUID *luid) {
  CHECK(system == nullptr);
  luid->LowPart = 12;
  return note(std::string("lookup:") + name);
}

BOOL WINAPI adjust(HANDLE token, BOOL disable_all, TOKEN_PRIVILEGES *wanted, DWORD, TOKEN_PRIVILEGES *, DWORD *) {
  CHECK(token == process_token);
  if (disable_all != FALSE) return note("disable");
  const auto &privilege = wanted->Privileges[0];
  CHECK((wanted->PrivilegeCount == 1 && privilege.Luid.LowPart == 12 && privilege.Attributes == SE_PRIVILEGE_ENABLED));
  return note("enable");
}

// 2023-03-05 14:07:09.123, with a day of the week that no Sunday has.
void WINAPI tell_time(SYSTEMTIME *time) {
  note("get");
  *time = {2023, 3, 6, 5, 14, 7, 9, 123};
}

BOOL WINAPI keep_time(const SYSTEMTIME *time) {
  set_time = *time;
  return note("set");
}

BOOL WINAPI close_token(HANDLE token) { return token == process_token ? note("close") : FALSE; }

constexpr char all_steps[] = "open lookup:SeSystemTimePrivilege enable get set disable close ";

// Calls the routine on the simulated host; outside this no routine of this file is called.
void check(auto set, bool done, const std::string &steps, const SYSTEMTIME &expected, const char *failing = "") {
  const LookupOverride open(library(), "OpenProcessToken", open_token),
      look(library(), "LookupPrivilegeValueA", look_up), adjusting(library(), "AdjustTokenPrivileges", adjust);
  const ImportOverride get(library(), "GetLocalTime", tell_time), keep(library(), "SetLocalTime", keep_time),
      close(library(), "CloseHandle", close_token);
  CAPTURE(failing);
  asked.clear();
  failing_call = failing;
  set_time = {};
  CHECK(set() == done);
  CHECK(asked == steps);
  CHECK(std::memcmp(&set_time, &expected, sizeof set_time) == 0);
}

}  // namespace

TEST_CASE("the date is set and the time of day kept, or the other way round; the host checks the values") {
  check([] { return call(SETDAT, 2031, 12, 24); }, true, all_steps, {2031, 12, 6, 24, 14, 7, 9, 123});
  const SYSTEMTIME changed = {2023, 3, 6, 5, 23, 59, 58, 500};
  check([] { return call(SETTIMI2, 23, 59, 58, 50); }, true, all_steps, changed);
  // SETTIM takes the low halves of its first three arguments.
  check([] { return call(SETTIM, 23 + 0x70000, 59 - 0x10000, 58, 50); }, true, all_steps, changed);
  check([] { return call(SETTIM, 99, -1, -1, -1); }, true, all_steps, {2023, 3, 6, 5, 99, 65535, 65535, 65526});
}

TEST_CASE("the first failing step ends the call with false, but for an unknown privilege name") {
  const std::tuple<const char *, bool, std::string, bool> cases[] = {
      {"open", false, "open ", false},
      {"lookup:SeSystemTimePrivilege", true, all_steps, true},
      {"enable", false, "open lookup:SeSystemTimePrivilege enable close ", false},
      {"set", false, "open lookup:SeSystemTimePrivilege enable get set close ", true},
      {"disable", false, all_steps, true}};
  for (const auto &[failing, done, steps, sets] : cases) {
    const SYSTEMTIME expected = sets ? SYSTEMTIME{2031, 12, 6, 24, 14, 7, 9, 123} : SYSTEMTIME{};
    check([] { return call(SETDAT, 2031, 12, 24); }, done, steps, expected, failing);
  }
}
