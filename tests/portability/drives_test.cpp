// SPDX-License-Identifier: MIT
// Drives and paths, on simulated drives where the real ones do not show a rule.
#include <doctest/doctest.h>

#include <array>
#include <cerrno>
#include <string>
#include <utility>

#include "guarded_text.h"
#include "import_override.h"
#include "library.h"
#include "qwport.h"
#include "recording.h"
#include "test_dir.h"

namespace {

// A result and the text beside it.
using Outcome = std::pair<int32_t, std::string>;

Outcome directory_of(const std::string &drivedir) {
  GuardedText text(drivedir);
  const int32_t length = GETDRIVEDIRQQ(text.data(), text.size());
  return {length, text.str()};
}

Outcome full_path_of(const std::string &name, size_t room) {
  GuardedText path(room);
  const int32_t length = FULLPATHQQ(name.data(), path.data(), name.size(), path.size());
  return {length, path.str()};
}

// The result, total and available size.
using Sizes = std::array<int64_t, 3>;

template <class Size>
Sizes size_of(int32_t (*routine)(const char *, Size *, Size *, size_t), const std::string &drive) {
  Size total = 7, avail = 7;
  GuardedText text(drive);
  const int32_t result = routine(text.data(), &total, &avail, text.size());
  return {result, total, avail};
}

// ---- Simulated drives ---------------------------------------------------------------------------

// A host call that fails; without parameters it stands for a call with any.
DWORD host_error;
intptr_t fail() {
  SetLastError(host_error);
  return 0;
}

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
  const ImportOverride drives(
      library(), "GetLogicalDrives", +[]() -> DWORD { return 0b11001; });
  for (const size_t length : {0, 2, 26, 40}) {
    GuardedText text(length);
    GETDRIVESQQ(text.data(), text.size());
    CHECK(text.str() == ("A  DE" + std::string(35, ' ')).substr(0, length));
  }
}

TEST_CASE("the directory of a drive and of the current drive") {
  RecordingCore core;
  const TestDir dir;
  const char drive = dir.path()[0];
  const size_t length = dir.path().size();
  for (const char first : {drive, static_cast<char>(drive | 0x20), ' '}) {
    for (const size_t more : {size_t{0}, size_t{10}}) {
      CHECK(directory_of(first + std::string(length + more - 1, '#')) ==
            Outcome(length, dir.path() + std::string(more, ' ')));
    }
    CHECK(core.calls().empty());
    CHECK(directory_of(first + std::string(length - 2, '#')) == Outcome(0, std::string(length - 1, ' ')));
    CHECK(core.calls() == reports(ERANGE));
  }
}

TEST_CASE("a drive that is not there is 13; the host's failures are reported") {
  RecordingCore core;
  const ImportOverride type(library(), "GetDriveTypeA", tell_drive_type);
  const auto check = [&core](int32_t code) {
    CHECK(directory_of("q##") == Outcome(0, "   "));
    CHECK(asked_root == "Q:\\.");
    CHECK(core.calls() == reports(code));
  };
  for (simulated_drive_type = 0; simulated_drive_type <= 1; ++simulated_drive_type) check(EACCES);
  simulated_drive_type = DRIVE_FIXED;
  host_error = ERROR_INVALID_DRIVE;
  const ImportOverride full_path(library(), "GetFullPathNameA", fail);
  check(ENOENT);
  const ImportOverride allocation(library(), "malloc", fail);
  check(ENOMEM);
}

