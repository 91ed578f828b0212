// SPDX-License-Identifier: MIT
// ACCESS, CHMOD and the terminal inquiries.
#include <vector>

#include "library_test.h"

namespace {

DWORD simulated_file_type;
DWORD tell_file_type() { return simulated_file_type; }

}  // namespace

TEST_CASE_FIXTURE(InTestDir, "ACCESS asks the host for read and write, and the extension for execute") {
  for (const char *name : {"plain.txt", "run.cmd", "RUN2.CSH", "noext", ".exe", "readonly.bat"}) make_file(name);
  SetFileAttributesA("readonly.bat", FILE_ATTRIBUTE_READONLY);
  for (const char *mode : {"  ", "RW", "r w"}) CHECK(call(ACCESS, "plain.txt  ", mode) == 0);
  CHECK(call(ACCESS, "run.cmd", "x") == 0);
  CHECK(call(ACCESS, "RUN2.CSH", "rwx") == 0);
  CHECK_CALLS(call(ACCESS, "readonly.bat", "rx"), 0, "");
  CHECK_CALLS(call(ACCESS, "readonly.bat", "w"), EACCES, records(EACCES));
  for (const char *name : {"plain.txt", "noext", ".exe"}) {
    CHECK_CALLS(call(ACCESS, name, "x"), EACCES, records(EACCES));
  }
  CHECK_CALLS(call(ACCESS, "missing.exe", "x"), ENOENT, records(ENOENT));
  // Other characters and empty arguments are refused before it looks at the file.
  for (const char *mode : {"rw-", "q", "r\t", ""}) {
    CHECK_CALLS(call(ACCESS, "missing", mode), EINVAL, records(EINVAL));
  }
  CHECK_CALLS(call(ACCESS, "", "r"), EINVAL, records(EINVAL));
}

TEST_CASE("CHMOD changes the right to write as its mode says") {
  struct {
    int32_t result;
    bool from_writable, from_read_only;  // what is left writable
    std::vector<const char *> modes;
  } const cases[] = {{0, true, true, {"644", "0200", "+w", "a+w", "u=rw", "=rwXst"}},
                     {0, false, false, {"a-w", "ugo-rwx", "-w"}},
                     {0, true, false, {"444", "go=rx", "u+x", "w", "ug", "", "+"}},
                     {EINVAL, true, false, {"0", "8", "64x", "u+W", "A+w", "+w-r"}}};
  RecordingCore core;
  const TestDir dir;
  for (const auto &expected : cases) {
    for (const char *mode : expected.modes) {
      CAPTURE(mode);
      for (const bool read_only : {false, true}) {
        make_file("a");
        if (read_only) SetFileAttributesA("a", FILE_ATTRIBUTE_READONLY);
        CHECK(call(CHMOD, "a", mode) == expected.result);
        CHECK(is_read_only("a") == !(read_only ? expected.from_read_only : expected.from_writable));
        SetFileAttributesA("a", FILE_ATTRIBUTE_NORMAL);
      }
    }
  }
  core.calls();
  for (const auto &[mode, code] : {std::pair{"+w", ENOENT}, {"u+W", EINVAL}}) {
    CHECK_CALLS(call(CHMOD, "missing", mode), code, records(code));
  }
  CHECK_CALLS(CHMOD(nullptr, "+w", 1, 2), EINVAL, records(EINVAL));
  CHECK_CALLS(CHMOD("a", nullptr, 1, 2), EINVAL, records(EINVAL));
}

TEST_CASE("ISATTY and TTYNAM know a terminal by its device; TTYNAM leaves blanks for all else") {
  const std::string blanks(10, ' '), bad = ' ' + reports(EBADF);
  struct {
    int64_t handle;
    DWORD file_type;
    int32_t is_terminal;
    std::string name, isatty_report, ttynam_report;
  } const cases[] = {{0, FILE_TYPE_DISK, 1, "CONOUT$   ", "", ""},  // a unit without a handle
                     {1234, FILE_TYPE_CHAR, 1, "CONOUT$   ", "", ""},
                     {1234, FILE_TYPE_DISK, 0, blanks, "", ' ' + reports(ENOTTY)},
                     {-1, FILE_TYPE_CHAR, 0, blanks, bad, bad}};
  RecordingCore core;
  const ImportOverride file_type(library(), "GetFileType", tell_file_type);
  recording_text("__msportlib_d_gethandle", "CONOUT$");
  for (const auto &expected : cases) {
    CAPTURE(expected.handle);
    core.answer("__msportlib_d_gethandle", expected.handle);
    simulated_file_type = expected.file_type;
    CHECK_CALLS(call(ISATTY, 11), expected.is_terminal,
                "__msportlib_d_gethandle(11, null, null)" + expected.isatty_report);
    for (const size_t length : {7, 10}) {
      CHECK_CALLS(outcome(TTYNAM, Room{length}, 11), expected.name.substr(0, length),
                  "__msportlib_d_gethandle(11, &, &)" + expected.ttynam_report);
    }
  }
}
