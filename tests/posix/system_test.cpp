// SPDX-License-Identifier: MIT
// Units through a recorded core runtime, identity, system name, times and comparison.
#include <doctest/doctest.h>

#include <cerrno>
#include <cmath>
#include <ctime>
#include <functional>
#include <string>

#include <windows.h>

#include <tlhelp32.h>

#include "../portability/library.h"
#include "import_override.h"
#include "pxf.h"
#include "recording.h"

namespace {

const int32_t unit = 11, offset = -4, origin = 2, flag = 1;

struct MachineCase {
  WORD architecture, level;
  const char *name;  // "old" is what was there before
};

const MachineCase machine_cases[] = {
    {0, 3, "i386"},
    {0, 4, "i486"},
    {0, 5, "i586"},
    {0, 6, "i686"},
    {0, 0, "i686"},
    {1, 4, "MIPS R4000"},
    {2, 21064, "Alpha 21064"},
    {2, 21066, "Alpha 21066"},
    {2, 21164, "Alpha 21164"},
    {2, 1, "old"},
    {3, 1, "PPC 601"},
    {3, 3, "PPC 603"},
    {3, 4, "PPC 604"},
    {3, 6, "PPC 603+"},
    {3, 9, "PPC 604+"},
    {3, 20, "PPC 620"},
    {3, 2, "old"},
    {4, 1, "old"},
    {6, 1, "ia64"},
    {10, 1, "ia64"},
    {9, 6, "AMD64"},
    {12, 1, "old"},
    {65535, 1, "Unknown"},
};

WORD simulated_architecture, simulated_level;
void simulated_system(SYSTEM_INFO *system) {
  *system = {};
  system->wProcessorArchitecture = simulated_architecture;
  system->wProcessorLevel = simulated_level;
}

// A host of this product type and version; the conditions are 3 bits a part, 1 equal and 3 greater or equal.
BYTE simulated_product;
DWORD simulated_version;
BOOL simulated_test(const OSVERSIONINFOEXW *wanted, DWORD parts, DWORDLONG conditions) {
  if (parts == VER_PRODUCT_TYPE && conditions == VerSetConditionMask(0, VER_PRODUCT_TYPE, VER_EQUAL)) {
    return simulated_product == wanted->wProductType;
  }
  const bool is_known =
      parts == (VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR) && wanted->wServicePackMajor == 0;
  return is_known && simulated_version >= wanted->dwMajorVersion * 100 + wanted->dwMinorVersion;
}

uint64_t simulated_user, simulated_kernel;
BOOL simulated_times(HANDLE, FILETIME *, FILETIME *, FILETIME *kernel, FILETIME *user) {
  *kernel = {static_cast<DWORD>(simulated_kernel), static_cast<DWORD>(simulated_kernel >> 32)};
  *user = {static_cast<DWORD>(simulated_user), static_cast<DWORD>(simulated_user >> 32)};
  return TRUE;
}

}  // namespace

TEST_CASE("unit routines hand their arguments on and translate the answer") {
  RecordingCore core;
  int32_t value = unset, error = unset;
  char text[3] = {'x', 'y', 'z'};
  const auto expect = [&](int32_t expected, const std::string &calls) {
    CHECK(error == expected);
    CHECK(core.calls() == calls);
    error = unset;
  };
  struct {
    const char *entry;
    std::string call;
    std::function<void()> routine;
    int64_t failure;
    int32_t expected;
  } const cases[] = {
      {"__msportlib_d_get_POSIX_fd", "(11)", [&] { PXFFILENO(&unit, &value, &error); }, -22, EBADF},
      {"for_fdopen", "(-4, 11, &, 4)", [&] { PXFFDOPEN(&offset, &unit, "FORM", &error, 4); }, EIO, EIO},
      {"COMMITQQ", "(&)", [&] { PXFFFLUSH(&unit, &error); }, 0, EBADF},
      {"__msportlib_d_fseek", "(11, -4, 2)", [&] { PXFFSEEK(&unit, &offset, &origin, &error); }, -9, EINVAL},
      {"__msportlib_d_curpos", "(11)", [&] { PXFFTELL(&unit, &value, &error); }, -34, EINVAL},
      {"__msportlib_d_readchar", "(5, &, 3)", [&] { PXFGETC(text, &error, 3); }, -9, -9},
      {"__msportlib_d_readchar", "(11, &, 3)", [&] { PXFFGETC(&unit, text, &error, 3); }, -5, -5},
      {"__msportlib_d_writechar", "(6, -23)", [&] { PXFPUTC("\xE9x", &error, 2); }, -9, -9},
      {"__msportlib_d_writechar", "(11, 65)", [&] { PXFFPUTC(&unit, "A", &error, 1); }, -28, -28},
  };
  for (const auto &row : cases) {
    const std::string entry = row.entry;
    CAPTURE(entry);
    const bool is_flag = entry == "COMMITQQ", is_code = entry == "for_fdopen";
    core.answer(row.entry, is_flag ? -1 : is_code ? 0 : 65);
    row.routine();
    expect(0, entry + row.call);
    core.answer(row.entry, row.failure);
    row.routine();
    const int32_t reported = std::abs(row.expected);
    expect(row.expected, entry + row.call + ' ' + reports(reported));
    CHECK(GETLASTERROR() == reported);
  }
  CHECK((value == 65 && std::string(text, 3) == "Ayz"));
  core.answer("__msportlib_d_readchar", -2);
  PXFGETC(text, &error, 3);
  expect(-1, "__msportlib_d_readchar(5, &, 3)");
  PXFPOSIXIO(&flag, &value, &error);
  expect(0, "__msportlib_set_posix_io_flag(&, &)");
}

