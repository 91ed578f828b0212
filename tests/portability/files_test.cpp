// SPDX-License-Identifier: MIT
// Listing, searching, deleting, renaming and changing files and directories.
#include <doctest/doctest.h>

#include <cerrno>
#include <cstddef>
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

template <class Record> struct Listing {
  std::string pattern;
  int64_t handle = QWPORT_FINDINFO_FIRST;
  Record record{};

  int32_t next() {
    const auto call = [this](auto routine) { return routine(pattern.data(), &record, &handle, pattern.size()); };
    if constexpr (std::is_same_v<Record, QwportFileInfo>) return call(GETFILEINFOQQ);
    if constexpr (std::is_same_v<Record, QwportFileInfoI8>) return call(GETFILEINFOQQI8);
  }
};

template <class Record> std::multiset<std::string> names_in(const std::string &pattern) {
  Listing<Record> listing{pattern};
  std::multiset<std::string> names;
  while (const int32_t length = listing.next()) names.emplace(listing.record.name, static_cast<size_t>(length));
  return names;
}

auto with_name(auto routine, const std::string &name) {
  GuardedText text(name);
  return routine(text.data(), text.size());
}

auto with_names(auto routine, const std::string &first, const std::string &second) {
  GuardedText first_text(first), second_text(second);
  return routine(first_text.data(), second_text.data(), first_text.size(), second_text.size());
}

auto with_value(auto routine, const std::string &name, int32_t value) {
  return routine(name.data(), &value, name.size());
}

// The path that is found, as far as it fits; empty if there is none.
std::string find_file(const std::string &name, const std::string &variable, size_t room = 300) {
  GuardedText path(room);
  const int32_t length =
      FINDFILEQQ(name.data(), variable.data(), path.data(), name.size(), variable.size(), path.size());
  return path.str().substr(0, static_cast<size_t>(length));
}

struct _stat64 status_of(const char *name) {
  struct _stat64 status {};
  _stat64(name, &status);
  return status;
}

// A host call that fails; without parameters it stands for a call with any.
DWORD host_error;
intptr_t failure;
intptr_t fail() {
  SetLastError(host_error);
  return failure;
}

class FailingCall {
 public:
  explicit FailingCall(const char *function, DWORD error = 0, intptr_t result = 0)
      : override_(library(), function, fail) {
    host_error = error;
    failure = result;
  }

 private:
  ImportOverride override_;
};

DWORD answer_of_second_call;
int find_next_calls;

}  // namespace

static_assert(offsetof(QwportFileInfo, written) == 4 && offsetof(QwportFileInfo, accessed) == 8);
static_assert(offsetof(QwportFileInfo, attributes) == 16 && offsetof(QwportFileInfo, name) == 20);
static_assert(offsetof(QwportFileInfoI8, accessed) == 8 && offsetof(QwportFileInfoI8, size) == 16);
static_assert(offsetof(QwportFileInfoI8, attributes) == 24 && offsetof(QwportFileInfoI8, name) == 28);

TEST_CASE("a listing gives each matching entry once and ends with 2") {
  RecordingCore core;
  const TestDir dir;
  for (const char *name : {"a.txt", "b.txt", "c.dat"}) make_file(name);
  CreateDirectoryA("sub", nullptr);
  CHECK(names_in<QwportFileInfo>("*.txt  ") == std::multiset<std::string>{"a.txt", "b.txt"});
  CHECK(core.calls() == reports(ENOENT));
  CHECK(names_in<QwportFileInfoI8>("*") == std::multiset<std::string>{".", "..", "a.txt", "b.txt", "c.dat", "sub"});
}

TEST_CASE("an entry's fields are filled, and stay when the listing ends") {
  RecordingCore core;
  const TestDir dir;
  make_file("a.txt", "12345");
  SetFileAttributesA("a.txt", FILE_ATTRIBUTE_READONLY);
  CreateDirectoryA("sub", nullptr);

  Listing<QwportFileInfo> listing{"a.txt"};
  REQUIRE(listing.next() == 5);
  CHECK(listing.record.written == static_cast<int32_t>(status_of("a.txt").st_mtime));
  CHECK(listing.record.accessed == static_cast<int32_t>(status_of("a.txt").st_atime));
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
  for (const int64_t mark : {QWPORT_FINDINFO_ERROR, QWPORT_FINDINFO_LAST, QWPORT_FINDINFO_LAST}) {
    CHECK(listing.next() == 0);
    CHECK(listing.handle == mark);
    CHECK(core.calls() == reports(ENOENT));
  }
  CHECK(listing.record.size == 7);

  listing.handle = QWPORT_FINDINFO_FIRST;
  CHECK(GETFILEINFOQQ(nullptr, &listing.record, &listing.handle, 3) == 0);
  CHECK(listing.handle == QWPORT_FINDINFO_ERROR);
}

