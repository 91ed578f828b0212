// SPDX-License-Identifier: MIT
// Listing, searching, deleting, renaming and changing files and directories.
#include <cstddef>
#include <cstring>
#include <set>

#include <sys/stat.h>

#include "library_test.h"

namespace {

template <class Record> struct Listing {
  std::string pattern;
  int64_t handle = QWPORT_FINDINFO_FIRST;
  Record record{};

  int32_t next() {
    if constexpr (std::is_same_v<Record, QwportFileInfo>) return call(GETFILEINFOQQ, pattern, &record, &handle);
    if constexpr (std::is_same_v<Record, QwportFileInfoI8>) return call(GETFILEINFOQQI8, pattern, &record, &handle);
  }
};

template <class Record> std::multiset<std::string> names_in(const std::string &pattern) {
  Listing<Record> listing{pattern};
  std::multiset<std::string> names;
  while (const int32_t length = listing.next()) names.emplace(listing.record.name, static_cast<size_t>(length));
  return names;
}

// The length of the path that is found, and the path.
std::string find_file(const std::string &name, const std::string &variable) {
  std::string found = outcome(FINDFILEQQ, name, variable, Room{300});
  found.erase(found.find_last_not_of(' ') + 1);
  return found;
}

std::string with_length(const std::string &path) { return std::to_string(path.size()) + '|' + path; }

struct _stat64 status_of(const char *name) {
  struct _stat64 status {};
  _stat64(name, &status);
  return status;
}

int find_next_calls;

}  // namespace

static_assert(offsetof(QwportFileInfo, written) == 4 && offsetof(QwportFileInfo, accessed) == 8);
static_assert(offsetof(QwportFileInfo, attributes) == 16 && offsetof(QwportFileInfo, name) == 20);
static_assert(offsetof(QwportFileInfoI8, accessed) == 8 && offsetof(QwportFileInfoI8, size) == 16);
static_assert(offsetof(QwportFileInfoI8, attributes) == 24 && offsetof(QwportFileInfoI8, name) == 28);

TEST_CASE_FIXTURE(InTestDir, "a listing gives each matching entry once, fills its fields and ends with 2") {
  for (const char *name : {"a.txt", "b.txt", "c.dat"}) make_file(name, "12345");
  CreateDirectoryA("sub", nullptr);
  CHECK(names_in<QwportFileInfo>("*.txt  ") == std::multiset<std::string>{"a.txt", "b.txt"});
  CHECK(core.calls() == reports(ENOENT));
  CHECK(names_in<QwportFileInfoI8>("*") == std::multiset<std::string>{".", "..", "a.txt", "b.txt", "c.dat", "sub"});

  SetFileAttributesA("a.txt", FILE_ATTRIBUTE_READONLY);
  Listing<QwportFileInfo> listing{"a.txt"};
  REQUIRE(listing.next() == 5);
  CHECK(listing.record.written == static_cast<int32_t>(status_of("a.txt").st_mtime));
  CHECK(listing.record.accessed == static_cast<int32_t>(status_of("a.txt").st_atime));
  CHECK((listing.record.attributes & QWPORT_FILE_READONLY) != 0);
  CHECK(std::string(listing.record.name, 255) == "a.txt" + std::string(250, ' '));
  CHECK((listing.next() == 0 && listing.handle == QWPORT_FINDINFO_LAST));
  CHECK(listing.record.size == 5);  // the fields stay when the listing ends

  Listing<QwportFileInfoI8> directory{"sub"};
  std::memset(&directory.record, '#', sizeof directory.record);
  REQUIRE(directory.next() == 3);
  CHECK((directory.record.attributes & QWPORT_FILE_DIRECTORY) != 0);
  CHECK(std::string(reinterpret_cast<const char *>(&directory.record) + 12, 4) == "####");
  directory.next();
}

TEST_CASE_FIXTURE(InTestDir, "a listing of nothing ends at once, and no mark is handed to the host as a find handle") {
  make_file("a");
  const ImportOverride find_next(library(), "_findnext64", [] { return ++find_next_calls, -1; });
  Listing<QwportFileInfo> listing{"*.none"};
  listing.record.size = 7;
  for (const int64_t mark : {QWPORT_FINDINFO_ERROR, QWPORT_FINDINFO_LAST, QWPORT_FINDINFO_LAST}) {
    CHECK((listing.next() == 0 && listing.handle == mark));
    CHECK(core.calls() == reports(ENOENT));
  }
  CHECK((listing.record.size == 7 && find_next_calls == 0));
  Listing<QwportFileInfo> short_listing{"a"};
  core.calls();
  CHECK((short_listing.next() == 1 && find_next_calls == 0));
  // A listing under way needs no pattern, but says that there is none.
  CHECK_CALLS(GETFILEINFOQQ(nullptr, &short_listing.record, &short_listing.handle, 3), 0,
              reports(EINVAL) + ' ' + reports(ENOENT));
  CHECK(find_next_calls == 1);
  listing.handle = QWPORT_FINDINFO_FIRST;
  CHECK(GETFILEINFOQQ(nullptr, &listing.record, &listing.handle, 3) == 0);
  CHECK(listing.handle == QWPORT_FINDINFO_ERROR);
}