TEST_CASE("the process and its parent") {
  RecordingCore core;
  const std::string own = std::to_string(GetCurrentProcessId()) + "|0";
  CHECK(answer(PXFGETPID) == own);
  int32_t parent = unset;
  CHECK((pxf(PXFGETPPID, &parent) == 0 && parent != unset && answer(PXFGETPPID) != own));
  {
    const ImportOverride self(
        library(), "GetCurrentProcessId", +[] { return DWORD{0xFFFFFFF1}; });
    CHECK(answer(PXFGETPPID) == "-77|14");
  }
  const ImportOverride entry(
      library(), "GetProcAddress",
      +[](HMODULE, const char *) -> FARPROC { return SetLastError(ERROR_PROC_NOT_FOUND), nullptr; });
  CHECK(answer(PXFGETPPID) == "-77|22");
}

TEST_CASE("the user's name fits, is cut, or is not known") {
  RecordingCore core;
  {
    const ImportOverride user(
        library(), "GetUserNameA",
        +[](char *name, DWORD *size) { return lstrcpyA(name, *size == 257 ? "admin" : "?"), *size = 6, TRUE; });
    errno = 99;
    CHECK(text_answer(3, PXFGETLOGIN) == "adm|5|129");
    CHECK((GETLASTERROR() == 129 && core.calls() == reports(129)));
    CHECK((text_answer(5, PXFGETLOGIN) == "admin|5|0" && text_answer(10, PXFGETLOGIN) == "admin     |5|0"));
    CHECK((GETLASTERROR() == 0 && core.calls().empty()));
  }
  const ImportOverride user(
      library(), "GetUserNameA", +[](char *, DWORD *) { return SetLastError(ERROR_ACCESS_DENIED), FALSE; });
  CHECK(text_answer(4, PXFGETLOGIN) == "    |-77|13");
}

TEST_CASE("PXFUNAME tells system, computer, version and machine") {
  RecordingCore core;
  const Structure name("utsname"), tms("tms");
  set_text(name, "release", "kept");
  CHECK(pxf(PXFUNAME, name.handle) == 0);
  char computer[16];
  DWORD size = sizeof computer;
  GetComputerNameA(computer, &size);
  CHECK((text(name, "sysname") == "Microsoft Windows" && text(name, "nodename") == computer));
  CHECK((text(name, "machine") == "AMD64" && text(name, "release") == "kept"));
  CHECK((pxf(PXFUNAME, tms.handle) == EINVAL && pxf(PXFUNAME, no_handle) == 127));

  const ImportOverride test(library(), "VerifyVersionInfoW", simulated_test);
  const ImportOverride system(library(), "GetSystemInfo", simulated_system);
  const std::tuple<int, DWORD, const char *> versions[] = {
      {3, 1000, "Server"}, {1, 1000, "V10 or greater"}, {1, 1100, "V10 or greater"}, {1, 603, "V8"},
      {1, 602, "V8"},      {1, 601, "V7 or lesser"}};
  for (const auto &[product, version, expected] : versions) {
    simulated_product = static_cast<BYTE>(product);
    simulated_version = version;
    CHECK((pxf(PXFUNAME, name.handle) == 0 && text(name, "version") == expected));
  }
  for (const auto &[architecture, level, expected] : machine_cases) {
    simulated_architecture = architecture;
    simulated_level = level;
    set_text(name, "machine", "old");
    CHECK((pxf(PXFUNAME, name.handle) == 0 && text(name, "machine") == expected));
  }
  set_text(name, "sysname", "kept");
  const ImportOverride computer_name(
      library(), "GetComputerNameA", +[](char *, DWORD *) { return SetLastError(ERROR_ACCESS_DENIED), FALSE; });
  CHECK((pxf(PXFUNAME, name.handle) == EACCES && text(name, "sysname") == "kept"));
}

