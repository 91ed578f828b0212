// SPDX-License-Identifier: MIT
// Files on simulated hosts, where the real one does not show a rule.
#include <algorithm>
#include <array>
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

// ---- What a terminal's device and a listing answer ----------------------------------------------

DWORD file_type;

// A listing of one entry.
std::string deleted;
HANDLE list_one(const char *, WIN32_FIND_DATAA *entry) {
  *entry = {};
  entry->dwFileAttributes = attributes;
  std::strcpy(entry->cFileName, "a.tmp");
  return nullptr;
}
BOOL note_deleted(const char *path) { return deleted = path, TRUE; }

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
}

TEST_CASE("DELFILESQQ keeps protected files, and reports how its listing ends") {
  RecordingCore core;
  const ImportOverride first(library(), "FindFirstFileA", list_one), remove(library(), "DeleteFileA", note_deleted);
  const FailingCall close("FindClose", 0, TRUE), next("FindNextFileA", ERROR_NO_MORE_FILES);
  for (const DWORD kind : {FILE_ATTRIBUTE_READONLY, FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_SYSTEM,
                           FILE_ATTRIBUTE_DIRECTORY, FILE_ATTRIBUTE_ARCHIVE, FILE_ATTRIBUTE_NORMAL}) {
    attributes = kind;
    CHECK(call(DELFILESQQ, "C:\\*.tmp") == (kind >= FILE_ATTRIBUTE_ARCHIVE ? 1 : 0));
    CHECK(deleted == (kind >= FILE_ATTRIBUTE_ARCHIVE ? "C:\\a.tmp" : ""));
  }
  const std::tuple<const char *, intptr_t, DWORD, int32_t> failures[] = {
      {"FindFirstFileA", -1, 2, ENOENT},  {"FindFirstFileA", -1, 18, ENOENT}, {"FindFirstFileA", -1, 8, ENOMEM},
      {"FindFirstFileA", -1, 16, EINVAL}, {"FindNextFileA", 0, 16, ENOENT},   {"FindNextFileA", 0, 8, ENOMEM}};
  core.calls();
  for (const auto &[function, result, error, code] : failures) {
    CAPTURE(error);
    const FailingCall failure(function, error, result);
    CHECK_CALLS(call(DELFILESQQ, "*.tmp"), result + 1, reports(code));
  }
}

TEST_CASE("an absent text and a lack of memory have numbers, or 0 and a report") {
  RecordingCore core;
  CHECK((CHMOD(nullptr, "+w", 1, 2) == EINVAL && CHMOD("a", nullptr, 1, 2) == EINVAL));
  CHECK((CHDIR(nullptr, 1) == ENOMEM && STAT(nullptr, nullptr, 3) == ENOMEM));
  core.calls();
  CHECK_CALLS(FULLPATHQQ("b.txt", nullptr, 5, 10), 0, reports(EINVAL));
  int64_t listing_under_way = QWPORT_FINDINFO_LAST;
  CHECK_CALLS(GETFILEINFOQQ(nullptr, nullptr, &listing_under_way, 3), 0, reports(EINVAL) + ' ' + reports(ENOENT));
  const FailingCall memory("malloc");
  for (const int32_t code : {call(ACCESS, "a", "r"), call(CHMOD, "a", "+w"), call(RENAME, "a", "b"), call(UNLINK, "a")})
    CHECK(code == ENOMEM);
  core.calls();
  CHECK_CALLS(outcome(FINDFILEQQ, "a", "QWPORT_NONE", Room{2}), "0|  ", reports(ENOMEM));
}
