// SPDX-License-Identifier: MIT
// STAT and FSTAT in both widths, on real files and on a simulated host.
#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>

#include <io.h>
#include <sys/stat.h>
#include <sys/utime.h>
#include <windows.h>

#include "guarded_text.h"
#include "import_override.h"
#include "library.h"
#include "qwport.h"
#include "recording.h"
#include "test_dir.h"

namespace {

constexpr int64_t untouched = -77;
const int32_t unit = 11;

using Status = std::array<int64_t, 13>;

// Calls a routine with an array filled with one value, and widens what it left there.
template <class Element, class Routine>
Status status_of(Routine routine, int32_t expected_result, int64_t filling = untouched) {
  std::array<Element, 13> statb{};
  statb.fill(static_cast<Element>(filling));
  CHECK(routine(statb.data()) == expected_result);
  Status status{};
  std::copy(statb.begin(), statb.end(), status.begin());
  return status;
}

Status stat_of(const std::string &name, int32_t expected_result = 0, int64_t filling = 0) {
  return status_of<int32_t>(
      [&name](int32_t *statb) {
        GuardedText text(name);
        return STAT(text.data(), statb, text.size());
      },
      expected_result, filling);
}

Status stati8_of(const std::string &name, int32_t expected_result = 0, int64_t filling = 0) {
  return status_of<int64_t>([&name](int64_t *statb) { return STATI8(name.data(), statb, name.size()); },
                            expected_result, filling);
}

// A file that the recording core gives out as the unit's.
class UnitFile {
 public:
  explicit UnitFile(const std::string &name, DWORD flags = 0)
      : handle_(CreateFileA(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                            flags, nullptr)) {
    recording_answer("__msportlib_d_gethandle", reinterpret_cast<int64_t>(handle_));
    recording_text("__msportlib_d_gethandle", name.c_str());
  }
  ~UnitFile() { CloseHandle(handle_); }
  UnitFile(const UnitFile &) = delete;
  UnitFile &operator=(const UnitFile &) = delete;

 private:
  HANDLE handle_;
};

Status fstat_of(int32_t expected_result = 0) {
  return status_of<int32_t>([](int32_t *statb) { return FSTAT(&unit, statb); }, expected_result);
}

Status fstati8_of(int32_t expected_result = 0) {
  return status_of<int64_t>([](int64_t *statb) { return FSTATI8(&unit, statb); }, expected_result);
}

void set_times(const std::string &name, int64_t access, int64_t modification) {
  struct __utimbuf64 times {};
  times.actime = access;
  times.modtime = modification;
  _utime64(name.c_str(), &times);
}

unsigned short simulated_mode;

int simulated_stat(const char *, struct _stat64 *status) {
  *status = {};
  status->st_mode = simulated_mode;
  status->st_ino = 7;
  status->st_atime = 4'294'967'296 + 1;
  status->st_mtime = 2;
  status->st_ctime = 3;
  return 0;
}

int32_t mode_for(const std::string &name, int host_mode, int32_t old_mode) {
  simulated_mode = static_cast<unsigned short>(host_mode);
  const ImportOverride stat(library(), "_stat64", simulated_stat);
  return static_cast<int32_t>(stat_of(name, 0, old_mode)[2]);
}

BOOL WINAPI refuse_conversion(const SYSTEMTIME *, FILETIME *) { return FALSE; }
void *no_memory(size_t) { return nullptr; }

}  // namespace

