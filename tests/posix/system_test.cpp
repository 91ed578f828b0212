// SPDX-License-Identifier: MIT
// Units through a recorded core runtime, identity, system name, times and comparison.
#include <array>
#include <cmath>
#include <ctime>
#include <sstream>

#include "pxf.h"

namespace {

const int32_t unit = 11;

WORD simulated_architecture, simulated_level;
void simulated_system(SYSTEM_INFO *system) {
  *system = {};
  system->wProcessorArchitecture = simulated_architecture;
  system->wProcessorLevel = simulated_level;
}

// A host of this product type and version; the conditions are 3 bits a part, 1 equal and 3 greater or equal.
DWORD simulated_product, simulated_version;
BOOL simulated_test(const OSVERSIONINFOEXW *wanted, DWORD parts, DWORDLONG conditions) {
  if (parts == VER_PRODUCT_TYPE && conditions == VerSetConditionMask(0, VER_PRODUCT_TYPE, VER_EQUAL))
    return simulated_product == wanted->wProductType;
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

TEST_CASE_FIXTURE(Posix, "unit routines hand their arguments on and translate failures") {
  GuardedText text(3);
  const auto expect = [&](int32_t error, int32_t expected, const std::string &call) {
    CHECK(error == expected);
    CHECK(core.calls() == (expected == -1 ? call : call + ' ' + reports(std::abs(expected))));
    if (expected != -1) CHECK(GETLASTERROR() == std::abs(expected));
  };
  for (const char *entry : {"get_POSIX_fd", "fseek", "curpos", "readchar", "writechar"})
    core.answer((std::string("__msportlib_d_") + entry).c_str(), -28);
  core.answer("for_fdopen", EIO);
  int32_t value = unset;
  expect(pxf(PXFFILENO, unit, &value), EBADF, "__msportlib_d_get_POSIX_fd(11)");
  expect(pxf(PXFFDOPEN, -4, unit, "FORM"), EIO, "for_fdopen(-4, 11, &, 4)");
  expect(pxf(PXFFFLUSH, unit), EBADF, "COMMITQQ(&)");
  expect(pxf(PXFFSEEK, unit, -4, 2), EINVAL, "__msportlib_d_fseek(11, -4, 2)");
  expect(pxf(PXFFTELL, unit, &value), EINVAL, "__msportlib_d_curpos(11)");
  expect(pxf(PXFGETC, text), -28, "__msportlib_d_readchar(5, &, 3)");
  expect(pxf(PXFFGETC, unit, text), -28, "__msportlib_d_readchar(11, &, 3)");
  expect(pxf(PXFPUTC, "\xE9x"), -28, "__msportlib_d_writechar(6, -23)");
  expect(pxf(PXFFPUTC, unit, "A"), -28, "__msportlib_d_writechar(11, 65)");
  core.answer("__msportlib_d_writechar", -2);
  expect(pxf(PXFPUTC, "A"), -2, "__msportlib_d_writechar(6, 65)");
  core.answer("__msportlib_d_readchar", -2);
  expect(pxf(PXFGETC, text), -1, "__msportlib_d_readchar(5, &, 3)");
  CHECK((value == unset && text.str() == "###"));
  CHECK((answer(PXFPOSIXIO, 1) == "-77|0" && core.calls() == "__msportlib_set_posix_io_flag(&, &)"));
}

TEST_CASE_FIXTURE(Posix, "the process and its parent") {
  const std::string own = std::to_string(GetCurrentProcessId()) + "|0";
  CHECK(answer(PXFGETPID) == own);
  int32_t parent = unset;
  CHECK((pxf(PXFGETPPID, &parent) == 0 && parent != unset && answer(PXFGETPPID) != own));
  {
    const FailingCall self("GetCurrentProcessId", 0, 0x7FFFFFF1);  // nobody's
    CHECK(answer(PXFGETPPID) == "-77|14");
  }
  const FailingCall entry("GetProcAddress", ERROR_PROC_NOT_FOUND);
  CHECK(answer(PXFGETPPID) == "-77|22");
}

TEST_CASE_FIXTURE(Posix, "PXFKILL knows which processes there are, and has no signal but 9 for another") {
  core.answer("for__raise", -1);  // no such signal
  const auto own = static_cast<int32_t>(GetCurrentProcessId()), nobody = 2147483644;
  const int32_t rows[][3] = {{own, 0, 0},          {own, 5, EINVAL},    {nobody, 0, ESRCH},  {nobody, 9, ESRCH},
                             {nobody, 15, EINVAL}, {own + 1, 0, ESRCH}, {own + 2, 0, ESRCH}, {own + 3, 0, ESRCH}};
  for (const auto &[process, signal, expected] : rows) CHECK(pxf(PXFKILL, process, signal) == expected);
}

TEST_CASE_FIXTURE(Posix, "the user's name fits, is cut, or is not known") {
  {
    const LookupOverride user(
        library(), "GetUserNameA",
        +[](char *name, DWORD *size) { return lstrcpyA(name, *size == 257 ? "admin" : "?"), *size = 6, TRUE; });
    errno = 99;
    CHECK(text_answer(3, PXFGETLOGIN) == "adm|5|129");
    CHECK((GETLASTERROR() == 129 && core.calls() == reports(129)));
    CHECK((text_answer(5, PXFGETLOGIN) == "admin|5|0" && text_answer(10, PXFGETLOGIN) == "admin     |5|0"));
    CHECK((GETLASTERROR() == 0 && core.calls().empty()));
  }
  const LookupOverride user(
      library(), "GetUserNameA", +[](char *, DWORD *) { return SetLastError(ERROR_ACCESS_DENIED), FALSE; });
  CHECK(text_answer(4, PXFGETLOGIN) == "    |-77|13");
}

TEST_CASE_FIXTURE(Posix, "PXFUNAME tells system, computer, version and machine") {
  const int32_t name = create("utsname"), tms = create("tms");
  set_text(name, "release", "kept");
  CHECK(pxf(PXFUNAME, name) == 0);
  char computer[16];
  DWORD size = sizeof computer;
  GetComputerNameA(computer, &size);
  CHECK((text(name, "sysname") == "Microsoft Windows" && text(name, "nodename") == computer));
  CHECK(text(name, "release") == "kept");
  CHECK((pxf(PXFUNAME, tms) == EINVAL && pxf(PXFUNAME, no_handle) == 127));

  const ImportOverride test(library(), "VerifyVersionInfoW", simulated_test);
  const ImportOverride system(library(), "GetSystemInfo", simulated_system);
  const std::tuple<DWORD, DWORD, const char *> versions[] = {
      {3, 1000, "Server"}, {1, 1000, "V10 or greater"}, {1, 999, "V8"}, {1, 602, "V8"}, {1, 601, "V7 or lesser"}};
  for (const auto &[product, version, expected] : versions) {
    simulated_product = product;
    simulated_version = version;
    CHECK((pxf(PXFUNAME, name) == 0 && text(name, "version") == expected));
  }
  // "old" is what was there before.
  std::istringstream machines(
      "0 3 i386,0 4 i486,0 5 i586,0 6 i686,0 0 i686,1 4 MIPS R4000,2 21064 Alpha 21064,2 21066 Alpha 21066,"
      "2 21164 Alpha 21164,2 1 old,3 1 PPC 601,3 3 PPC 603,3 4 PPC 604,3 6 PPC 603+,3 9 PPC 604+,"
      "3 20 PPC 620,3 2 old,4 1 old,6 1 ia64,10 1 ia64,9 6 AMD64,12 1 old,65535 1 Unknown,");
  for (std::string expected;
       machines >> simulated_architecture >> simulated_level >> std::ws, std::getline(machines, expected, ',');) {
    CAPTURE(expected);
    set_text(name, "machine", "old");
    CHECK((pxf(PXFUNAME, name) == 0 && text(name, "machine") == expected));
  }
  set_text(name, "sysname", "kept");
  const FailingCall computer_name("GetComputerNameA", ERROR_ACCESS_DENIED);
  CHECK((pxf(PXFUNAME, name) == EACCES && text(name, "sysname") == "kept"));
}

TEST_CASE_FIXTURE(Posix, "the present, and a time in local time") {
  int32_t now = unset, error = unset;
  const std::time_t before = std::time(nullptr);
  CHECK((pxf(PXFTIME, &now) == 0 && now >= before && now <= std::time(nullptr)));
  CHECK((PXFTIME(nullptr, &error), error == -1));

  std::array<int32_t, 9> elements;
  const std::time_t summer = 1'000'000'000;
  const std::tm local = *std::localtime(&summer);
  CHECK(pxf(PXFLOCALTIME, 1'000'000'000, &elements[0]) == 0);
  CHECK(elements == std::array<int32_t, 9>{40, local.tm_min, local.tm_hour, local.tm_mday, 9, 2001, local.tm_wday,
                                           local.tm_yday + 1, local.tm_isdst});
  CHECK(pxf(PXFLOCALTIME, -1, &elements[0]) == EINVAL);
}

TEST_CASE_FIXTURE(Posix, "process times are single-precision milliseconds, rounded up") {
  const int32_t tms = create("tms"), stat = create("stat");
  int32_t ticks = unset;
  {
    const ImportOverride process(library(), "GetProcessTimes", simulated_times);
    // User time in ticks, and the milliseconds; exactly, the last two are 16777217 and 36000001.
    const std::pair<uint64_t, int64_t> cases[] = {
        {0, 0}, {1, 1}, {10'001, 2}, {167'772'170'000, 16'777'218}, {360'000'010'000, 36'000'000}};
    for (const auto &[user, expected] : cases) {
      CAPTURE(user);
      simulated_user = user;
      pxf(PXFINTSET, tms, "tms_cutime", 9);
      pxf(PXFINTSET, tms, "tms_cstime", 9);
      simulated_kernel = 25'000;
      CHECK((pxf(PXFTIMES, tms, &ticks) == 0 && number(tms, "tms_utime") == expected));
      CHECK((number(tms, "tms_stime") == 3 && number(tms, "tms_cutime") == 0 && number(tms, "tms_cstime") == 0));
      CHECK(GetTickCount() - static_cast<DWORD>(ticks) < 60'000);
    }
  }
  CHECK((answer(PXFTIMES, stat) == "-77|22" && answer(PXFTIMES, no_handle) == "-77|127"));
  const FailingCall process("GetProcessTimes", ERROR_INVALID_HANDLE);
  CHECK(answer(PXFTIMES, tms) == "-77|9");
}

TEST_CASE_FIXTURE(Posix, "no variable is left, whatever its name") {
  SetEnvironmentVariableW(L"QWPORT_\u4E2D", L"x");
  CHECK((pxf(PXFCLEARENV) == 0 && GetEnvironmentVariableW(L"PATH", nullptr, 0) == 0));
  CHECK(GetEnvironmentVariableW(L"QWPORT_\u4E2D", nullptr, 0) == 0);
}

TEST_CASE_FIXTURE(Posix, "unsigned comparison with a signed difference, and lengths without blanks") {
  const int32_t cases[][4] = {{1, 2, -1, 1}, {2, 2, 0, 0}, {1, -1, -1, 2}, {INT32_MIN, 0, 1, INT32_MIN}};
  for (const auto &[left, right, expected_order, expected_difference] : cases) {
    int32_t order = unset, difference = unset;
    PXFUCOMPARE(&left, &right, &order, &difference);
    CHECK((order == expected_order && difference == expected_difference));
  }
  const std::tuple<const char *, size_t, int> texts[] = {
      {"ab  ", 4, 2}, {"    ", 4, 0}, {nullptr, 0, 0}, {"ab", SIZE_MAX, 0}};
  for (const auto &[characters, size, length] : texts) CHECK(IPXFLENTRIM(characters, size) == length);
}
