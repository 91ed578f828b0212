// SPDX-License-Identifier: MIT
// Drives and paths, on simulated drives where the real ones do not show a rule.
#include <array>

#include "library_test.h"

namespace {

// GETDRIVEDIRQQ's text is both the drive and the directory.
std::string directory_of(const std::string &drivedir) {
  GuardedText text(drivedir);
  const int32_t length = GETDRIVEDIRQQ(text.data(), text.size());
  return std::to_string(length) + '|' + text.str();
}

std::string blanks(size_t length) { return std::string(length, ' '); }

// The result, total and available size.
using Sizes = std::array<int64_t, 3>;
constexpr Sizes no_sizes = {0, -1, -1};

template <class Size>
Sizes size_of(int32_t (*routine)(const char *, Size *, Size *, size_t), const std::string &drive) {
  Size total = 7, avail = 7;
  const int32_t result = call(routine, drive, &total, &avail);
  return {result, total, avail};
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

BOOL keep_directory(const char *directory) {
  asked_root = directory;
  SetLastError(ERROR_PATH_NOT_FOUND);
  return asked_root == "D:\\" ? TRUE : FALSE;
}

UINT simulated_drive_type;
UINT tell_drive_type(const char *root) {
  asked_root = root;
  return simulated_drive_type;
}

}  // namespace

TEST_CASE("each drive's letter stands in its own place") {
  const ImportOverride drives(library(), "GetLogicalDrives", []() -> DWORD { return 0b11001; });
  for (const size_t length : {0, 2, 40})
    CHECK(outcome(GETDRIVESQQ, Room{length}) == ("A  DE" + blanks(35)).substr(0, length));
}

TEST_CASE_FIXTURE(InTestDir, "the directory of a drive and of the current drive; a drive that is not there is 13") {
  const char drive = dir.path()[0];
  const size_t length = dir.path().size();
  const std::string found = std::to_string(length) + '|' + dir.path();
  for (const char first : {drive, static_cast<char>(drive | 0x20), ' '}) {
    CHECK(directory_of(first + std::string(length - 1, '#')) == found);
    CHECK_CALLS(directory_of(first + std::string(length + 9, '#')), found + blanks(10), "");
    CHECK_CALLS(directory_of(first + std::string(length - 2, '#')), "0|" + blanks(length - 1), reports(ERANGE));
  }
  const ImportOverride type(library(), "GetDriveTypeA", tell_drive_type);
  const auto check = [&](int32_t code) {
    CHECK(directory_of("q##") == "0|   ");
    CHECK_CALLS(asked_root, "Q:\\.", reports(code));
  };
  for (simulated_drive_type = 0; simulated_drive_type <= 1; ++simulated_drive_type) check(EACCES);
  simulated_drive_type = DRIVE_FIXED;
  const FailingCall full_path("GetFullPathNameA", ERROR_INVALID_DRIVE);
  check(ENOENT);
}

TEST_CASE("sizes are products of clusters, -1 with 34 where they do not fit, of a letter, a blank or a network name") {
  const bool narrow = false, wide = true;
  const std::string none = "(none)", too_large = reports(ERANGE), invalid = reports(EINVAL);
  const struct {
    bool is_wide;
    std::string drive, root;
    DWORD total, free;
    Sizes sizes;
    std::string reported;
  } rows[] = {{narrow, "c", "c:\\", 1000, 10, {1, 4'096'000, 40'960}, ""},
              {narrow, "C:\\", "C:\\", 1'000'000'000, 10, {1, -1, 40'960}, too_large},
              {narrow, "C", "C:\\", 1'000'000'000, 524'288, {1, -1, -1}, too_large + ' ' + too_large},
              {wide, "C", "C:\\", 1'000'000'000, 524'288, {1, 4'096'000'000'000, 2'147'483'648}, ""},
              {wide, " x", "(current)", 1, 1, {1, 4096, 4096}, ""},
              {wide, "", "(current)", 1, 1, {1, 4096, 4096}, ""},
              {wide, "//server/share", "//server/share", 1, 1, {1, 4096, 4096}, ""},
              {wide, R"(\\server\share\  )", R"(\\server\share\)", 1, 1, {1, 4096, 4096}, ""},
              {narrow, "1", none, 1, 1, no_sizes, invalid},
              {narrow, "?", none, 1, 1, no_sizes, invalid},
              {narrow, "\\", none, 1, 1, no_sizes, invalid},
              {narrow, "\\/x", none, 1, 1, no_sizes, invalid},
              {narrow, ":C", none, 1, 1, no_sizes, invalid}};
  RecordingCore core;
  const ImportOverride space(library(), "GetDiskFreeSpaceA", tell_disk_space);
  for (const auto &row : rows) {
    CAPTURE(row.drive);
    asked_root = none;
    total_clusters = row.total;
    free_clusters = row.free;
    CHECK_CALLS((row.is_wide ? size_of(GETDRIVESIZEQQI8, row.drive) : size_of(GETDRIVESIZEQQ, row.drive)), row.sizes,
                row.reported);
    CHECK(asked_root == row.root);
  }
  const FailingCall no_space("GetDiskFreeSpaceA");
  CHECK_CALLS(size_of(GETDRIVESIZEQQI8, "C"), no_sizes, reports(ENOENT));
}

TEST_CASE("CHANGEDRIVEQQ goes to the drive's root") {
  RecordingCore core;
  const ImportOverride directory(library(), "SetCurrentDirectoryA", keep_directory);
  CHECK(call(CHANGEDRIVEQQ, "d:\\sub") == 1);
  CHECK_CALLS(asked_root, "D:\\", "");
  for (const auto &[drive, code] :
       {std::pair{"Q", ENOENT}, {"?", EINVAL}, {" ", EINVAL}, {"1", EINVAL}, {"", EINVAL}}) {
    CHECK_CALLS(call(CHANGEDRIVEQQ, drive), 0, reports(code));
  }
}

TEST_CASE_FIXTURE(InTestDir, "FULLPATHQQ makes a name full, or says how much room it needs") {
  const std::string full = dir.path() + "\\b.txt";
  const size_t length = full.size();
  CHECK(outcome(FULLPATHQQ, "sub\\..\\b.txt ", Room{length + 2}) == std::to_string(length) + '|' + full + "  ");
  CHECK_CALLS(outcome(FULLPATHQQ, "b.txt", Room{length}), std::to_string(length) + '|' + full, "");
  CHECK(outcome(FULLPATHQQ, "b.txt", Room{length - 1}) == std::to_string(length + 1) + '|' + blanks(length - 1));
  CHECK_CALLS(FULLPATHQQ("b.txt", nullptr, 5, 10), 0, reports(EINVAL));
  const FailingCall full_path("GetFullPathNameA", ERROR_INVALID_DRIVE);
  CHECK_CALLS(outcome(FULLPATHQQ, "b.txt", Room{10}), "0|" + blanks(10), reports(ENOENT));
}

TEST_CASE_FIXTURE(InTestDir, "SPLITPATHQQ gives the parts of the full path") {
  const auto check = [](const std::string &path, size_t room, const std::string &expected) {
    std::string parts = outcome(SPLITPATHQQ, path, Room{3}, Room{room}, Room{room}, Room{6});
    std::erase(parts, ' ');
    CHECK(parts == expected);
  };
  check("C:\\a\\b\\file.tar.gz", 12, "5|C:|\\a\\b\\|file.tar|.gz");
  check("C:\\file  ", 12, "1|C:|\\|file|");
  CHECK(core.calls() == "");
  const std::string here = dir.path().substr(2) + '\\';
  check("x.f90", 200, std::to_string(here.size()) + '|' + dir.path().substr(0, 2) + '|' + here + "|x|.f90");
  check("C:\\abcdef\\x", 4, "8|C:|\\abc|x|");
  CHECK(core.calls() == reports(EINVAL));
  // The limit is a path of 259 characters, whatever part takes them.
  const std::string name(256, 'x'), directory = "\\" + std::string(254, 'd') + '\\';
  check("C:\\" + name, 256, "1|C:|\\|" + name + '|');
  check("C:" + directory + 'x', 256, "256|C:|" + directory + "|x|");
  check("C:\\" + name + 'x', 4, "0||||");
}