TEST_CASE("sizes are products of clusters, and -1 with 34 where they do not fit") {
  RecordingCore core;
  const ImportOverride space(library(), "GetDiskFreeSpaceA", tell_disk_space);
  total_clusters = 1000;
  free_clusters = 10;
  CHECK(size_of(GETDRIVESIZEQQ, "c") == Sizes{1, 4'096'000, 40'960});
  CHECK(asked_root == "c:\\");
  CHECK(core.calls().empty());
  total_clusters = 1'000'000'000;
  CHECK(size_of(GETDRIVESIZEQQ, "C:\\") == Sizes{1, -1, 40'960});
  CHECK(core.calls() == reports(ERANGE));
  free_clusters = 524'288;  // 2 GiB
  CHECK(size_of(GETDRIVESIZEQQ, "C") == Sizes{1, -1, -1});
  CHECK(core.calls() == reports(ERANGE) + ' ' + reports(ERANGE));
  CHECK(size_of(GETDRIVESIZEQQI8, "C") == Sizes{1, 4'096'000'000'000, 2'147'483'648});
  CHECK(core.calls().empty());
}

TEST_CASE("the drive argument is a letter, a blank or a network name") {
  RecordingCore core;
  const ImportOverride space(library(), "GetDiskFreeSpaceA", tell_disk_space);
  const std::pair<const char *, const char *> roots[] = {
      {" ", "(current)"}, {" x", "(current)"}, {"", "(current)"}, {R"(\\server\share\  )", R"(\\server\share\)"}};
  for (const auto &[drive, root] : roots) {
    CHECK(size_of(GETDRIVESIZEQQI8, drive)[0] == 1);
    CHECK(asked_root == root);
  }
  CHECK(size_of(GETDRIVESIZEQQI8, "//server/share")[0] == 1);
  for (const char *drive : {"1", "?", "\\", "\\/x", ":C"}) {
    CHECK(size_of(GETDRIVESIZEQQ, drive) == Sizes{0, -1, -1});
    CHECK(core.calls() == reports(EINVAL));
  }
  const ImportOverride none(library(), "GetDiskFreeSpaceA", fail);
  CHECK(size_of(GETDRIVESIZEQQI8, "C") == Sizes{0, -1, -1});
  CHECK(core.calls() == reports(ENOENT));
}

TEST_CASE("CHANGEDRIVEQQ goes to the drive's root") {
  RecordingCore core;
  const ImportOverride directory(library(), "SetCurrentDirectoryA", keep_directory);
  CHECK(CHANGEDRIVEQQ("d:\\sub", 6) == 1);
  CHECK(asked_root == "D:\\");
  CHECK(core.calls().empty());
  for (const auto &[drive, code] : {std::pair{'Q', ENOENT}, {'?', EINVAL}, {' ', EINVAL}, {'1', EINVAL}}) {
    CHECK(CHANGEDRIVEQQ(&drive, 1) == 0);
    CHECK(core.calls() == reports(code));
  }
  CHECK(CHANGEDRIVEQQ("", 0) == 0);
}

TEST_CASE("FULLPATHQQ makes a name full, or says how much room it needs") {
  RecordingCore core;
  const TestDir dir;
  const std::string full = dir.path() + "\\b.txt";
  const size_t length = full.size();
  CHECK(full_path_of("sub\\..\\b.txt ", length + 2) == Outcome(length, full + "  "));
  CHECK(full_path_of("b.txt", length) == Outcome(length, full));
  CHECK(core.calls().empty());
  CHECK(full_path_of("b.txt", length - 1) == Outcome(length + 1, std::string(length - 1, ' ')));
  CHECK(FULLPATHQQ("b.txt", nullptr, 5, 10) == 0);
  CHECK(core.calls() == reports(EINVAL));
  host_error = ERROR_INVALID_DRIVE;
  const ImportOverride full_path(library(), "GetFullPathNameA", fail);
  CHECK(full_path_of("b.txt", 10) == Outcome(0, std::string(10, ' ')));
  CHECK(core.calls() == reports(ENOENT));
  const ImportOverride allocation(library(), "malloc", fail);
  CHECK(full_path_of("b.txt", 10).first == 0);
}

TEST_CASE("SPLITPATHQQ gives the parts of the full path") {
  RecordingCore core;
  const TestDir dir;
  const auto split = [](const std::string &path, size_t room) {
    GuardedText text(path), drive(3), directory(room), name(room), extension(6);
    const int32_t length = SPLITPATHQQ(text.data(), drive.data(), directory.data(), name.data(), extension.data(),
                                       text.size(), drive.size(), directory.size(), name.size(), extension.size());
    std::string parts = drive.str() + '|' + directory.str() + '|' + name.str() + '|' + extension.str();
    std::erase(parts, ' ');
    return std::to_string(length) + '|' + parts;
  };
  CHECK(split("C:\\a\\b\\file.tar.gz", 12) == "5|C:|\\a\\b\\|file.tar|.gz");
  CHECK(split("C:\\file  ", 12) == "1|C:|\\|file|");
  CHECK(core.calls().empty());
  const std::string here = dir.path().substr(2) + '\\';
  CHECK(split("x.f90", 200) == std::to_string(here.size()) + '|' + dir.path().substr(0, 2) + '|' + here + "|x|.f90");
  CHECK(split("C:\\abcdef\\x", 4) == "8|C:|\\abc|x|");
  CHECK(core.calls() == reports(EINVAL));
  CHECK(split("C:\\" + std::string(300, 'x'), 4) == "0||||");
}
