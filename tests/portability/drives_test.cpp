// SPDX-License-Identifier: MIT
// Drives and paths, on simulated drives where the real ones do not show a rule.
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

std::string reports(int32_t code) { return "for_errsns_load(0, " + std::to_string(code) + ", 0, 0, 0)"; }

std::string drives_in(size_t length) {
  GuardedText drives(length);
  GETDRIVESQQ(drives.data(), drives.size());
  return drives.str();
}

struct Directory {
  int32_t length;
  std::string text;
};

Directory directory_of(std::string drivedir) {
  GuardedText text(drivedir);
  const int32_t length = GETDRIVEDIRQQ(text.data(), text.size());
  return {length, text.str()};
}

template <class Size>
struct DriveSize {
  int32_t result;
  Size total;
  Size avail;
};

DriveSize<int32_t> size_of(const std::string &drive) {
  DriveSize<int32_t> size{0, 7, 7};
  GuardedText text(drive);
  size.result = GETDRIVESIZEQQ(text.data(), &size.total, &size.avail, text.size());
  return size;
}

DriveSize<int64_t> wide_size_of(const std::string &drive) {
  DriveSize<int64_t> size{0, 7, 7};
  size.result = GETDRIVESIZEQQI8(drive.data(), &size.total, &size.avail, drive.size());
  return size;
}

int32_t change_drive(const std::string &drive) { return CHANGEDRIVEQQ(drive.data(), drive.size()); }

struct FullPath {
  int32_t length;
  std::string text;
};

FullPath full_path_of(const std::string &name, size_t room) {
  GuardedText path(room);
  const int32_t length = FULLPATHQQ(name.data(), path.data(), name.size(), path.size());
  return {length, path.str()};
}

// ---- Simulated drives ---------------------------------------------------------------------------

DWORD WINAPI drives_a_d_e() { return 0b11001; }
void *no_memory(size_t) { return nullptr; }

std::string asked_root;
DWORD total_clusters;
DWORD free_clusters;
BOOL WINAPI tell_disk_space(const char *root, DWORD *sectors, DWORD *bytes, DWORD *free, DWORD *total) {
  asked_root = root == nullptr ? "(current)" : root;
  *sectors = 8;
  *bytes = 512;
  *free = free_clusters;
  *total = total_clusters;
  return TRUE;
}
BOOL WINAPI no_disk_space(const char *, DWORD *, DWORD *, DWORD *, DWORD *) { return FALSE; }

BOOL WINAPI keep_directory(const char *directory) {
  asked_root = directory;
  SetLastError(ERROR_PATH_NOT_FOUND);
  return asked_root == "D:\\" ? TRUE : FALSE;
}

DWORD WINAPI no_full_path(const char *, DWORD, char *, char **) {
  SetLastError(ERROR_INVALID_DRIVE);
  return 0;
}

UINT simulated_drive_type;
std::string asked_drive;
UINT WINAPI tell_drive_type(const char *root) {
  asked_drive = root;
  return simulated_drive_type;
}

}  // namespace

TEST_CASE("each drive's letter stands in its own place") {
  const ImportOverride drives(library(), "GetLogicalDrives", drives_a_d_e);
  CHECK(drives_in(26) == "A  DE" + std::string(21, ' '));
  CHECK(drives_in(2) == "A ");
  CHECK(drives_in(0).empty());
  CHECK(drives_in(40) == "A  DE" + std::string(35, ' '));
}

TEST_CASE("the directory of a drive and of the current drive") {
  RecordingCore core;
  const TestDir dir;
  const std::string padding(10, ' ');
  const std::string drive(1, dir.path()[0]);
  const size_t length = dir.path().size();
  for (const std::string &first : {drive, std::string(1, static_cast<char>(drive[0] | 0x20)), std::string(" ")}) {
    const Directory directory = directory_of(first + std::string(length + 9, '#'));
    CHECK(directory.length == static_cast<int32_t>(length));
    CHECK(directory.text == dir.path() + padding);
  }
  CHECK(directory_of(drive + std::string(length - 1, '#')).text == dir.path());
  CHECK(core.calls().empty());

  CHECK(directory_of(drive + "####").length == 0);
  CHECK(core.calls() == reports(ERANGE));
  CHECK(directory_of(" ####").text == "     ");
}

TEST_CASE("a drive that is not there is 13") {
  RecordingCore core;
  const ImportOverride type(library(), "GetDriveTypeA", tell_drive_type);
  for (const UINT no_drive : {0U, 1U}) {
    simulated_drive_type = no_drive;
    const Directory directory = directory_of("q##");
    CHECK(directory.length == 0);
    CHECK(directory.text == "   ");
    CHECK(asked_drive == "Q:\\.");
    CHECK(core.calls() == reports(EACCES));
  }
  simulated_drive_type = DRIVE_FIXED;
  const ImportOverride full_path(library(), "GetFullPathNameA", no_full_path);
  CHECK(directory_of("q##").length == 0);
  CHECK(core.calls() == reports(ENOENT));
  const ImportOverride allocation(library(), "malloc", no_memory);
  CHECK(directory_of("q##").text == "   ");
  CHECK(core.calls() == reports(ENOMEM));
}

