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

int32_t access_of(const std::string &name, const std::string &mode) {
  GuardedText name_text(name);
  GuardedText mode_text(mode);
  return ACCESS(name_text.data(), mode_text.data(), name_text.size(), mode_text.size());
}

int32_t chmod_of(const std::string &name, const std::string &mode) {
  GuardedText name_text(name);
  GuardedText mode_text(mode);
  return CHMOD(name_text.data(), mode_text.data(), name_text.size(), mode_text.size());
}

DWORD simulated_file_type;
DWORD WINAPI tell_file_type(HANDLE) { return simulated_file_type; }

std::string ttynam(size_t length) {
  GuardedText name(length);
  TTYNAM(name.data(), &unit, name.size());
  return name.str();
}

void *no_memory(size_t) { return nullptr; }

}  // namespace

TEST_CASE("ACCESS asks the host for read and write, and the extension for execute") {
  RecordingCore core;
  const TestDir dir;
  for (const char *name : {"plain.txt", "run.cmd", "RUN2.CSH", "noext", ".exe", "readonly.bat"}) make_file(name);
  SetFileAttributesA("readonly.bat", FILE_ATTRIBUTE_READONLY);
  CHECK(access_of("plain.txt  ", "  ") == 0);
  CHECK(access_of("plain.txt", "RW") == 0);
  CHECK(access_of("plain.txt", "r w") == 0);
  CHECK(access_of("run.cmd", "x") == 0);
  CHECK(access_of("RUN2.CSH", "rwx") == 0);
  CHECK(access_of("readonly.bat", "rx") == 0);
  CHECK(core.calls().empty());

  CHECK(access_of("readonly.bat", "w") == EACCES);
  for (const char *name : {"plain.txt", "noext", ".exe"}) CHECK(access_of(name, "x") == EACCES);
  CHECK(IERRNO() == EACCES);
  CHECK(access_of("missing.exe", "x") == ENOENT);
  CHECK(IERRNO() == ENOENT);
}

TEST_CASE("ACCESS refuses other characters and empty arguments before it looks at the file") {
  RecordingCore core;
  for (const char *mode : {"rw-", "q", "r\t"}) CHECK(access_of("missing", mode) == EINVAL);
  CHECK(access_of("", "r") == EINVAL);
  CHECK(access_of("missing", "") == EINVAL);
  CHECK(IERRNO() == EINVAL);
  const ImportOverride allocation(library(), "malloc", no_memory);
  CHECK(access_of("missing", "r") == ENOMEM);
}

TEST_CASE("CHMOD changes the right to write as its mode says") {
  struct {
    const char *mode;
    int32_t result;
    bool from_writable;  // what is left writable of a writable file
    bool from_read_only;
  } const cases[] = {
      {"644", 0, true, true},       {"0200", 0, true, true},      {"444", 0, true, false},
      {"+w", 0, true, true},        {"a+w", 0, true, true},       {"u=rw", 0, true, true},
      {"a-w", 0, false, false},     {"ugo-rwx", 0, false, false}, {"-w", 0, false, false},
      {"go=rx", 0, true, false},    {"u+x", 0, true, false},      {"w", 0, true, false},
      {"ug", 0, true, false},       {"", 0, true, false},         {"+", 0, true, false},
      {"=rwXst", 0, true, true},    {"0", EINVAL, true, false},   {"8", EINVAL, true, false},
      {"64x", EINVAL, true, false}, {"u+W", EINVAL, true, false}, {"A+w", EINVAL, true, false},
      {"+w-r", EINVAL, true, false},
  };
  RecordingCore core;
  const TestDir dir;
  for (const auto &expected : cases) {
    CAPTURE(expected.mode);
    for (const bool read_only : {false, true}) {
      make_file("a");
      if (read_only) SetFileAttributesA("a", FILE_ATTRIBUTE_READONLY);
      CHECK(chmod_of("a", expected.mode) == expected.result);
      CHECK(is_read_only("a") == !(read_only ? expected.from_read_only : expected.from_writable));
      SetFileAttributesA("a", FILE_ATTRIBUTE_NORMAL);
    }
  }
  CHECK(chmod_of("missing", "+w") == ENOENT);
  CHECK(IERRNO() == ENOENT);
  CHECK(chmod_of("missing", "u+W") == EINVAL);
  CHECK(IERRNO() == EINVAL);
  CHECK(CHMOD(nullptr, "+w", 1, 2) == EINVAL);
  const ImportOverride allocation(library(), "malloc", no_memory);
  CHECK(chmod_of("a", "+w") == ENOMEM);
}

TEST_CASE("ISATTY is true for a character device and for a unit without a handle") {
  RecordingCore core;
  const ImportOverride file_type(library(), "GetFileType", tell_file_type);
  simulated_file_type = FILE_TYPE_DISK;
  core.answer("__msportlib_d_gethandle", 0);
  CHECK(ISATTY(&unit) == 1);
  CHECK(core.calls() == "__msportlib_d_gethandle(11, null, null)");
  core.answer("__msportlib_d_gethandle", 1234);
  CHECK(ISATTY(&unit) == 0);
  simulated_file_type = FILE_TYPE_CHAR;
  CHECK(ISATTY(&unit) == 1);
  core.calls();
  core.answer("__msportlib_d_gethandle", -1);
  CHECK(ISATTY(&unit) == 0);
  CHECK(core.calls() == "__msportlib_d_gethandle(11, null, null) for_errsns_load(0, 9, 0, 0, 0)");
}

TEST_CASE("TTYNAM names a terminal and leaves blanks for all else") {
  RecordingCore core;
  const ImportOverride file_type(library(), "GetFileType", tell_file_type);
  recording_text("__msportlib_d_gethandle", "CONOUT$");
  core.answer("__msportlib_d_gethandle", 1234);
  simulated_file_type = FILE_TYPE_CHAR;
  CHECK(ttynam(10) == "CONOUT$   ");
  CHECK(core.calls() == "__msportlib_d_gethandle(11, &, &)");
  CHECK(ttynam(7) == "CONOUT$");
  core.answer("__msportlib_d_gethandle", 0);
  simulated_file_type = FILE_TYPE_DISK;
  CHECK(ttynam(10) == "CONOUT$   ");
  core.calls();
  core.answer("__msportlib_d_gethandle", 1234);
  CHECK(ttynam(10) == std::string(10, ' '));
  CHECK(core.calls() == "__msportlib_d_gethandle(11, &, &) for_errsns_load(0, 25, 0, 0, 0)");
  core.answer("__msportlib_d_gethandle", -1);
  CHECK(ttynam(10) == std::string(10, ' '));
  CHECK(core.calls() == "__msportlib_d_gethandle(11, &, &) for_errsns_load(0, 9, 0, 0, 0)");
}
