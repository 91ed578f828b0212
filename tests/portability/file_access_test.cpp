// SPDX-License-Identifier: MIT
// ACCESS, CHMOD and the terminal inquiries.
#include <doctest/doctest.h>

#include <cerrno>
#include <string>

#include "guarded_text.h"
#include "import_override.h"
#include "library.h"
#include "qwport.h"
#include "recording.h"
#include "test_dir.h"

namespace {

const int32_t unit = 11;

// ACCESS or CHMOD.
int32_t call(auto routine, std::string_view name, std::string_view mode) {
  GuardedText name_text(name), mode_text(mode);
  return routine(name_text.data(), mode_text.data(), name_text.size(), mode_text.size());
}

DWORD simulated_file_type;
DWORD tell_file_type() { return simulated_file_type; }
void *no_memory() { return nullptr; }

}  // namespace

TEST_CASE("ACCESS asks the host for read and write, and the extension for execute") {
  RecordingCore core;
  const TestDir dir;
  for (const char *name : {"plain.txt", "run.cmd", "RUN2.CSH", "noext", ".exe", "readonly.bat"}) make_file(name);
  SetFileAttributesA("readonly.bat", FILE_ATTRIBUTE_READONLY);
  for (const char *mode : {"  ", "RW", "r w"}) CHECK(call(ACCESS, "plain.txt  ", mode) == 0);
  CHECK(call(ACCESS, "run.cmd", "x") == 0);
  CHECK(call(ACCESS, "RUN2.CSH", "rwx") == 0);
  CHECK(call(ACCESS, "readonly.bat", "rx") == 0);
  CHECK(core.calls().empty());
  CHECK(call(ACCESS, "readonly.bat", "w") == EACCES);
  for (const char *name : {"plain.txt", "noext", ".exe"}) CHECK(call(ACCESS, name, "x") == EACCES);
  CHECK(IERRNO() == EACCES);
  CHECK(call(ACCESS, "missing.exe", "x") == ENOENT);
  CHECK(IERRNO() == ENOENT);
}

TEST_CASE("ACCESS refuses other characters and empty arguments before it looks at the file") {
  RecordingCore core;
  for (const char *mode : {"rw-", "q", "r\t", ""}) CHECK(call(ACCESS, "missing", mode) == EINVAL);
  CHECK(call(ACCESS, "", "r") == EINVAL);
  CHECK(IERRNO() == EINVAL);
  const ImportOverride allocation(library(), "malloc", no_memory);
  CHECK(call(ACCESS, "missing", "r") == ENOMEM);
}

TEST_CASE("CHMOD changes the right to write as its mode says") {
  struct {
    const char *mode;
    int32_t result;
    bool from_writable;  // what is left writable of a writable file
    bool from_read_only;
  } const cases[] = {
      {"644", 0, true, true},        {"0200", 0, true, true},      {"444", 0, true, false},
      {"+w", 0, true, true},         {"a+w", 0, true, true},       {"u=rw", 0, true, true},
      {"a-w", 0, false, false},      {"ugo-rwx", 0, false, false}, {"-w", 0, false, false},
      {"go=rx", 0, true, false},     {"u+x", 0, true, false},      {"w", 0, true, false},
      {"ug", 0, true, false},        {"", 0, true, false},         {"+", 0, true, false},
      {"=rwXst", 0, true, true},     {"0", EINVAL, true, false},   {"8", EINVAL, true, false},
      {"64x", EINVAL, true, false},  {"u+W", EINVAL, true, false}, {"A+w", EINVAL, true, false},
      {"+w-r", EINVAL, true, false},
  };
  RecordingCore core;
  const TestDir dir;
  for (const auto &expected : cases) {
    CAPTURE(expected.mode);
    for (const bool read_only : {false, true}) {
      make_file("a");
      if (read_only) SetFileAttributesA("a", FILE_ATTRIBUTE_READONLY);
      CHECK(call(CHMOD, "a", expected.mode) == expected.result);
      CHECK(is_read_only("a") == !(read_only ? expected.from_read_only : expected.from_writable));
      SetFileAttributesA("a", FILE_ATTRIBUTE_NORMAL);
    }
  }
  CHECK(call(CHMOD, "missing", "+w") == ENOENT);
  CHECK(IERRNO() == ENOENT);
  CHECK(call(CHMOD, "missing", "u+W") == EINVAL);
  CHECK(IERRNO() == EINVAL);
  CHECK(CHMOD(nullptr, "+w", 1, 2) == EINVAL);
  const ImportOverride allocation(library(), "malloc", no_memory);
  CHECK(call(CHMOD, "a", "+w") == ENOMEM);
}

TEST_CASE("ISATTY and TTYNAM know a terminal by its device; TTYNAM leaves blanks for all else") {
  struct {
    int64_t handle;
    DWORD file_type;
    int32_t is_terminal;
    const char *name;
    const char *isatty_report;
    const char *ttynam_report;
  } const cases[] = {
      {0, FILE_TYPE_DISK, 1, "CONOUT$   ", "", ""},  // a unit without a handle
      {1234, FILE_TYPE_CHAR, 1, "CONOUT$   ", "", ""},
      {1234, FILE_TYPE_DISK, 0, "          ", "", " for_errsns_load(0, 25, 0, 0, 0)"},
      {-1, FILE_TYPE_CHAR, 0, "          ", " for_errsns_load(0, 9, 0, 0, 0)", " for_errsns_load(0, 9, 0, 0, 0)"},
  };
  RecordingCore core;
  const ImportOverride file_type(library(), "GetFileType", tell_file_type);
  recording_text("__msportlib_d_gethandle", "CONOUT$");
  for (const auto &expected : cases) {
    CAPTURE(expected.handle);
    core.answer("__msportlib_d_gethandle", expected.handle);
    simulated_file_type = expected.file_type;
    CHECK(ISATTY(&unit) == expected.is_terminal);
    CHECK(core.calls() == std::string("__msportlib_d_gethandle(11, null, null)") + expected.isatty_report);
    for (const size_t length : {7, 10}) {
      GuardedText name(length);
      TTYNAM(name.data(), &unit, name.size());
      CHECK(name.str() == std::string(expected.name, length));
      CHECK(core.calls() == std::string("__msportlib_d_gethandle(11, &, &)") + expected.ttynam_report);
    }
  }
}