TEST_CASE("sizes are products of clusters, and -1 with 34 where they do not fit") {
  RecordingCore core;
  const ImportOverride space(library(), "GetDiskFreeSpaceA", tell_disk_space);
  total_clusters = 1000;
  free_clusters = 10;
  const DriveSize<int32_t> small = size_of("c");
  CHECK((small.result == 1 && small.total == 4'096'000 && small.avail == 40'960));
  CHECK(asked_root == "c:\\");
  CHECK(core.calls().empty());

  total_clusters = 1'000'000'000;
  const DriveSize<int32_t> large = size_of("C:\\");
  CHECK((large.result == 1 && large.total == -1 && large.avail == 40'960));
  CHECK(core.calls() == reports(ERANGE));
  free_clusters = 524'288;  // 2 GiB
  CHECK(size_of("C").avail == -1);
  CHECK(core.calls() == reports(ERANGE) + ' ' + reports(ERANGE));
  const DriveSize<int64_t> wide = wide_size_of("C");
  CHECK((wide.result == 1 && wide.total == 4'096'000'000'000 && wide.avail == 2'147'483'648));
  CHECK(core.calls().empty());
}

TEST_CASE("the drive argument is a letter, a blank or a network name") {
  RecordingCore core;
  const ImportOverride space(library(), "GetDiskFreeSpaceA", tell_disk_space);
  for (const char *drive : {" ", " x", ""}) {
    CHECK(size_of(drive).result == 1);
    CHECK(asked_root == "(current)");
  }
  CHECK(size_of(R"(\\server\share\  )").result == 1);
  CHECK(asked_root == R"(\\server\share\)");
  CHECK(size_of("//server/share").result == 1);
  core.calls();
  for (const char *drive : {"1", "?", "\\", "\\/x", ":C"}) {
    const DriveSize<int32_t> size = size_of(drive);
    CHECK((size.result == 0 && size.total == -1 && size.avail == -1));
    CHECK(core.calls() == reports(EINVAL));
  }
  const ImportOverride none(library(), "GetDiskFreeSpaceA", no_disk_space);
  CHECK(wide_size_of("C").total == -1);
  CHECK(core.calls() == reports(ENOENT));
}

TEST_CASE("the real current drive has a size") {
  const DriveSize<int64_t> size = wide_size_of(" ");
  CHECK(size.result == 1);
  CHECK(size.total > 0);
  CHECK(size.avail <= size.total);
}

TEST_CASE("CHANGEDRIVEQQ goes to the drive's root") {
  RecordingCore core;
  const ImportOverride directory(library(), "SetCurrentDirectoryA", keep_directory);
  CHECK(change_drive("d:\\sub") == 1);
  CHECK(asked_root == "D:\\");
  CHECK(core.calls().empty());
  CHECK(change_drive("Q") == 0);
  CHECK(core.calls() == reports(ENOENT));
  for (const char *drive : {"?", " ", "", "1"}) {
    CHECK(change_drive(drive) == 0);
    CHECK(core.calls() == reports(EINVAL));
  }
}

TEST_CASE("FULLPATHQQ makes a name full, or says how much room it needs") {
  RecordingCore core;
  const TestDir dir;
  const std::string expected = dir.path() + "\\b.txt";
  const auto length = static_cast<int32_t>(expected.size());
  CHECK(full_path_of("sub\\..\\b.txt ", expected.size() + 2).text == expected + "  ");
  CHECK(full_path_of("b.txt", expected.size()).text == expected);
  CHECK(core.calls().empty());
  const FullPath cut = full_path_of("b.txt", expected.size() - 1);
  CHECK(cut.length == length + 1);
  CHECK(cut.text == std::string(expected.size() - 1, ' '));
  CHECK(FULLPATHQQ("b.txt", nullptr, 5, 10) == 0);
  CHECK(core.calls() == reports(EINVAL));
  {
    const ImportOverride full_path(library(), "GetFullPathNameA", no_full_path);
    const FullPath none = full_path_of("b.txt", 10);
    CHECK(none.length == 0);
    CHECK(none.text == std::string(10, ' '));
    CHECK(core.calls() == reports(ENOENT));
  }
  const ImportOverride allocation(library(), "malloc", no_memory);
  CHECK(full_path_of("b.txt", 10).length == 0);
}

TEST_CASE("SPLITPATHQQ gives the parts of the full path") {
  RecordingCore core;
  const TestDir dir;
  const auto split = [](const std::string &path, size_t room) {
    GuardedText text(path);
    GuardedText drive(3), directory(room), name(room), extension(6);
    const int32_t length =
        SPLITPATHQQ(text.data(), drive.data(), directory.data(), name.data(), extension.data(), text.size(),
                    drive.size(), directory.size(), name.size(), extension.size());
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