TEST_CASE("a mark is never handed to the host as a find handle") {
  RecordingCore core;
  const TestDir dir;
  make_file("a");
  const ImportOverride find_next(
      library(), "_findnext64", +[] { return ++find_next_calls, -1; });
  Listing<QwportFileInfo> listing{"a", QWPORT_FINDINFO_LAST};
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
  for (const int64_t size : {2 * gib - 1, 2 * gib, 3 * gib, 4 * gib, 5 * gib}) {
    make_sparse_file("big", size);
    Listing<QwportFileInfo> short_listing{"big"};
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
    core.calls();
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
  CHECK(find_file("here.txt ", "QWPORT_DIRS") == here);
  CHECK(core.calls().empty());
  CHECK(find_file("there.txt", "QWPORT_DIRS ") == dir.path() + "\\sub one\\there.txt");
  core.calls();
  CHECK(find_file("nowhere.txt", "QWPORT_DIRS").empty());
  CHECK(core.calls() == reports(ENOENT) + ' ' + reports(ENOENT));
  CHECK(find_file("there.txt", "QWPORT_NONE").empty());
  core.calls();
  CHECK(find_file("here.txt", "", 4) == here.substr(0, 4));
  CHECK(core.calls() == reports(EINVAL));
}

TEST_CASE("FINDFILEQQ reports answers that change, and memory that cannot be had") {
  RecordingCore core;
  SUBCASE("the second search needs more room, or fails") {
    const ImportOverride search(
        library(), "SearchPathA", +[](const char *, const char *, const char *, DWORD size, char *, char **) {
          SetLastError(ERROR_ACCESS_DENIED);
          return size == 0 ? 10 : answer_of_second_call;
        });
    for (const auto &[answer, code] : {std::pair{15U, 4}, {0U, EACCES}}) {
      answer_of_second_call = answer;
      CHECK(find_file("a", "QWPORT_NONE").empty());
      CHECK(core.calls() == reports(code) + ' ' + reports(code));
    }
  }
  SUBCASE("the variable changes") {
    const FailingCall search("SearchPathA", ERROR_FILE_NOT_FOUND);
    const ImportOverride variable(
        library(), "GetEnvironmentVariableA",
        +[](const char *, char *, DWORD size) { return size == 0 ? 10 : answer_of_second_call; });
    for (const DWORD answer : {0U, 15U, 100U}) {
      answer_of_second_call = answer;
      CHECK(find_file("a", "QWPORT_DIRS").empty());
      CHECK(core.calls() == reports(ENOENT) + ' ' + reports(4));
    }
  }
  SUBCASE("no memory") {
    const FailingCall allocation("malloc");
    CHECK(find_file("a", "QWPORT_DIRS").empty());
    CHECK(core.calls() == reports(ENOMEM));
  }
}

TEST_CASE("DELFILESQQ deletes plain matching files in their directory, counts them and reports 22") {
  RecordingCore core;
  const TestDir dir;
  CreateDirectoryA("sub", nullptr);
  CreateDirectoryA("sub\\dir.tmp", nullptr);
  for (const char *name : {"sub\\a.tmp", "sub\\b.tmp", "sub\\keep.txt", "sub\\readonly.tmp", "here.tmp"})
    make_file(name);
  SetFileAttributesA("sub\\readonly.tmp", FILE_ATTRIBUTE_READONLY);

  CHECK(with_name(DELFILESQQ, "sub\\*.tmp  ") == 2);
  CHECK(core.calls() == reports(EINVAL));
  CHECK_FALSE(file_exists("sub\\a.tmp"));
  for (const char *name : {"sub\\keep.txt", "sub\\readonly.tmp", "sub\\dir.tmp", "here.tmp"}) CHECK(file_exists(name));
  CHECK(with_name(DELFILESQQ, "here.tmp") == 1);
  core.calls();
  for (const auto &[name, code] : {std::pair{"*.none", ENOENT}, {"none\\*", ENOENT}, {"sub\\", EINVAL}}) {
    CHECK(with_name(DELFILESQQ, name) == 0);
    CHECK(core.calls() == reports(code));
  }
  CHECK(with_name(DELFILESQQ, std::string(300, 'x')) == 0);
  CHECK(std::filesystem::current_path().string() == dir.path());
}

TEST_CASE("DELFILESQQ reports each way in which a host call fails") {
  struct {
    const char *function;
    intptr_t result;
    DWORD error;
    int32_t code;
  } const cases[] = {
      {"FindFirstFileA", -1, 2, ENOENT},  {"FindFirstFileA", -1, 3, ENOENT},      {"FindFirstFileA", -1, 18, ENOENT},
      {"FindFirstFileA", -1, 16, EINVAL}, {"FindFirstFileA", -1, 8, ENOMEM},      {"FindFirstFileA", -1, 5, EINVAL},
      {"FindNextFileA", 0, 2, ENOENT},    {"FindNextFileA", 0, 3, ENOENT},        {"FindNextFileA", 0, 16, ENOENT},
      {"FindNextFileA", 0, 18, EINVAL},   {"FindNextFileA", 0, 8, ENOMEM},        {"GetFullPathNameA", 0, 3, ENOENT},
      {"malloc", 0, 0, ENOMEM},           {"GetCurrentDirectoryA", 0, 5, EACCES},
  };
  for (const auto &expected : cases) {
    CAPTURE(expected.function);
    CAPTURE(expected.error);
    RecordingCore core;
    const TestDir dir;
    make_file("a.tmp");
    const FailingCall call(expected.function, expected.error, expected.result);
    CHECK(with_name(DELFILESQQ, "*.tmp") == (expected.function == std::string("FindNextFileA") ? 1 : 0));
    CHECK(core.calls() == reports(expected.code));
  }
}

TEST_CASE("RENAMEFILEQQ refuses a new name that exists, RENAME replaces it") {
  RecordingCore core;
  const TestDir dir;
  make_file("a", "a");
  make_file("b");
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

  const FailingCall allocation("malloc");
  CHECK(with_names(RENAME, "b", "d") == ENOMEM);
  CHECK(with_names(RENAMEFILEQQ, "b", "d") == 0);
  CHECK(file_exists("b"));
}

TEST_CASE("UNLINK deletes a file") {
  RecordingCore core;
  const TestDir dir;
  make_file("a");
  for (const int32_t result : {0, ENOENT}) CHECK(with_name(UNLINK, "a  ") == result);
  CHECK_FALSE(file_exists("a"));
  CHECK(IERRNO() == ENOENT);
  CHECK(UNLINK(nullptr, 1) == ENOMEM);
}

TEST_CASE("attributes are set but not those of volumes and directories; times are set") {
  RecordingCore core;
  const TestDir dir;
  make_file("a");
  CHECK(with_value(SETFILETIMEQQ, "a", 1'000'000'000) == 1);
  CHECK(status_of("a").st_mtime == 1'000'000'000);
  CHECK(status_of("a").st_atime == 1'000'000'000);
  CHECK(with_value(SETFILETIMEQQ, "a", QWPORT_TIME_NOW) == 1);
  CHECK(status_of("a").st_mtime > 1'700'000'000);
  CHECK(with_value(SETFILEACCESSQQ, "a ", QWPORT_FILE_READONLY) == 1);
  CHECK(core.calls().empty());
  for (const int32_t access : {QWPORT_FILE_DIRECTORY, QWPORT_FILE_VOLUME}) {
    CHECK(with_value(SETFILEACCESSQQ, "a", access) == 0);
    CHECK(core.calls() == reports(EINVAL));
  }
  CHECK(is_read_only("a"));
  CHECK(with_value(SETFILEACCESSQQ, "missing", 0) == 0);
  CHECK(core.calls() == reports(EACCES));
  CHECK(with_value(SETFILETIMEQQ, "missing", QWPORT_TIME_NOW) == 0);
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
  CHECK(with_name(DELDIRQQ, "new dir") == 0);
  CHECK(core.calls().empty());

  make_file("file");
  for (const auto &[name, code] : {std::pair{"missing", ENOENT}, {"file", ENOTDIR}}) {
    CHECK(with_name(CHDIR, name) == code);
    CHECK(IERRNO() == code);
  }
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
  const auto check = [](size_t length, int32_t expected_result, const std::string &expected) {
    GuardedText text(length);
    CHECK(GETCWD(text.data(), text.size()) == expected_result);
    CHECK(text.str() == expected);
  };
  const size_t length = dir.path().size();
  check(length + 2, 0, dir.path() + "  ");
  check(length, 0, dir.path());
  CHECK(core.calls().empty());
  check(length - 1, ERANGE, std::string(length - 1, ' '));
  CHECK(IERRNO() == ERANGE);
  core.calls();
  check(0, ENOENT, "");
  CHECK(core.calls().empty());
  CHECK(IERRNO() == ENOENT);
  const FailingCall allocation("malloc");
  check(3, ENOMEM, "###");
}