TEST_CASE_FIXTURE(InTestDir, "a size of 2 GiB or more is -1 and 34 in the short record") {
  constexpr int64_t limit = int64_t{1} << 31;
  for (const int64_t size : {limit - 1, limit, limit + limit / 2, 2 * limit, 2 * limit + limit / 2}) {
    make_sparse_file("big", size);
    Listing<QwportFileInfo> short_listing{"big"};
    CHECK(short_listing.next() == 3);
    CHECK_CALLS(short_listing.record.size, (size < limit ? 2147483647 : -1), (size < limit ? "" : reports(ERANGE)));
    CHECK(short_listing.record.written > 1'000'000'000);
    Listing<QwportFileInfoI8> long_listing{"big"};
    CHECK((long_listing.next() == 3 && long_listing.record.size == size));
    short_listing.next();
    long_listing.next();
    core.calls();
  }
}

TEST_CASE_FIXTURE(InTestDir, "FINDFILEQQ searches the default places, then the variable's directories") {
  CreateDirectoryA("sub one", nullptr);
  make_file("here.txt");
  make_file("sub one\\there.txt");
  SetEnvironmentVariableA("QWPORT_DIRS", ("C:\\none;" + dir.path() + "\\sub one").c_str());
  const std::string here = dir.path() + "\\here.txt";
  CHECK_CALLS(find_file("here.txt ", "QWPORT_DIRS"), with_length(here), "");
  CHECK(find_file("there.txt", "QWPORT_DIRS ") == with_length(dir.path() + "\\sub one\\there.txt"));
  core.calls();
  CHECK_CALLS(find_file("nowhere.txt", "QWPORT_DIRS"), "0|", reports(ENOENT) + ' ' + reports(ENOENT));
  CHECK(find_file("there.txt", "QWPORT_NONE") == "0|");
  core.calls();
  CHECK_CALLS(outcome(FINDFILEQQ, "here.txt", "", Room{4}), with_length(here.substr(0, 4)), reports(EINVAL));
}

TEST_CASE("FINDFILEQQ reports answers that change") {
  static DWORD path_needed, path_length, value_needed, value_length;
  const ImportOverride search(library(), "SearchPathA",
                              [](const char *, const char *, const char *, DWORD size, char *, char **) {
                                SetLastError(ERROR_ACCESS_DENIED);
                                return size == 0 ? path_needed : path_length;
                              });
  const ImportOverride variable(library(), "GetEnvironmentVariableA", [](const char *, char *, DWORD size) {
    return size == 0 ? value_needed : value_length;
  });
  const struct {
    DWORD path_needed, path_length, value_needed, value_length;
    int32_t first, second;
  } rows[] = {{10, 15, 0, 0, EINTR, EINTR},
              {10, 0, 0, 0, EACCES, EACCES},
              {0, 0, 10, 0, EACCES, EINTR},
              {0, 0, 10, 15, EACCES, EINTR}};
  RecordingCore core;
  for (const auto &row : rows) {
    path_needed = row.path_needed, path_length = row.path_length;
    value_needed = row.value_needed, value_length = row.value_length;
    CHECK_CALLS(find_file("a", "QWPORT_NONE"), "0|", reports(row.first) + ' ' + reports(row.second));
  }
}

TEST_CASE_FIXTURE(InTestDir, "DELFILESQQ deletes plain matching files in their directory, counts them and reports 22") {
  for (const char *name : {"sub", "sub\\dir.tmp"}) CreateDirectoryA(name, nullptr);
  for (const char *name : {"sub\\a.tmp", "sub\\b.tmp", "sub\\keep.txt", "sub\\readonly.tmp", "here.tmp"})
    make_file(name);
  SetFileAttributesA("sub\\readonly.tmp", FILE_ATTRIBUTE_READONLY);
  CHECK_CALLS(call(DELFILESQQ, "sub\\*.tmp  "), 2, reports(EINVAL));
  CHECK_FALSE(file_exists("sub\\a.tmp"));
  for (const char *name : {"sub\\keep.txt", "sub\\readonly.tmp", "sub\\dir.tmp", "here.tmp"}) CHECK(file_exists(name));
  CHECK(call(DELFILESQQ, "here.tmp") == 1);
  core.calls();
  for (const auto &[name, code] : {std::pair{"*.none", ENOENT}, {"none\\*", ENOENT}, {"sub\\", EINVAL}}) {
    CHECK_CALLS(call(DELFILESQQ, name), 0, reports(code));
  }
  CHECK(std::filesystem::current_path().string() == dir.path());
}

TEST_CASE_FIXTURE(InTestDir, "DELFILESQQ keeps hidden and system files, and hands on 259 characters of a pattern") {
  static DWORD attributes;
  static size_t pattern_length;
  static int listings;
  const ImportOverride find(library(), "FindFirstFileA", [](const char *path, WIN32_FIND_DATAA *entry) -> HANDLE {
    ++listings;
    pattern_length = std::strlen(std::strrchr(path, '\\') + 1);
    *entry = {};
    entry->dwFileAttributes = attributes;
    std::strcpy(entry->cFileName, "a.tmp");
    return CreateEventA(nullptr, FALSE, FALSE, nullptr);
  });
  const ImportOverride next(library(), "FindNextFileA",
                            []() -> BOOL { return SetLastError(ERROR_NO_MORE_FILES), FALSE; });
  const ImportOverride close(library(), "FindClose", CloseHandle);
  const std::pair<DWORD, int> kinds[] = {
      {FILE_ATTRIBUTE_HIDDEN, 0}, {FILE_ATTRIBUTE_SYSTEM, 0}, {FILE_ATTRIBUTE_ARCHIVE, 1}, {FILE_ATTRIBUTE_NORMAL, 1}};
  for (const auto &[kind, deleted] : kinds) {
    make_file("a.tmp");
    attributes = kind;
    CHECK(call(DELFILESQQ, "*.tmp") == deleted);
    CHECK(file_exists("a.tmp") == (deleted == 0));
  }
  // Some hosts have no full path of more than 259 characters.
  const ImportOverride full(library(), "GetFullPathNameA",
                            [](const char *name, DWORD size, char *path, char **part) -> DWORD {
                              const auto length = static_cast<DWORD>(std::strlen(name) + 3);
                              if (size <= length) return length + 1;
                              *part = std::strcpy(path, "C:\\") + 3;
                              std::strcpy(*part, name);
                              return length;
                            });
  const std::pair<size_t, size_t> lengths[] = {{255, 255}, {259, 259}, {260, 259}};
  for (const auto &[given, handed_on] : lengths) {
    CHECK(call(DELFILESQQ, std::string(given, 'x')) == 0);
    CHECK(pattern_length == handed_on);
  }
  listings = 0;
  CHECK((call(DELFILESQQ, std::string(261, 'x')) == 0 && listings == 0));
}

TEST_CASE_FIXTURE(InTestDir, "DELFILESQQ reports each way in which a host call fails") {
  const std::tuple<std::string, intptr_t, DWORD, int32_t> cases[] = {
      {"FindFirstFileA", -1, 2, ENOENT},  {"FindFirstFileA", -1, 3, ENOENT}, {"FindFirstFileA", -1, 18, ENOENT},
      {"FindFirstFileA", -1, 16, EINVAL}, {"FindFirstFileA", -1, 8, ENOMEM}, {"FindNextFileA", 0, 2, ENOENT},
      {"FindNextFileA", 0, 3, ENOENT},    {"FindNextFileA", 0, 16, ENOENT},  {"FindNextFileA", 0, 18, EINVAL},
      {"FindNextFileA", 0, 8, ENOMEM}};
  for (const auto &[function, result, error, code] : cases) {
    CAPTURE(function);
    CAPTURE(error);
    make_file("a.tmp");
    const FailingCall failure(function.c_str(), error, result);
    CHECK(call(DELFILESQQ, "*.tmp") == (function == "FindNextFileA" ? 1 : 0));
    CHECK(core.calls() == reports(code));
  }
}

TEST_CASE_FIXTURE(InTestDir, "RENAMEFILEQQ refuses a new name that exists, RENAME replaces it, UNLINK deletes") {
  make_file("a", "a");
  make_file("b");
  CHECK_CALLS(call(RENAMEFILEQQ, "a", "b"), 0, reports(EEXIST));
  CHECK(call(RENAMEFILEQQ, "a ", "c ") == 1);
  CHECK_CALLS(call(RENAME, "c", "b"), 0, "");
  CHECK_FALSE(file_exists("c"));
  CHECK(std::filesystem::file_size("b") == 1);
  CHECK_CALLS(call(RENAME, "missing", "b"), ENOENT, records(ENOENT));
  CHECK(file_exists("b"));
  CHECK(call(RENAMEFILEQQ, "missing", "d") == 0);
  {
    // The first rename meets a target that is gone when it is to be deleted.
    static int renames;
    const ImportOverride rename(library(), "rename", [](const char *from, const char *to) {
      if (renames++ > 0) return std::rename(from, to);
      errno = EEXIST;
      return -1;
    });
    CHECK((call(RENAME, "b", "e") == 0 && call(RENAME, "e", "b") == 0));
    core.calls();
  }
  CHECK_CALLS(call(UNLINK, "b  "), 0, "");
  CHECK_CALLS(call(UNLINK, "b  "), ENOENT, records(ENOENT));
  CHECK_FALSE(file_exists("b"));
}

TEST_CASE_FIXTURE(InTestDir, "attributes are set but not those of volumes and directories; times are set") {
  make_file("a");
  CHECK(call(SETFILETIMEQQ, "a", 1'000'000'000) == 1);
  CHECK((status_of("a").st_mtime == 1'000'000'000 && status_of("a").st_atime == 1'000'000'000));
  CHECK(call(SETFILETIMEQQ, "a", QWPORT_TIME_NOW) == 1);
  CHECK(status_of("a").st_mtime > 1'700'000'000);
  CHECK_CALLS(call(SETFILEACCESSQQ, "a ", QWPORT_FILE_READONLY), 1, "");
  const std::tuple<int32_t (*)(const char *, const int32_t *, size_t), const char *, int32_t, int32_t> failures[] = {
      {SETFILEACCESSQQ, "a", QWPORT_FILE_DIRECTORY, EINVAL},
      {SETFILEACCESSQQ, "a", QWPORT_FILE_VOLUME, EINVAL},
      {SETFILEACCESSQQ, "missing", 0, EACCES},
      {SETFILETIMEQQ, "missing", QWPORT_TIME_NOW, ENOENT}};
  for (const auto &[routine, name, value, code] : failures) {
    CHECK_CALLS(call(routine, name, value), 0, reports(code));
  }
  CHECK(is_read_only("a"));
}

TEST_CASE_FIXTURE(InTestDir, "directories are made, entered and removed") {
  CHECK((call(MAKEDIRQQ, "new dir  ") == 1 && call(MAKEDIRQQ, "new dir") == 0));
  CHECK(GETLASTERROR() == EEXIST);
  CHECK(call(CHANGEDIRQQ, "new dir") == 1);
  CHECK(std::filesystem::current_path().filename() == "new dir");
  CHECK(call(CHDIR, "..") == 0);
  CHECK((call(DELDIRQQ, "new dir") == 1 && call(DELDIRQQ, "new dir") == 0));
  CHECK(core.calls() == "");
  make_file("file");
  for (const auto &[name, code] : {std::pair{"missing", ENOENT}, {"file", ENOTDIR}}) {
    CHECK_CALLS(call(CHDIR, name), code, records(code));
    CHECK(GETLASTERROR() == code);
  }
  CHECK_CALLS(call(CHANGEDIRQQ, "missing"), 0, reports(ENOENT));
  CHECK((CHANGEDIRQQ(nullptr, 1) == 0 && CHDIR(nullptr, 1) == ENOMEM));
}

TEST_CASE_FIXTURE(InTestDir, "GETCWD gives the directory or says that it does not fit") {
  const size_t length = dir.path().size();
  CHECK(outcome(GETCWD, Room{length + 2}) == "0|" + dir.path() + "  ");
  CHECK_CALLS(outcome(GETCWD, Room{length}), "0|" + dir.path(), "");
  CHECK_CALLS(outcome(GETCWD, Room{length - 1}), "34|" + std::string(length - 1, ' '), records(ERANGE));
  CHECK_CALLS(outcome(GETCWD, Room{0}), "2|", "IERRNO 2");
}

TEST_CASE_FIXTURE(InTestDir, "without memory the routines give 12, or 0 and report it") {
  const FailingCall memory("malloc");
  for (const int32_t code : {call(ACCESS, "a", "r"), call(CHMOD, "a", "+w"), call(RENAME, "a", "b"), call(UNLINK, "a")})
    CHECK(code == ENOMEM);
  CHECK(outcome(GETCWD, Room{3}) == "12|###");
  core.calls();
  for (const int32_t result : {call(DELFILESQQ, "a"), call(RENAMEFILEQQ, "a", "b"), call(FULLPATHQQ, "a", Room{3})})
    CHECK((result == 0 && GETLASTERROR() == ENOMEM));
  core.calls();
  CHECK_CALLS(find_file("a", "QWPORT_NONE"), "0|", reports(ENOMEM));
}
