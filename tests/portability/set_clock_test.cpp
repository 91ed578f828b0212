// SPDX-License-Identifier: MIT
// Setting the clock. Every host call is overridden: no test may set the clock of the machine.
#include <doctest/doctest.h>

#include <cstring>
#include <string>
#include <string_view>

#include "import_override.h"
#include "library.h"
#include "qwport.h"

namespace {

// What the host was asked, and which of its calls fails.
std::string calls;
std::string failing_call;
SYSTEMTIME set_time;

BOOL note(const std::string &call) {
  calls += call + ' ';
  return call == failing_call ? FALSE : TRUE;
}

BOOL WINAPI open_token(HANDLE process, DWORD access, HANDLE *token) {
  CHECK(process == GetCurrentProcess());
  CHECK(access == 40);
  *token = reinterpret_cast<HANDLE>(uintptr_t{77});
  return note("open");
}

BOOL WINAPI look_up(const char *system, const char *name, LUID *luid) {
  CHECK(system == nullptr);
  luid->LowPart = 12;
  return note(std::string("lookup:") + name);
}

BOOL WINAPI adjust(HANDLE token, BOOL disable_all, TOKEN_PRIVILEGES *wanted, DWORD, TOKEN_PRIVILEGES *, DWORD *) {
  CHECK(token == reinterpret_cast<HANDLE>(uintptr_t{77}));
  if (disable_all != FALSE) return note("disable");
  CHECK(wanted->PrivilegeCount == 1);
  CHECK(wanted->Privileges[0].Luid.LowPart == 12);
  CHECK(wanted->Privileges[0].Attributes == SE_PRIVILEGE_ENABLED);
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

// The host for one test; without it no routine of this file is called.
class SimulatedHost {
 public:
  explicit SimulatedHost(const char *failing = "")
      : open_(library(), "OpenProcessToken", open_token),
        look_up_(library(), "LookupPrivilegeValueA", look_up),
        adjust_(library(), "AdjustTokenPrivileges", adjust),
        get_(library(), "GetLocalTime", tell_time),
        set_(library(), "SetLocalTime", keep_time) {
    calls.clear();
    failing_call = failing;
    set_time = {};
  }

 private:
  ImportOverride open_, look_up_, adjust_, get_, set_;
};

void check_set_time(const SYSTEMTIME &expected) { CHECK(std::memcmp(&set_time, &expected, sizeof set_time) == 0); }

int32_t set_date() {
  const int16_t year = 2031, month = 12, day = 24;
  return SETDAT(&year, &month, &day);
}

constexpr char all_steps[] = "open lookup:SeSystemTimePrivilege enable get set disable ";

}  // namespace

TEST_CASE("SETDAT sets the date and keeps the time of day") {
  const SimulatedHost host;
  CHECK(set_date() == 1);
  CHECK(calls == all_steps);
  check_set_time({2031, 12, 6, 24, 14, 7, 9, 123});
}

TEST_CASE("SETTIM and SETTIMI2 set the time of day and keep the date") {
  const SimulatedHost host;
  SUBCASE("SETTIM takes the low halves of its first three arguments") {
    const int32_t hour = 23 + 0x70000, minute = 59 - 0x10000, second = 58, hundredths = 50;
    CHECK(SETTIM(&hour, &minute, &second, &hundredths) == 1);
  }
  SUBCASE("SETTIMI2") {
    const int16_t hour = 23, minute = 59, second = 58, hundredths = 50;
    CHECK(SETTIMI2(&hour, &minute, &second, &hundredths) == 1);
  }
  CHECK(calls == all_steps);
  check_set_time({2023, 3, 6, 5, 23, 59, 58, 500});
}

TEST_CASE("values are the host's to refuse") {
  const SimulatedHost host;
  const int32_t hour = 99, minus_one = -1;
  SETTIM(&hour, &minus_one, &minus_one, &minus_one);
  check_set_time({2023, 3, 6, 5, 99, 65535, 65535, 65526});
}

TEST_CASE("the first failing step ends the call with false, but for an unknown privilege name") {
  const std::pair<const char *, std::string_view> cases[] = {
      {"open", "open "},
      {"lookup:SeSystemTimePrivilege", all_steps},
      {"enable", "open lookup:SeSystemTimePrivilege enable "},
      {"set", "open lookup:SeSystemTimePrivilege enable get set "},
      {"disable", all_steps}};
  for (const auto &[failing, expected_calls] : cases) {
    const SimulatedHost host(failing);
    CHECK(set_date() == (failing[0] == 'l' ? 1 : 0));
    CHECK(calls == expected_calls);
  }
}
