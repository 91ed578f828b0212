// SPDX-License-Identifier: MIT
// Identity, system name, times and comparison.
#include <array>
#include <ctime>
#include <sstream>

#include "pxf.h"

namespace {

// ---- A simulated host ---------------------------------------------------------------------------

WORD architecture, level;
void simulated_system(SYSTEM_INFO *system) {
  *system = {};
  system->wProcessorArchitecture = architecture;
  system->wProcessorLevel = level;
}

DWORD product, version;
BOOL simulated_test(const OSVERSIONINFOEXW *wanted, DWORD parts, DWORDLONG conditions) {
  if (parts == VER_PRODUCT_TYPE)
    return conditions == VerSetConditionMask(0, parts, VER_EQUAL) && product == wanted->wProductType;
  return parts == (VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR) && wanted->wServicePackMajor == 0 &&
         version >= wanted->dwMajorVersion * 100 + wanted->dwMinorVersion;
}

uint64_t user_time;
BOOL simulated_times(HANDLE, FILETIME *, FILETIME *, FILETIME *kernel, FILETIME *user) {
  *kernel = {25'000, 0};
  *user = {static_cast<DWORD>(user_time), static_cast<DWORD>(user_time >> 32)};
  return TRUE;
}

}  // namespace

TEST_CASE_FIXTURE(Posix, "the process and its parent") {
  const auto own = static_cast<int32_t>(GetCurrentProcessId());
  const int32_t parent = value_of(PXFGETPPID);
  CHECK((value_of(PXFGETPID) == own && parent >= 0 && parent != own));
}

TEST_CASE_FIXTURE(Posix, "PXFKILL knows which processes there are, and has no signal but 9 for another") {
  core.answer("for__raise", -1);  // no such signal
  const auto own = static_cast<int32_t>(GetCurrentProcessId()), nobody = 2147483644;
  const int32_t rows[][3] = {{own, 0, 0},          {own, 5, EINVAL},    {nobody, 0, ESRCH},  {nobody, 9, ESRCH},
                             {nobody, 15, EINVAL}, {own + 1, 0, ESRCH}, {own + 2, 0, ESRCH}, {own + 3, 0, ESRCH}};
  for (const auto &[process, signal, expected] : rows) CHECK(pxf(PXFKILL, process, signal) == expected);
}

TEST_CASE_FIXTURE(Posix, "the user's name fits or is cut") {
  const auto is_admin =
      +[](char *name, DWORD *size) { return lstrcpyA(name, *size == 257 ? "admin" : "?"), *size = 6, TRUE; };
  const LookupOverride user(library(), "GetUserNameA", is_admin);
  errno = 99;
  CHECK(answer(PXFGETLOGIN, Room{3}) == "adm|5|129");
  CHECK((GETLASTERROR() == 129 && core.calls() == reports(129)));
  CHECK((answer(PXFGETLOGIN, Room{10}) == "admin     |5|0" && GETLASTERROR() == 0));
}

TEST_CASE_FIXTURE(Posix, "PXFUNAME tells system, computer, version and machine") {
  const int32_t name = create("utsname");
  char computer[16];
  DWORD size = sizeof computer;
  GetComputerNameA(computer, &size);
  set_text(name, "release", "kept");
  CHECK(pxf(PXFUNAME, name) == 0);
  CHECK(seen({text(name, "sysname"), text(name, "nodename"), text(name, "release")}) ==
        "Microsoft Windows " + std::string(computer) + " kept");

  const ImportOverride test(library(), "VerifyVersionInfoW", simulated_test);
  const std::tuple<DWORD, DWORD, const char *> versions[] = {
      {3, 1000, "Server"}, {1, 1000, "V10 or greater"}, {1, 999, "V8"}, {1, 602, "V8"}, {1, 601, "V7 or lesser"}};
  for (const auto &[of_product, of_version, expected] : versions) {
    product = of_product;
    version = of_version;
    CHECK((pxf(PXFUNAME, name) == 0 && text(name, "version") == expected));
  }
  // "old" is what was there before.
  const ImportOverride system(library(), "GetSystemInfo", simulated_system);
  std::istringstream machines(
      "0 3 i386,0 4 i486,0 5 i586,0 6 i686,0 0 i686,1 4 MIPS R4000,2 21064 Alpha 21064,2 21066 Alpha 21066,"
      "2 21164 Alpha 21164,2 1 old,3 1 PPC 601,3 3 PPC 603,3 4 PPC 604,3 6 PPC 603+,3 9 PPC 604+,"
      "3 20 PPC 620,3 2 old,4 1 old,6 1 ia64,10 1 ia64,9 6 AMD64,12 1 old,65535 1 Unknown,");
  for (std::string expected; std::getline(machines >> architecture >> level >> std::ws, expected, ',');) {
    set_text(name, "machine", "old");
    CHECK((pxf(PXFUNAME, name) == 0 && text(name, "machine") == expected));
  }
  CHECK(pxf(PXFUNAME, create("tms")) == EINVAL);
}

TEST_CASE_FIXTURE(Posix, "the present, and a time in local time") {
  const std::time_t before = std::time(nullptr), summer = 1'000'000'000;
  const int32_t now = value_of(PXFTIME);
  CHECK((now >= before && now <= std::time(nullptr)));
  std::array<int32_t, 9> elements;
  const std::tm local = *std::localtime(&summer);
  CHECK((pxf(PXFLOCALTIME, summer, elements.data()) == 0 && pxf(PXFLOCALTIME, -1, elements.data()) == EINVAL));
  CHECK(elements == std::array<int32_t, 9>{40, local.tm_min, local.tm_hour, local.tm_mday, 9, 2001, local.tm_wday,
                                           local.tm_yday + 1, local.tm_isdst});
}

TEST_CASE_FIXTURE(Posix, "process times are single-precision milliseconds, rounded up") {
  const int32_t tms = create("tms");
  const ImportOverride process(library(), "GetProcessTimes", simulated_times);
  // User time in ticks, and the milliseconds; exactly, the last two are 16777217 and 36000001.
  const std::pair<uint64_t, const char *> cases[] = {
      {0, "0"}, {1, "1"}, {10'001, "2"}, {167'772'170'000, "16777218"}, {360'000'010'000, "36000000"}};
  for (const auto &[user, expected] : cases) {
    user_time = user;
    for (const char *field : {"tms_cutime", "tms_cstime"}) pxf(PXFINTSET, tms, field, 9);
    CHECK(GetTickCount() - static_cast<DWORD>(value_of(PXFTIMES, tms)) < 60'000);
    CHECK(seen({number(tms, "tms_utime"), number(tms, "tms_stime"), number(tms, "tms_cutime"),
                number(tms, "tms_cstime")}) == std::string(expected) + " 3 0 0");
  }
  CHECK(answer(PXFTIMES, create("stat")) == "-77|22");
}

TEST_CASE("unsigned comparison with a signed difference, and lengths without blanks") {
  const int32_t cases[][4] = {{1, 2, -1, 1}, {2, 2, 0, 0}, {1, -1, -1, 2}, {INT32_MIN, 0, 1, INT32_MIN}};
  for (const auto &[left, right, expected_order, expected_difference] : cases) {
    int32_t order = unset, difference = unset;
    PXFUCOMPARE(&left, &right, &order, &difference);
    CHECK((order == expected_order && difference == expected_difference));
  }
  CHECK(seen({IPXFLENTRIM("ab  ", 4), IPXFLENTRIM("    ", 4), IPXFLENTRIM(nullptr, 0), IPXFLENTRIM("ab", SIZE_MAX)}) ==
        "2 0 0 0");
}
