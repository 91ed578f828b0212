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
#include "guarded_text.h"
#include "import_override.h"
#include "qwport.h"
#include "recording.h"

namespace {

constexpr int32_t unset = -77;
const int32_t unit = 11, offset = -4, origin = 2, flag = 1, no_handle = 9999;

int32_t create(std::string_view structure) {
  int32_t handle = 0, error = unset;
  PXFSTRUCTCREATE(structure.data(), &handle, &error, structure.size());
  REQUIRE(error == 0);
  return handle;
}

std::string text_field(int32_t handle, std::string_view field) {
  char text[100];
  int32_t length = 0, error = unset;
  PXFSTRGET(&handle, field.data(), text, &length, &error, field.size(), sizeof text);
  return error == 0 ? std::string(text, static_cast<size_t>(length)) : "error " + std::to_string(error);
}

void set_text_field(int32_t handle, std::string_view field, std::string_view text) {
  const auto length = static_cast<int32_t>(text.size());
  int32_t error = unset;
  PXFSTRSET(&handle, field.data(), text.data(), &length, &error, field.size(), text.size());
}

int64_t number_field(int32_t handle, std::string_view field) {
  int64_t value = unset;
  int32_t error = unset;
  PXFINT8GET(&handle, field.data(), &value, &error, field.size());
  return error == 0 ? value : -error;
}

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

// "text|length|ierror"
std::string login(size_t room) {
  GuardedText name(room);
  int32_t length = unset, error = unset;
  PXFGETLOGIN(name.data(), &length, &error, room);
  return name.str() + '|' + std::to_string(length) + '|' + std::to_string(error);
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
  int32_t value = unset, error = unset;
  PXFGETPID(&value, &error);
  CHECK((error == 0 && value == static_cast<int32_t>(GetCurrentProcessId())));
  PXFGETPPID(&value, &error);
  CHECK((error == 0 && value != unset && value != static_cast<int32_t>(GetCurrentProcessId())));
  {
    const ImportOverride self(
        library(), "GetCurrentProcessId", +[] { return DWORD{0xFFFFFFF1}; });
    CHECK((PXFGETPPID(&value, &error), error == EFAULT));
  }
  const ImportOverride entry(
      library(), "GetProcAddress",
      +[](HMODULE, const char *) -> FARPROC { return SetLastError(ERROR_PROC_NOT_FOUND), nullptr; });
  CHECK((PXFGETPPID(&value, &error), error == EINVAL));
}

TEST_CASE("the user's name fits, is cut, or is not known") {
  RecordingCore core;
  {
    const ImportOverride user(
        library(), "GetUserNameA",
        +[](char *name, DWORD *size) { return lstrcpyA(name, *size == 257 ? "admin" : "?"), *size = 6, TRUE; });
    errno = 99;
    CHECK(login(3) == "adm|5|129");
    CHECK((GETLASTERROR() == 129 && core.calls() == reports(129)));
    CHECK((login(5) == "admin|5|0" && login(10) == "admin     |5|0"));
    CHECK((GETLASTERROR() == 0 && core.calls().empty()));
  }
  const ImportOverride user(
      library(), "GetUserNameA", +[](char *, DWORD *) { return SetLastError(ERROR_ACCESS_DENIED), FALSE; });
  CHECK(login(4) == "    |-77|13");
}

TEST_CASE("PXFUNAME tells system, computer, version and machine") {
  RecordingCore core;
  int32_t error = unset;
  const int32_t handle = create("utsname"), tms = create("tms");
  const auto uname = [&](int32_t record) { return PXFUNAME(&record, &error), error; };
  set_text_field(handle, "release", "kept");
  CHECK(uname(handle) == 0);
  char computer[16];
  DWORD size = sizeof computer;
  GetComputerNameA(computer, &size);
  CHECK((text_field(handle, "sysname") == "Microsoft Windows" && text_field(handle, "nodename") == computer));
  CHECK((text_field(handle, "machine") == "AMD64" && text_field(handle, "release") == "kept"));
  CHECK((uname(tms) == EINVAL && uname(no_handle) == 127));

  const ImportOverride test(library(), "VerifyVersionInfoW", simulated_test);
  const ImportOverride system(library(), "GetSystemInfo", simulated_system);
  const std::tuple<int, DWORD, const char *> versions[] = {
      {3, 1000, "Server"}, {1, 1000, "V10 or greater"}, {1, 1100, "V10 or greater"}, {1, 603, "V8"},
      {1, 602, "V8"},      {1, 601, "V7 or lesser"}};
  for (const auto &[product, version, expected] : versions) {
    simulated_product = static_cast<BYTE>(product);
    simulated_version = version;
    CHECK((uname(handle) == 0 && text_field(handle, "version") == expected));
  }
  const std::tuple<int, int, const char *> machines[] = {{0, 3, "i386"},
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
                                                         {5, 3, "old"},
                                                         {6, 1, "ia64"},
                                                         {10, 1, "ia64"},
                                                         {9, 6, "AMD64"},
                                                         {12, 1, "old"},
                                                         {65535, 1, "Unknown"}};
  for (const auto &[architecture, level, expected] : machines) {
    CAPTURE(architecture);
    CAPTURE(level);
    simulated_architecture = static_cast<WORD>(architecture);
    simulated_level = static_cast<WORD>(level);
    set_text_field(handle, "machine", "old");
    CHECK((uname(handle) == 0 && text_field(handle, "machine") == expected));
  }
  set_text_field(handle, "sysname", "kept");
  const ImportOverride name(
      library(), "GetComputerNameA", +[](char *, DWORD *) { return SetLastError(ERROR_ACCESS_DENIED), FALSE; });
  CHECK((uname(handle) == EACCES && text_field(handle, "sysname") == "kept"));
}

TEST_CASE("the present, and a time in local time") {
  RecordingCore core;
  int32_t value = unset, error = unset;
  const std::time_t before = std::time(nullptr);
  PXFTIME(&value, &error);
  CHECK((error == 0 && value >= before && value <= std::time(nullptr)));
  CHECK((PXFTIME(nullptr, &error), error == -1));

  const ImportOverride local(
      library(), "_localtime64", +[](const __time64_t *seconds) -> std::tm * {
        if (*seconds < 0) return errno = EINVAL, nullptr;
        static std::tm time;
        time = {.tm_sec = 1,
                .tm_min = 2,
                .tm_hour = 3,
                .tm_mday = 4,
                .tm_mon = 0,
                .tm_year = 70,
                .tm_wday = 6,
                .tm_yday = 0,
                .tm_isdst = 1};
        return &time;
      });
  int32_t elements[9] = {};
  PXFLOCALTIME(&unit, elements, &error);
  const int32_t expected[] = {1, 2, 3, 4, 1, 1970, 6, 1, 1};
  CHECK((error == 0 && std::equal(expected, expected + 9, elements)));
  CHECK((PXFLOCALTIME(&offset, elements, &error), error == EINVAL));
}

TEST_CASE("process times are single-precision milliseconds, rounded up") {
  RecordingCore core;
  const int32_t handle = create("tms"), stat = create("stat");
  int32_t ticks = unset, error = unset;
  const auto times = [&](int32_t record) { return PXFTIMES(&record, &ticks, &error), error; };
  {
    const ImportOverride process(library(), "GetProcessTimes", simulated_times);
    // User time in ticks, and the milliseconds; exactly, the last two are 16777217 and 36000001.
    for (const auto &[user, expected] : {std::pair{uint64_t{0}, int64_t{0}},
                                         {1, 1},
                                         {9'999, 1},
                                         {10'001, 2},
                                         {167'772'170'000, 16'777'218},
                                         {360'000'010'000, 36'000'000}}) {
      CAPTURE(user);
      simulated_user = user;
      simulated_kernel = 25'000;
      CHECK((times(handle) == 0 && number_field(handle, "tms_utime") == expected));
      CHECK((number_field(handle, "tms_stime") == 3 && number_field(handle, "tms_cutime") == 0));
      CHECK(GetTickCount() - static_cast<DWORD>(ticks) < 60'000);
    }
  }
  CHECK((times(stat) == EINVAL && times(no_handle) == 127));
  const ImportOverride process(
      library(), "GetProcessTimes", +[](HANDLE, FILETIME *, FILETIME *, FILETIME *, FILETIME *) {
        return SetLastError(ERROR_INVALID_HANDLE), FALSE;
      });
  CHECK(times(handle) == EBADF);
}

TEST_CASE("unsigned comparison with a signed difference, and lengths without blanks") {
  struct {
    uint32_t left, right;
    int32_t order, difference;
  } const cases[] = {{1, 2, -1, 1},
                     {2, 2, 0, 0},
                     {0xFFFFFFFF, 1, 1, 2},
                     {1, 0xFFFFFFFF, -1, 2},
                     {0x80000000, 0, 1, INT32_MIN},
                     {0x7FFFFFFF, 0xFFFFFFFF, -1, INT32_MIN}};
  for (const auto &row : cases) {
    const auto left = static_cast<int32_t>(row.left), right = static_cast<int32_t>(row.right);
    int32_t order = unset, difference = unset;
    PXFUCOMPARE(&left, &right, &order, &difference);
    CHECK((order == row.order && difference == row.difference));
  }
  CHECK((IPXFLENTRIM("ab  ", 4) == 2 && IPXFLENTRIM("    ", 4) == 0 && IPXFLENTRIM(nullptr, 0) == 0));
}
