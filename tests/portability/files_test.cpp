// SPDX-License-Identifier: MIT
// Listing, searching, deleting, renaming and changing files and directories.
#include <doctest/doctest.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>

#include <direct.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include "guarded_text.h"
#include "import_override.h"
#include "library.h"
#include "qwport.h"
#include "recording.h"
#include "test_dir.h"

namespace {

template <class Record>
struct Listing {
  std::string pattern;
  int64_t handle = QWPORT_FINDINFO_FIRST;
  Record record{};

  int32_t next() {
    if constexpr (std::is_same_v<Record, QwportFileInfo>) {
      return GETFILEINFOQQ(pattern.data(), &record, &handle, pattern.size());
    } else {
      return GETFILEINFOQQI8(pattern.data(), &record, &handle, pattern.size());
    }
  }
  std::string name(int32_t length) { return {record.name, static_cast<size_t>(length)}; }
};

template <class Record>
std::set<std::string> names_in(const std::string &pattern) {
  Listing<Record> listing{pattern};
  std::set<std::string> names;
  for (int32_t length = listing.next(); length > 0; length = listing.next()) names.insert(listing.name(length));
  return names;
}

template <class Routine>
auto with_name(Routine routine, const std::string &name) {
  GuardedText text(name);
  return routine(text.data(), text.size());
}

template <class Routine>
auto with_names(Routine routine, const std::string &first, const std::string &second) {
  GuardedText first_text(first);
  GuardedText second_text(second);
  return routine(first_text.data(), second_text.data(), first_text.size(), second_text.size());
}

int32_t set_access(const std::string &name, int32_t access) {
  return SETFILEACCESSQQ(name.data(), &access, name.size());
}

int32_t set_time(const std::string &name, int32_t time) { return SETFILETIMEQQ(name.data(), &time, name.size()); }

struct Found {
  int32_t length;
  std::string path;
};

Found find_file(const std::string &name, const std::string &variable, size_t room = 300) {
  GuardedText path(room);
  const int32_t length =
      FINDFILEQQ(name.data(), variable.data(), path.data(), name.size(), variable.size(), path.size());
  return {length, path.str().substr(0, static_cast<size_t>(length))};
}

std::string reports(int32_t code) { return "for_errsns_load(0, " + std::to_string(code) + ", 0, 0, 0)"; }

// ---- Failing host calls -------------------------------------------------------------------------

void *no_memory(size_t) { return nullptr; }

DWORD answer_of_second_call;
DWORD WINAPI search_that_changes(const char *, const char *, const char *, DWORD size, char *, char **) {
  SetLastError(ERROR_ACCESS_DENIED);
  return size == 0 ? 10 : answer_of_second_call;
}
DWORD WINAPI search_that_finds_nothing(const char *, const char *, const char *, DWORD, char *, char **) {
  SetLastError(ERROR_FILE_NOT_FOUND);
  return 0;
}
DWORD WINAPI variable_that_changes(const char *, char *, DWORD size) { return size == 0 ? 10 : answer_of_second_call; }

DWORD listing_error;
HANDLE WINAPI listing_that_fails(const char *, WIN32_FIND_DATAA *) {
  SetLastError(listing_error);
  return INVALID_HANDLE_VALUE;
}
BOOL WINAPI listing_that_ends(HANDLE, WIN32_FIND_DATAA *) {
  SetLastError(listing_error);
  return FALSE;
}
DWORD WINAPI no_full_path(const char *, DWORD, char *, char **) {
  SetLastError(ERROR_PATH_NOT_FOUND);
  return 0;
}
DWORD WINAPI no_directory(DWORD, char *) {
  SetLastError(ERROR_ACCESS_DENIED);
  return 0;
}

int find_next_calls;
int count_find_next(intptr_t, struct __finddata64_t *) {
  ++find_next_calls;
  return -1;
}

}  // namespace

