// SPDX-License-Identifier: MIT
// Drives and paths, on simulated drives where the real ones do not show a rule.
#include "library_test.h"

namespace {

// GETDRIVEDIRQQ's text is both the drive and the directory.
std::string directory_of(const std::string &drivedir) {
  GuardedText text(drivedir);
  const int32_t length = GETDRIVEDIRQQ(text.data(), text.size());
  return std::to_string(length) + '|' + text.str();
}

// The result, total and available size.
template <class Size>
std::string sizes_of(int32_t (*routine)(const char *, Size *, Size *, size_t), const std::string &drive) {
  Size total = 7, avail = 7;
  const int32_t result = call(routine, drive, &total, &avail);
  return std::to_string(result) + ' ' + std::to_string(total) + ' ' + std::to_string(avail);
}

// ---- Simulated drives ---------------------------------------------------------------------------

std::string asked_root;
DWORD total_clusters, free_clusters;

BOOL tell_disk_space(const char *root, DWORD *sectors, DWORD *bytes, DWORD *free, DWORD *total) {
  asked_root = root == nullptr ? "(current)" : root;
  *sectors = 8;
  *bytes = 512;
  *free = free_clusters;
  *total = total_clusters;
  return TRUE;
}

BOOL change_directory(const char *directory) {
  SetLastError(ERROR_PATH_NOT_FOUND);
  return directory == std::string_view("D:\\") ? TRUE : FALSE;
}

}  // namespace

TEST_CASE("each drive's letter stands in its own place") {
  const ImportOverride drives(library(), "GetLogicalDrives", []() -> DWORD { return 0b11001; });
  for (const size_t length : {0, 2, 40})
    CHECK(outcome(GETDRIVESQQ, Room{length}) == ("A  DE" + std::string(35, ' ')).substr(0, length));
}

TEST_CASE_FIXTURE(InTestDir, "the directory of a drive and of the current drive; a drive that is not there is 13") {
  const std::string path = dir.path();
  const size_t length = path.size();
  for (const char first : {path[0], static_cast<char>(path[0] | 0x20), ' '}) {
    CHECK(directory_of(first + std::string(length - 1, '#')) == std::to_string(length) + '|' + path);
    CHECK_CALLS(directory_of(first + std::string(length, '#')), std::to_string(length) + '|' + path + ' ', "");
    CHECK_CALLS(directory_of(first + std::string(length - 2, '#')), "0|" + std::string(length - 1, ' '),
                reports(ERANGE));
  }
  static DWORD drive_type;
  const ImportOverride type(library(), "GetDriveTypeA", [] { return drive_type; });
  const FailingCall full_path("GetFullPathNameA", ERROR_INVALID_DRIVE);
  for (const auto &[kind, code] :
       {std::pair{DRIVE_UNKNOWN, EACCES}, {DRIVE_NO_ROOT_DIR, EACCES}, {DRIVE_FIXED, ENOENT}}) {
    drive_type = kind;
    CHECK_CALLS(directory_of("q##"), "0|   ", reports(code));
  }
}

TEST_CASE("sizes are products of clusters, -1 with 34 where they do not fit, of a letter, a blank or a network name") {
  const std::string small = "1 4096 4096", none = "0 -1 -1", too_large = reports(ERANGE), invalid = reports(EINVAL);
  const struct {
    std::string drive, root;
    DWORD total, free;
    std::string narrow, reported, wide;
  } rows[] = {
      {"z", "z:\\", 1000, 10, "1 4096000 40960", "", "1 4096000 40960"},
      {"C:\\", "C:\\", 1'000'000'000, 524'287, "1 -1 2147479552", too_large, "1 4096000000000 2147479552"},
      {"A", "A:\\", 1'000'000'000, 524'288, "1 -1 -1", too_large + ' ' + too_large, "1 4096000000000 2147483648"},
      {"", "(current)", 1, 1, small, "", small},
      {"//server/share", "//server/share", 1, 1, small, "", small},
      {R"(\\server\share\  )", R"(\\server\share\)", 1, 1, small, "", small},
      {"1", "", 1, 1, none, invalid, none},
      {"\\/x", "", 1, 1, none, invalid, none}};
  RecordingCore core;
  const ImportOverride space(library(), "GetDiskFreeSpaceA", tell_disk_space);
  for (const auto &row : rows) {
    CAPTURE(row.drive);
    asked_root = "";
    total_clusters = row.total;
    free_clusters = row.free;
    CHECK_CALLS(sizes_of(GETDRIVESIZEQQ, row.drive), row.narrow, row.reported);
    CHECK(asked_root == row.root);
    CHECK(sizes_of(GETDRIVESIZEQQI8, row.drive) == row.wide);
    core.calls();
  }
}

TEST_CASE("CHANGEDRIVEQQ goes to the drive's root") {
  RecordingCore core;
  const ImportOverride directory(library(), "SetCurrentDirectoryA", change_directory);
  CHECK_CALLS(call(CHANGEDRIVEQQ, "d:\\sub"), 1, "");
  for (const auto &[drive, code] :
       {std::pair{"Q", ENOENT}, {"?", EINVAL}, {" ", EINVAL}, {"1", EINVAL}, {"", EINVAL}}) {
    CHECK_CALLS(call(CHANGEDRIVEQQ, drive), 0, reports(code));
  }
}

TEST_CASE_FIXTURE(InTestDir, "SPLITPATHQQ gives the parts of the full path") {
  const std::string here = dir.path().substr(2) + '\\', name(256, 'x'), directory = "\\" + std::string(254, 'd') + '\\';
  const std::tuple<std::string, size_t, std::string, std::string> rows[] = {
      {"C:\\a\\b\\file.tar.gz", 12, "5|C:|\\a\\b\\|file.tar|.gz", ""},
      {"C:\\file  ", 12, "1|C:|\\|file|", ""},
      {"x.f90", 200, std::to_string(here.size()) + '|' + dir.path().substr(0, 2) + '|' + here + "|x|.f90", ""},
      {"C:\\abcdef\\x", 4, "8|C:|\\abc|x|", reports(EINVAL)},
      // The limit is a path of 259 characters, whatever part takes them.
      {"C:\\" + name, 256, "1|C:|\\|" + name + '|', ""},
      {"C:" + directory + 'x', 256, "256|C:|" + directory + "|x|", ""},
      {"C:\\" + name + 'x', 4, "0||||", ""}};
  for (const auto &[path, room, expected, reported] : rows) {
    std::string parts = outcome(SPLITPATHQQ, path, Room{3}, Room{room}, Room{room}, Room{6});
    std::erase(parts, ' ');
    CHECK_CALLS(parts, expected, reported);
  }
}