TEST_CASE("the status of a real file by name and by unit") {
  RecordingCore core;
  const TestDir dir;
  make_file("plain.txt", "12345");
  set_times("plain.txt", 1'000'000'001, 1'100'000'001);
  const UnitFile opened("plain.txt");

  const Status by_name = stat_of("plain.txt  ", 0, untouched);
  const Status wide_by_name = stati8_of("plain.txt", 0, untouched);
  const Status by_unit = fstat_of();
  for (const Status &status : {by_name, wide_by_name, by_unit, fstati8_of()}) {
    CHECK(status[0] == 0);
    CHECK(status[2] == 0100666);
    CHECK(status[3] == 1);
    CHECK(status[4] == 1);
    CHECK(status[5] == 1);
    CHECK(status[6] == 0);
    CHECK(status[7] == 5);
    CHECK(status[8] == 1'000'000'001);
    CHECK(status[9] == 1'100'000'001);
    CHECK(status[11] == 1);
    CHECK(status[12] == untouched);
  }
  int32_t second_name[13] = {};
  CHECK(LSTAT("plain.txt", second_name, 9) == 0);
  CHECK(second_name[7] == 5);
  int64_t wide_second_name[13] = {};
  CHECK(LSTATI8("plain.txt", wide_second_name, 9) == 0);
  CHECK(wide_second_name[7] == 5);
}

TEST_CASE("the mode follows directory, write right and extension") {
  RecordingCore core;
  const TestDir dir;
  CreateDirectoryA("sub", nullptr);
  for (const char *name : {"a.ksh", "B.KSH", "a.exe.txt", "readonly.txt", "readonly.ksh"}) make_file(name);
  for (const char *name : {"readonly.txt", "readonly.ksh"}) SetFileAttributesA(name, FILE_ATTRIBUTE_READONLY);
  CHECK(stat_of("sub")[2] == 040777);
  CHECK(stat_of("a.ksh")[2] == 0100777);
  CHECK(stat_of("B.KSH")[2] == 0100777);
  CHECK(stat_of("a.exe.txt")[2] == 0100666);
  CHECK(stat_of("readonly.txt")[2] == 0100444);
  CHECK(stat_of("readonly.ksh")[2] == 0100555);
  for (const char *name : {"a.ksh", "readonly.ksh", "readonly.txt"}) {
    const UnitFile opened(name);
    CHECK(fstat_of()[2] == stat_of(name)[2]);
  }
  const UnitFile directory("sub", FILE_FLAG_BACKUP_SEMANTICS);
  CHECK(fstat_of()[2] == 040000);
}

TEST_CASE("a file that the C run-time calls executable gains bits on the old mode") {
  RecordingCore core;
  CHECK(mode_for("a", _S_IFREG | _S_IREAD | _S_IWRITE | _S_IEXEC, 0) == 0333);
  CHECK(mode_for("a", _S_IFREG | _S_IREAD | _S_IEXEC, 0100000) == 0100111);
  CHECK(mode_for("a", _S_IFDIR | _S_IREAD | _S_IEXEC, 0777) == 040555);
  CHECK(mode_for("a.ksh", _S_IFREG | _S_IREAD, 0777) == 0100555);
}

TEST_CASE("INTEGER(4) keeps the low half of a time") {
  RecordingCore core;
  simulated_mode = _S_IFREG;
  const ImportOverride stat(library(), "_stat64", simulated_stat);
  CHECK(stat_of("a")[8] == 1);
  CHECK(stati8_of("a")[8] == 4'294'967'297);
  CHECK(stat_of("a")[1] == 7);
}

TEST_CASE("files of 2 GiB and more differ between the four routines") {
  constexpr int64_t gib = int64_t{1} << 30;
  struct {
    int64_t size;
    int32_t stat_result;
    int64_t stat_size;
    int32_t fstat_result;
    int64_t fstat_size;
  } const cases[] = {
      {2 * gib - 1, 0, 2 * gib - 1, 0, 2 * gib - 1},
      {2 * gib, ERANGE, -1, 0, -2 * gib},
      {3 * gib, ERANGE, -1, 0, -gib},
      {4 * gib, ERANGE, -1, ERANGE, -1},
      {5 * gib, ERANGE, -1, ERANGE, -1},
  };
  for (const auto &expected : cases) {
    CAPTURE(expected.size);
    RecordingCore core;
    const TestDir dir;
    make_sparse_file("big", expected.size);
    const UnitFile opened("big");
    core.calls();
    const Status by_name = stat_of("big", expected.stat_result);
    CHECK(by_name[7] == expected.stat_size);
    CHECK(by_name[2] == 0100666);
    CHECK(core.calls() == (expected.stat_result == 0 ? "" : "for_errsns_load(0, 34, 0, 0, 0)"));
    const Status by_unit = fstat_of(expected.fstat_result);
    CHECK(by_unit[7] == expected.fstat_size);
    CHECK(by_unit[2] == 0100666);
    CHECK(stati8_of("big")[7] == expected.size);
    CHECK(fstati8_of()[7] == expected.size);
  }
}

TEST_CASE("a failure is recorded and leaves the array alone") {
  RecordingCore core;
  const TestDir dir;
  Status unchanged{};
  unchanged.fill(untouched);
  CHECK(stat_of("missing", ENOENT, untouched) == unchanged);
  CHECK(IERRNO() == ENOENT);
  CHECK(core.calls() == "for_errsns_load(0, 2, 0, 0, 0)");
  CHECK(stati8_of("missing", ENOENT, untouched) == unchanged);

  int32_t statb[13] = {};
  CHECK(STAT(nullptr, statb, 3) == ENOMEM);
  {
    const ImportOverride allocation(library(), "malloc", no_memory);
    CHECK(STAT("a", statb, 1) == ENOMEM);
  }
  core.answer("__msportlib_d_gethandle", -1);
  CHECK(fstat_of(EINVAL) == unchanged);
  CHECK(IERRNO() == EINVAL);
  core.answer("__msportlib_d_gethandle", 0);
  CHECK(fstat_of(EBADF) == unchanged);
  CHECK(fstati8_of(EBADF) == unchanged);
  CHECK(IERRNO() == EBADF);
}

TEST_CASE("times that the host cannot convert are -1") {
  RecordingCore core;
  const TestDir dir;
  make_file("a");
  const UnitFile opened("a");
  const ImportOverride conversion(library(), "SystemTimeToFileTime", refuse_conversion);
  const Status status = fstati8_of();
  CHECK((status[8] == -1 && status[9] == -1 && status[10] == -1));
}