static_assert(offsetof(QwportFileInfo, created) == 0 && offsetof(QwportFileInfo, written) == 4);
static_assert(offsetof(QwportFileInfo, accessed) == 8 && offsetof(QwportFileInfo, size) == 12);
static_assert(offsetof(QwportFileInfo, attributes) == 16 && offsetof(QwportFileInfo, name) == 20);
static_assert(offsetof(QwportFileInfoI8, accessed) == 8 && offsetof(QwportFileInfoI8, size) == 16);
static_assert(offsetof(QwportFileInfoI8, attributes) == 24 && offsetof(QwportFileInfoI8, name) == 28);

TEST_CASE("a listing gives each matching entry once and ends with 2") {
  RecordingCore core;
  const TestDir dir;
  for (const char *name : {"a.txt", "b.txt", "c.dat"}) make_file(name, "12345");
  CreateDirectoryA("sub", nullptr);
  CHECK(names_in<QwportFileInfo>("*.txt  ") == std::set<std::string>{"a.txt", "b.txt"});
  CHECK(core.calls() == reports(ENOENT));
  CHECK(names_in<QwportFileInfoI8>("*") == std::set<std::string>{".", "..", "a.txt", "b.txt", "c.dat", "sub"});
  CHECK(names_in<QwportFileInfo>("c.dat") == std::set<std::string>{"c.dat"});
}

TEST_CASE("an entry's fields are filled") {
  RecordingCore core;
  const TestDir dir;
  make_file("a.txt", "12345");
  SetFileAttributesA("a.txt", FILE_ATTRIBUTE_READONLY);
  CreateDirectoryA("sub", nullptr);
  struct _stat64 status {};
  _stat64("a.txt", &status);

  Listing<QwportFileInfo> listing{"a.txt"};
  REQUIRE(listing.next() == 5);
  CHECK(listing.record.size == 5);
  CHECK(listing.record.written == static_cast<int32_t>(status.st_mtime));
  CHECK(listing.record.accessed == static_cast<int32_t>(status.st_atime));
  CHECK((listing.record.attributes & QWPORT_FILE_READONLY) != 0);
  CHECK(std::string(listing.record.name, 255) == "a.txt" + std::string(250, ' '));
  CHECK(listing.next() == 0);
  CHECK(listing.handle == QWPORT_FINDINFO_LAST);
  CHECK(listing.record.size == 5);

  Listing<QwportFileInfoI8> directory{"sub"};
  std::memset(&directory.record, '#', sizeof directory.record);
  REQUIRE(directory.next() == 3);
  CHECK((directory.record.attributes & QWPORT_FILE_DIRECTORY) != 0);
  CHECK(std::string(reinterpret_cast<const char *>(&directory.record) + 12, 4) == "####");
  directory.next();
}

TEST_CASE("a listing of nothing ends at once, and a finished one stays finished") {
  RecordingCore core;
  const TestDir dir;
  Listing<QwportFileInfo> listing{"*.none"};
  listing.record.size = 7;
  CHECK(listing.next() == 0);
  CHECK(listing.handle == QWPORT_FINDINFO_ERROR);
  CHECK(core.calls() == reports(ENOENT));
  CHECK(listing.next() == 0);
  CHECK(listing.handle == QWPORT_FINDINFO_LAST);
  CHECK(listing.next() == 0);
  CHECK(listing.handle == QWPORT_FINDINFO_LAST);
  CHECK(listing.record.size == 7);

  Listing<QwportFileInfo> no_pattern;
  CHECK(GETFILEINFOQQ(nullptr, &no_pattern.record, &no_pattern.handle, 3) == 0);
  CHECK(no_pattern.handle == QWPORT_FINDINFO_ERROR);
}

TEST_CASE("a mark is never handed to the host as a find handle; a real one is closed at its end") {
  RecordingCore core;
  const TestDir dir;
  make_file("a");
  const ImportOverride find_next(library(), "_findnext64", count_find_next);
  find_next_calls = 0;
  Listing<QwportFileInfo> listing{"a"};
  listing.handle = QWPORT_FINDINFO_LAST;
  CHECK(listing.next() == 0);
  CHECK(find_next_calls == 0);
  listing.handle = QWPORT_FINDINFO_FIRST;
  CHECK(listing.next() == 1);
  CHECK(listing.next() == 0);
  CHECK(find_next_calls == 1);
}

