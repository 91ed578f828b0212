// SPDX-License-Identifier: MIT
// Files on simulated hosts, where the real one does not show a rule.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

#include <sys/stat.h>

#include "library_test.h"

namespace {

// ---- The status of a file that the host describes -----------------------------------------------

int c_mode;
DWORD attributes;
int64_t size;
constexpr int64_t seconds_to_1970 = 11'644'473'600;

int tell_status(const char *, struct _stat64 *status) {
  *status = {};
  status->st_mode = static_cast<unsigned short>(c_mode);
  status->st_ino = 7;
  status->st_size = size;
  status->st_atime = 4'294'967'296 + 1;
  status->st_mtime = 2;
  status->st_ctime = 3;
  return 0;
}

FILETIME file_time(int64_t seconds) {
  const int64_t ticks = (seconds + seconds_to_1970) * 10'000'000;
  return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

BOOL tell_information(HANDLE, BY_HANDLE_FILE_INFORMATION *file) {
  *file = {};
  file->dwFileAttributes = attributes;
  file->nFileSizeLow = static_cast<DWORD>(size);
  file->nFileSizeHigh = static_cast<DWORD>(size >> 32);
  file->nNumberOfLinks = 4;
  file->ftLastAccessTime = file_time(1);
  file->ftLastWriteTime = file_time(2);
  file->ftCreationTime = file_time(3);
  return TRUE;
}

intptr_t tell_entry(const char *, struct __finddata64_t *entry) {
  *entry = {};
  entry->size = size;
  entry->time_create = 1;
  entry->time_write = 2;
  entry->time_access = 3;
  return 0;
}

struct SimulatedFile {
  RecordingCore core;
  ImportOverride status{library(), "_stat64", tell_status};
  ImportOverride information{library(), "GetFileInformationByHandle", tell_information};
  ImportOverride listing{library(), "_findfirst64", tell_entry};
};

using Status = std::array<int64_t, 14>;

// The result and the elements, widened, of an array whose mode had a value before.
template <class Subject, class Element, class... Length>
Status status_of(int32_t (*routine)(const Subject *, Element *, Length...), auto subject, int32_t old_mode = 0) {
  std::array<Element, 13> statb{};
  statb.fill(-77);
  statb[2] = old_mode;
  Status status{call(routine, subject, statb.data())};
  std::copy(statb.begin(), statb.end(), status.begin() + 1);
  return status;
}

template <class Record> std::string listed(int32_t (*routine)(const char *, Record *, int64_t *, size_t)) {
  Record record{};
  int64_t handle = QWPORT_FINDINFO_FIRST;
  call(routine, "big", &record, &handle);
  CHECK((record.created == 1 && record.written == 2 && record.accessed == 3));
  return std::to_string(record.size);
}

// ---- What a terminal's device, a search and a listing answer ------------------------------------

DWORD file_type;

const DWORD *next_size;
DWORD tell_next_size() {
  SetLastError(ERROR_ACCESS_DENIED);
  return *next_size++;
}

// A listing of one entry; and a host without limits, which some have, for full paths.
std::string pattern, deleted;
HANDLE list_one(const char *path, WIN32_FIND_DATAA *entry) {
  pattern = path;
  *entry = {};
  entry->dwFileAttributes = attributes;
  std::strcpy(entry->cFileName, "a.tmp");
  return nullptr;
}
BOOL note_deleted(const char *path) { return deleted = path, TRUE; }
DWORD make_full(const char *name, DWORD room, char *path, char **file_part) {
  const auto length = static_cast<DWORD>(std::strlen(name) + 3);
  if (room <= length) return length + 1;
  *file_part = std::strcpy(path, "C:\\") + 3;
  std::strcpy(*file_part, name);
  return length;
}

int renames;

}  // namespace

TEST_CASE_FIXTURE(SimulatedFile,
                  "by name the mode keeps old bits of what the C run-time calls executable; else it "
                  "follows the extension; what does not fit INTEGER(4) differs between the routines") {
  constexpr int64_t gib = int64_t{1} << 30;
  constexpr int readable = _S_IFREG | _S_IREAD;
  struct Seen {
    int32_t result, mode, size;
  };
  const struct {
    const char *name;
    int c_mode;
    DWORD attributes;
    int64_t size;
    int32_t old_mode;
    Seen by_name, by_unit;
  } rows[] = {
      {"a", readable | _S_IWRITE | _S_IEXEC, 0, 2 * gib - 1, 0, {0, 0333, 2147483647}, {0, 0100666, 2147483647}},
      {"a", readable | _S_IEXEC, 1, 2 * gib, 0100000, {ERANGE, 0100111, -1}, {0, 0100444, -2147483647 - 1}},
      {"a.bat", _S_IFDIR | _S_IREAD | _S_IEXEC, 16, 4 * gib - 1, 0777, {ERANGE, 040555, -1}, {0, 040000, -1}},
      {"a.ksh", readable, 1, 4 * gib, 0777, {ERANGE, 0100555, -1}, {ERANGE, 0100555, -1}},
      {"a.csh", readable | _S_IWRITE, 32, 6 * gib, 0777, {ERANGE, 0100666, -1}, {ERANGE, 0100666, -1}}};
  for (const auto &[name, host_mode, host_attributes, host_size, old_mode, by_name, by_unit] : rows) {
    c_mode = host_mode;
    attributes = host_attributes;
    size = host_size;
    CAPTURE(size);
    recording_text("__msportlib_d_gethandle", name);
    CHECK_CALLS(status_of(STAT, name, old_mode),
                (Status{by_name.result, 0, 7, by_name.mode, 1, 1, 1, 0, by_name.size, 1, 2, 3, 1, -77}),
                (by_name.result == 0 ? "" : records(ERANGE)));
    CHECK(status_of(STATI8, name, old_mode) ==
          Status{0, 0, 7, by_name.mode, 1, 1, 1, 0, size, 4'294'967'297, 2, 3, 1, -77});
    CHECK(status_of(FSTAT, 11, old_mode) ==
          Status{by_unit.result, 0, 0, by_unit.mode, 4, 1, 1, 0, by_unit.size, 1, 2, 3, 1, -77});
    CHECK(status_of(FSTATI8, 11, old_mode) == Status{0, 0, 0, by_unit.mode, 4, 1, 1, 0, size, 1, 2, 3, 1, -77});
    core.calls();
    CHECK_CALLS(listed(GETFILEINFOQQ), std::to_string(by_name.size), (by_name.result == 0 ? "" : reports(ERANGE)));
    CHECK_CALLS(listed(GETFILEINFOQQI8), std::to_string(size), "");
  }
}

TEST_CASE("ISATTY and TTYNAM know a terminal by its device; TTYNAM leaves blanks for all else") {
  const std::string asked = "__msportlib_d_gethandle(11, null, null)", named = "__msportlib_d_gethandle(11, &, &)",
                    bad = ' ' + reports(EBADF);
  const struct {
    int64_t handle;
    DWORD file_type;
    std::string answers, calls;
  } rows[] = {{0, FILE_TYPE_DISK, "1CONOUT$  ", asked + ' ' + named},  // a unit without a handle
              {1234, FILE_TYPE_CHAR, "1CONOUT$  ", asked + ' ' + named},
              {1234, FILE_TYPE_DISK, "0         ", asked + ' ' + named + ' ' + reports(ENOTTY)},
              {-1, FILE_TYPE_CHAR, "0         ", asked + bad + ' ' + named + bad}};
  RecordingCore core;
  const ImportOverride type(library(), "GetFileType", [] { return file_type; });
  recording_text("__msportlib_d_gethandle", "CONOUT$");
  for (const auto &row : rows) {
    core.answer("__msportlib_d_gethandle", row.handle);
    file_type = row.file_type;
    const std::string is_terminal = outcome(ISATTY, 11);
    CHECK_CALLS(is_terminal + outcome(TTYNAM, Room{9}, 11), row.answers, row.calls);
  }
  const FailingCall information("GetFileInformationByHandle");
  core.answer("__msportlib_d_gethandle", 1234);
  CHECK_CALLS(status_of(FSTAT, 11)[0], EBADF, named + ' ' + records(EBADF));
}

TEST_CASE("FINDFILEQQ reports answers that change") {
  static size_t room;
  const ImportOverride allocate(library(), "malloc", [](size_t length) { return std::malloc(room = length); });
  const ImportOverride search(library(), "SearchPathA",
                              [](const char *, const char *, const char *, DWORD length, char *, char **) {
                                CHECK(length <= room);
                                return tell_next_size();
                              });
  const ImportOverride variable(library(), "GetEnvironmentVariableA", tell_next_size);
  // The places' path: its size and its length; the same of the variable, and of the path in its directories.
  const std::tuple<std::vector<DWORD>, int32_t, int32_t> rows[] = {{{10, 15, 0, 10, 15}, EINTR, EINTR},
                                                                   {{10, 0, 0, 10, 0}, EACCES, EACCES},
                                                                   {{0, 10, 0}, EACCES, EINTR},
                                                                   {{0, 10, 15}, EACCES, EINTR}};
  RecordingCore core;
  for (const auto &[sizes, first, second] : rows) {
    next_size = sizes.data();
    CHECK_CALLS(outcome(FINDFILEQQ, "a", "QWPORT_NONE", Room{2}), "0|  ", reports(first) + ' ' + reports(second));
    CHECK(next_size == sizes.data() + sizes.size());
  }
}

TEST_CASE("DELFILESQQ keeps protected files, hands on 259 characters of a pattern and reports how its listing ends") {
  RecordingCore core;
  const ImportOverride first(library(), "FindFirstFileA", list_one), remove(library(), "DeleteFileA", note_deleted),
      full(library(), "GetFullPathNameA", make_full);
  const FailingCall close("FindClose", 0, TRUE), next("FindNextFileA", ERROR_NO_MORE_FILES);
  for (const DWORD kind : {FILE_ATTRIBUTE_READONLY, FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_SYSTEM,
                           FILE_ATTRIBUTE_DIRECTORY, FILE_ATTRIBUTE_ARCHIVE, FILE_ATTRIBUTE_NORMAL}) {
    attributes = kind;
    CHECK(call(DELFILESQQ, "*.tmp") == (kind >= FILE_ATTRIBUTE_ARCHIVE ? 1 : 0));
    CHECK(deleted == (kind >= FILE_ATTRIBUTE_ARCHIVE ? "C:\\a.tmp" : ""));
  }
  const std::pair<size_t, size_t> lengths[] = {{258, 258}, {259, 259}, {260, 259}, {261, 0}};
  for (const auto &[given, handed_on] : lengths) {
    pattern = "C:\\";
    call(DELFILESQQ, std::string(given, 'x'));
    CHECK(pattern == "C:\\" + std::string(handed_on, 'x'));
  }
  const std::tuple<const char *, intptr_t, DWORD, int32_t> failures[] = {
      {"FindFirstFileA", -1, 2, ENOENT}, {"FindFirstFileA", -1, 3, ENOENT},  {"FindFirstFileA", -1, 18, ENOENT},
      {"FindFirstFileA", -1, 8, ENOMEM}, {"FindFirstFileA", -1, 16, EINVAL}, {"FindNextFileA", 0, 2, ENOENT},
      {"FindNextFileA", 0, 3, ENOENT},   {"FindNextFileA", 0, 16, ENOENT},   {"FindNextFileA", 0, 8, ENOMEM}};
  core.calls();
  for (const auto &[function, result, error, code] : failures) {
    CAPTURE(error);
    const FailingCall failure(function, error, result);
    CHECK_CALLS(call(DELFILESQQ, "*.tmp"), result + 1, reports(code));
  }
}

TEST_CASE("RENAME replaces a target that is gone when it is to be deleted") {
  const FailingCall remove("DeleteFileA");
  const ImportOverride rename(library(), "rename", [] { return errno = EEXIST, renames++ == 0 ? -1 : 0; });
  CHECK((call(RENAME, "b", "e") == 0 && renames == 2));
}

TEST_CASE("an absent text and a lack of memory have numbers, or 0 and a report") {
  RecordingCore core;
  CHECK((CHMOD(nullptr, "+w", 1, 2) == EINVAL && CHMOD("a", nullptr, 1, 2) == EINVAL));
  CHECK((CHDIR(nullptr, 1) == ENOMEM && STAT(nullptr, nullptr, 3) == ENOMEM));
  core.calls();
  CHECK_CALLS(FULLPATHQQ("b.txt", nullptr, 5, 10), 0, reports(EINVAL));
  {
    const FailingCall full_path("GetFullPathNameA", ERROR_INVALID_DRIVE);
    CHECK_CALLS(outcome(FULLPATHQQ, "b.txt", Room{3}), "0|   ", reports(ENOENT));
  }
  int64_t listing_under_way = QWPORT_FINDINFO_LAST;
  CHECK_CALLS(GETFILEINFOQQ(nullptr, nullptr, &listing_under_way, 3), 0, reports(EINVAL) + ' ' + reports(ENOENT));
  const FailingCall memory("malloc");
  for (const int32_t code : {call(ACCESS, "a", "r"), call(CHMOD, "a", "+w"), call(RENAME, "a", "b"), call(UNLINK, "a")})
    CHECK(code == ENOMEM);
  CHECK(outcome(GETCWD, Room{3}) == "12|###");
  core.calls();
  for (const int32_t none : {call(DELFILESQQ, "a"), call(RENAMEFILEQQ, "a", "b"), call(FULLPATHQQ, "a", Room{3})})
    CHECK((none == 0 && GETLASTERROR() == ENOMEM));
  core.calls();
  CHECK_CALLS(outcome(FINDFILEQQ, "a", "QWPORT_NONE", Room{2}), "0|  ", reports(ENOMEM));
}