TEST_CASE("the present, and a time in local time") {
  RecordingCore core;
  int32_t now = unset, error = unset;
  const std::time_t before = std::time(nullptr);
  CHECK((pxf(PXFTIME, &now) == 0 && now >= before && now <= std::time(nullptr)));
  CHECK((PXFTIME(nullptr, &error), error == -1));

  const ImportOverride local(
      library(), "_localtime64", +[](const __time64_t *seconds) -> std::tm * {
        static std::tm time{1, 2, 3, 4, 0, 70, 6, 0, 1};
        return *seconds < 0 ? (errno = EINVAL, nullptr) : &time;
      });
  int32_t elements[9] = {};
  CHECK(pxf(PXFLOCALTIME, unit, &elements[0]) == 0);
  const int32_t expected[] = {1, 2, 3, 4, 1, 1970, 6, 1, 1};
  CHECK(std::equal(expected, expected + 9, elements));
  CHECK(pxf(PXFLOCALTIME, offset, &elements[0]) == EINVAL);
}

TEST_CASE("process times are single-precision milliseconds, rounded up") {
  RecordingCore core;
  const Structure tms("tms"), stat("stat");
  int32_t ticks = unset;
  {
    const ImportOverride process(library(), "GetProcessTimes", simulated_times);
    // User time in ticks, and the milliseconds; exactly, the last two are 16777217 and 36000001.
    const std::pair<uint64_t, int64_t> cases[] = {
        {0, 0}, {1, 1}, {9'999, 1}, {10'001, 2}, {167'772'170'000, 16'777'218}, {360'000'010'000, 36'000'000}};
    for (const auto &[user, expected] : cases) {
      CAPTURE(user);
      simulated_user = user;
      simulated_kernel = 25'000;
      CHECK((pxf(PXFTIMES, tms.handle, &ticks) == 0 && number(tms, "tms_utime") == expected));
      CHECK((number(tms, "tms_stime") == 3 && number(tms, "tms_cutime") == 0 && number(tms, "tms_cstime") == 0));
      CHECK(GetTickCount() - static_cast<DWORD>(ticks) < 60'000);
    }
  }
  CHECK((answer(PXFTIMES, stat.handle) == "-77|22" && answer(PXFTIMES, no_handle) == "-77|127"));
  const ImportOverride process(
      library(), "GetProcessTimes", +[](HANDLE, FILETIME *, FILETIME *, FILETIME *, FILETIME *) {
        return SetLastError(ERROR_INVALID_HANDLE), FALSE;
      });
  CHECK(answer(PXFTIMES, tms.handle) == "-77|9");
}

TEST_CASE("unsigned comparison with a signed difference, and lengths without blanks") {
  const int32_t cases[][4] = {{1, 2, -1, 1},
                              {2, 2, 0, 0},
                              {-1, 1, 1, 2},
                              {1, -1, -1, 2},
                              {INT32_MIN, 0, 1, INT32_MIN},
                              {INT32_MAX, -1, -1, INT32_MIN}};
  for (const auto &[left, right, expected_order, expected_difference] : cases) {
    int32_t order = unset, difference = unset;
    PXFUCOMPARE(&left, &right, &order, &difference);
    CHECK((order == expected_order && difference == expected_difference));
  }
  CHECK((IPXFLENTRIM("ab  ", 4) == 2 && IPXFLENTRIM("    ", 4) == 0 && IPXFLENTRIM(nullptr, 0) == 0));
}