TEST_CASE("a size of 2 GiB or more is -1 and 34 in the short record") {
  RecordingCore core;
  const TestDir dir;
  constexpr int64_t gib = int64_t{1} << 30;
  for (const int64_t size : {2 * gib - 1, 2 * gib, 5 * gib}) {
    make_sparse_file("big", size);
    Listing<QwportFileInfo> short_listing{"big"};
    core.calls();
    CHECK(short_listing.next() == 3);
    const bool fits = size < 2 * gib;
    CHECK(short_listing.record.size == (fits ? static_cast<int32_t>(size) : -1));
    CHECK(core.calls() == (fits ? "" : reports(ERANGE)));
    CHECK(short_listing.record.written > 1'000'000'000);
    Listing<QwportFileInfoI8> long_listing{"big"};
    CHECK(long_listing.next() == 3);
    CHECK(long_listing.record.size == size);
    short_listing.next();
    long_listing.next();
  }
}

TEST_CASE("FINDFILEQQ searches the default places, then the variable's directories") {
  RecordingCore core;
  const TestDir dir;
  CreateDirectoryA("sub one", nullptr);
  make_file("here.txt");
  make_file("sub one\\there.txt");
  SetEnvironmentVariableA("QWPORT_DIRS", ("C:\\none;" + dir.path() + "\\sub one").c_str());
  const std::string here = dir.path() + "\\here.txt";
  const std::string there = dir.path() + "\\sub one\\there.txt";
  CHECK(find_file("here.txt ", "QWPORT_DIRS").path == here);
  CHECK(core.calls().empty());
  CHECK(find_file("there.txt", "QWPORT_DIRS ").path == there);
  CHECK(find_file("kernel32.dll", "QWPORT_NONE").length > 0);

  core.calls();
  CHECK(find_file("nowhere.txt", "QWPORT_DIRS").length == 0);
  CHECK(core.calls() == reports(ENOENT) + ' ' + reports(ENOENT));
  CHECK(find_file("there.txt", "QWPORT_NONE").length == 0);
  core.calls();
  CHECK(find_file("here.txt", "", 4).path == here.substr(0, 4));
  CHECK(core.calls() == reports(EINVAL));
}

TEST_CASE("FINDFILEQQ reports answers that change, and memory that cannot be had") {
  RecordingCore core;
  SUBCASE("the second search needs more room") {
    const ImportOverride search(library(), "SearchPathA", search_that_changes);
    answer_of_second_call = 15;
    CHECK(find_file("a", "QWPORT_NONE").length == 0);
    CHECK(core.calls() == reports(4) + ' ' + reports(4));
    answer_of_second_call = 0;
    CHECK(find_file("a", "QWPORT_NONE").length == 0);
    CHECK(core.calls() == reports(EACCES) + ' ' + reports(EACCES));
  }
  SUBCASE("the variable changes") {
    const ImportOverride search(library(), "SearchPathA", search_that_finds_nothing);
    const ImportOverride variable(library(), "GetEnvironmentVariableA", variable_that_changes);
    for (const DWORD second_answer : {0U, 15U, 100U}) {
      answer_of_second_call = second_answer;
      CHECK(find_file("a", "QWPORT_DIRS").length == 0);
      CHECK(core.calls() == reports(ENOENT) + ' ' + reports(4));
    }
  }
  SUBCASE("no memory") {
    const ImportOverride allocation(library(), "malloc", no_memory);
    CHECK(find_file("a", "QWPORT_DIRS").length == 0);
    CHECK(core.calls() == reports(ENOMEM));
  }
}

TEST_CASE("DELFILESQQ deletes plain matching files in their directory, counts them and reports 22") {
  RecordingCore core;
  const TestDir dir;
  CreateDirectoryA("sub", nullptr);
  CreateDirectoryA("sub\\dir.tmp", nullptr);
  for (const char *name : {"sub\\a.tmp", "sub\\b.tmp", "sub\\keep.txt", "sub\\readonly.tmp", "here.tmp"}) make_file(name);
  SetFileAttributesA("sub\\readonly.tmp", FILE_ATTRIBUTE_READONLY);

  CHECK(with_name(DELFILESQQ, "sub\\*.tmp  ") == 2);
  CHECK(core.calls() == reports(EINVAL));
  CHECK_FALSE(file_exists("sub\\a.tmp"));
  for (const char *name : {"sub\\keep.txt", "sub\\readonly.tmp", "sub\\dir.tmp", "here.tmp"}) CHECK(file_exists(name));
  CHECK(std::filesystem::current_path().string() == dir.path());

  CHECK(with_name(DELFILESQQ, "here.tmp") == 1);
  CHECK_FALSE(file_exists("here.tmp"));
  core.calls();
  CHECK(with_name(DELFILESQQ, "*.none") == 0);
  CHECK(core.calls() == reports(ENOENT));
  CHECK(with_name(DELFILESQQ, "none\\*") == 0);
  CHECK(core.calls() == reports(ENOENT));
  CHECK(with_name(DELFILESQQ, "sub\\") == 0);
  CHECK(core.calls() == reports(EINVAL));
  CHECK(with_name(DELFILESQQ, std::string(300, 'x')) == 0);
  CHECK(std::filesystem::current_path().string() == dir.path());
}

TEST_CASE("DELFILESQQ reports each way in which a listing fails") {
  RecordingCore core;
  const TestDir dir;
  make_file("a.tmp");
  const std::pair<DWORD, int32_t> failures[] = {{2, ENOENT}, {3, ENOENT}, {18, ENOENT}, {16, EINVAL},
                                                {8, ENOMEM}, {5, EINVAL}};
  for (const auto &[error, code] : failures) {
    const ImportOverride first(library(), "FindFirstFileA", listing_that_fails);
    listing_error = error;
    CHECK(with_name(DELFILESQQ, "*.tmp") == 0);
    CHECK(core.calls() == reports(code));
  }
  const std::pair<DWORD, int32_t> ends[] = {{2, ENOENT}, {3, ENOENT}, {16, ENOENT}, {18, EINVAL}, {8, ENOMEM}};
  for (const auto &[error, code] : ends) {
    make_file("a.tmp");
    const ImportOverride next(library(), "FindNextFileA", listing_that_ends);
    listing_error = error;
    CHECK(with_name(DELFILESQQ, "*.tmp") == 1);
    CHECK(core.calls() == reports(code));
  }
  {
    const ImportOverride full_path(library(), "GetFullPathNameA", no_full_path);
    CHECK(with_name(DELFILESQQ, "*.tmp") == 0);
    CHECK(core.calls() == reports(ENOENT));
  }
  {
    const ImportOverride directory(library(), "GetCurrentDirectoryA", no_directory);
    CHECK(with_name(DELFILESQQ, "*.tmp") == 0);
    CHECK(core.calls() == reports(EACCES));
  }
  const ImportOverride allocation(library(), "malloc", no_memory);
  CHECK(with_name(DELFILESQQ, "*.tmp") == 0);
  CHECK(core.calls() == reports(ENOMEM));
}

TEST_CASE("RENAMEFILEQQ refuses a new name that exists, RENAME replaces it") {
  RecordingCore core;
  const TestDir dir;
  make_file("a", "a");
  make_file("b", "b");
  CHECK(with_names(RENAMEFILEQQ, "a", "b") == 0);
  CHECK(core.calls() == reports(EEXIST));
  CHECK(with_names(RENAMEFILEQQ, "a ", "c ") == 1);
  CHECK(with_names(RENAME, "c", "b") == 0);
  CHECK(core.calls().empty());
  CHECK_FALSE(file_exists("c"));
  CHECK(std::filesystem::file_size("b") == 1);
  CHECK(with_names(RENAME, "missing", "d") == ENOENT);
  CHECK(IERRNO() == ENOENT);
  CHECK(core.calls() == reports(ENOENT));
  CHECK(with_names(RENAMEFILEQQ, "missing", "d") == 0);

  const ImportOverride allocation(library(), "malloc", no_memory);
  CHECK(with_names(RENAME, "b", "d") == ENOMEM);
  CHECK(with_names(RENAMEFILEQQ, "b", "d") == 0);
  CHECK(file_exists("b"));
}

TEST_CASE("UNLINK deletes a file") {
  RecordingCore core;
  const TestDir dir;
  make_file("a");
  CHECK(with_name(UNLINK, "a  ") == 0);
  CHECK_FALSE(file_exists("a"));
  CHECK(with_name(UNLINK, "a") == ENOENT);
  CHECK(IERRNO() == ENOENT);
  CHECK(UNLINK(nullptr, 1) == ENOMEM);
}

TEST_CASE("SETFILEACCESSQQ sets attributes but not those of volumes and directories") {
  RecordingCore core;
  const TestDir dir;
  make_file("a");
  CHECK(set_access("a ", QWPORT_FILE_READONLY) == 1);
  CHECK(is_read_only("a"));
  CHECK(set_access("a", QWPORT_FILE_DIRECTORY) == 0);
  CHECK(core.calls() == reports(EINVAL));
  CHECK(set_access("a", QWPORT_FILE_VOLUME) == 0);
  CHECK(is_read_only("a"));
  core.calls();
  CHECK(set_access("missing", 0) == 0);
  CHECK(core.calls() == reports(EACCES));
}

TEST_CASE("SETFILETIMEQQ sets access and modification times") {
  RecordingCore core;
  const TestDir dir;
  make_file("a");
  CHECK(set_time("a", 1'000'000'000) == 1);
  struct _stat64 status {};
  _stat64("a", &status);
  CHECK(status.st_mtime == 1'000'000'000);
  CHECK(status.st_atime == 1'000'000'000);
  CHECK(set_time("a", QWPORT_TIME_NOW) == 1);
  _stat64("a", &status);
  CHECK(status.st_mtime > 1'700'000'000);
  CHECK(core.calls().empty());
  CHECK(set_time("missing", QWPORT_TIME_NOW) == 0);
  CHECK(core.calls() == reports(ENOENT));
}

TEST_CASE("directories are made, entered and removed") {
  RecordingCore core;
  const TestDir dir;
  CHECK(with_name(MAKEDIRQQ, "new dir  ") == 1);
  CHECK(with_name(MAKEDIRQQ, "new dir") == 0);
  CHECK(GETLASTERROR() == EEXIST);
  CHECK(with_name(CHANGEDIRQQ, "new dir") == 1);
  CHECK(std::filesystem::current_path().filename() == "new dir");
  CHECK(with_name(CHDIR, "..") == 0);
  CHECK(with_name(DELDIRQQ, "new dir") == 1);
  CHECK(core.calls().empty());
  CHECK(with_name(DELDIRQQ, "new dir") == 0);
  CHECK(core.calls().empty());

  make_file("file");
  CHECK(with_name(CHDIR, "missing") == ENOENT);
  CHECK(IERRNO() == ENOENT);
  CHECK(with_name(CHDIR, "file") == ENOTDIR);
  CHECK(IERRNO() == ENOTDIR);
  CHECK(GETLASTERROR() == ENOTDIR);
  core.calls();
  CHECK(with_name(CHANGEDIRQQ, "missing") == 0);
  CHECK(core.calls() == reports(ENOENT));
  CHECK(CHANGEDIRQQ(nullptr, 1) == 0);
  CHECK(CHDIR(nullptr, 1) == ENOMEM);
}

TEST_CASE("GETCWD gives the directory or says that it does not fit") {
  RecordingCore core;
  const TestDir dir;
  const auto getcwd_of = [](size_t length, int32_t expected_result) {
    GuardedText text(length);
    CHECK(GETCWD(text.data(), text.size()) == expected_result);
    return text.str();
  };
  const size_t length = dir.path().size();
  CHECK(getcwd_of(length + 2, 0) == dir.path() + "  ");
  CHECK(getcwd_of(length, 0) == dir.path());
  CHECK(core.calls().empty());
  CHECK(getcwd_of(length - 1, ERANGE) == std::string(length - 1, ' '));
  CHECK(getcwd_of(3, ERANGE) == "   ");
  CHECK(IERRNO() == ERANGE);
  core.calls();
  CHECK(getcwd_of(0, ENOENT).empty());
  CHECK(core.calls().empty());
  CHECK(IERRNO() == ENOENT);
  const ImportOverride allocation(library(), "malloc", no_memory);
  CHECK(getcwd_of(3, ENOMEM) == "###");
}
