// SPDX-License-Identifier: MIT
// STAT and FSTAT in both widths, on real files and on a simulated host.
#include <algorithm>
#include <array>

#include <sys/stat.h>
#include <sys/utime.h>

#include "library_test.h"

namespace {

constexpr int64_t untouched = -77;
using Status = std::array<int64_t, 13>;

// The elements, widened, of an array that was filled with one value.
template <class Subject, class Element, class... Length>
Status status_of(int32_t (*routine)(const Subject *, Element *, Length...), auto subject, int32_t expected_result = 0,
                 int64_t filling = untouched) {
  std::array<Element, 13> statb{};
  statb.fill(static_cast<Element>(filling));
  CHECK(call(routine, subject, statb.data()) == expected_result);
  Status status{};
  std::copy(statb.begin(), statb.end(), status.begin());
  return status;
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

unsigned short simulated_mode;

int simulated_stat(const char *, struct _stat64 *status) {
  *status = {};
  status->st_mode = simulated_mode;
  status->st_ino = 7;
  status->st_atime = 4'294'967'296 + 1;
  return 0;
}

}  // namespace

TEST_CASE_FIXTURE(InTestDir, "the status of a real file by name and by unit") {
  make_file("plain.txt", "12345");
  struct __utimbuf64 times = {1'000'000'001, 1'100'000'001};
  _utime64("plain.txt", &times);
  const UnitFile opened("plain.txt");
  const char *const name = "plain.txt  ";
  for (Status status : {status_of(STAT, name), status_of(STATI8, name), status_of(FSTAT, 11), status_of(FSTATI8, 11),
                        status_of(LSTAT, name), status_of(LSTATI8, name)}) {
    status[1] = status[10] = 0;  // the host's number for the file, and the time of its change
    CHECK(status == Status{0, 0, 0100666, 1, 1, 1, 0, 5, 1'000'000'001, 1'100'000'001, 0, 1, untouched});
  }
  // Times that the host cannot convert are -1.
  const FailingCall conversion("SystemTimeToFileTime");
  const Status status = status_of(FSTATI8, 11);
  CHECK((status[8] == -1 && status[9] == -1 && status[10] == -1));
}

TEST_CASE_FIXTURE(InTestDir, "the mode follows directory, write right and extension") {
  CreateDirectoryA("sub", nullptr);
  CHECK(status_of(STAT, "sub")[2] == 040777);
  const UnitFile directory("sub", FILE_FLAG_BACKUP_SEMANTICS);
  CHECK(status_of(FSTAT, 11)[2] == 040000);
  const std::pair<const char *, int64_t> modes[] = {
      {"B.KSH", 0100777}, {"a.exe.txt", 0100666}, {"readonly.txt", 0100444}, {"readonly.ksh", 0100555}};
  for (const auto &[name, mode] : modes) {
    make_file(name);
    if (name[0] == 'r') SetFileAttributesA(name, FILE_ATTRIBUTE_READONLY);
    const UnitFile opened(name);
    CHECK((status_of(STAT, name)[2] == mode && status_of(FSTAT, 11)[2] == mode));
  }
}

TEST_CASE("a file that the C run-time calls executable gains bits on the old mode") {
  const ImportOverride stat(library(), "_stat64", simulated_stat);
  const auto check = [](const char *name, int host_mode, int64_t old_mode, int64_t mode) {
    simulated_mode = static_cast<unsigned short>(host_mode);
    CHECK(status_of(STAT, name, 0, old_mode)[2] == mode);
  };
  check("a", _S_IFREG | _S_IREAD | _S_IWRITE | _S_IEXEC, 0, 0333);
  check("a", _S_IFREG | _S_IREAD | _S_IEXEC, 0100000, 0100111);
  check("a", _S_IFDIR | _S_IREAD | _S_IEXEC, 0777, 040555);
  check("a.ksh", _S_IFREG | _S_IREAD, 0777, 0100555);
  const Status status = status_of(STAT, "a");
  CHECK((status[1] == 7 && status[8] == 1));  // INTEGER(4) keeps the low half of a time
  CHECK(status_of(STATI8, "a")[8] == 4'294'967'297);
}

TEST_CASE("files of 2 GiB and more differ between the four routines") {
  constexpr int64_t gib = int64_t{1} << 30;
  struct {
    int64_t size;
    int32_t stat_result;
    int64_t stat_size;
    int32_t fstat_result;
    int64_t fstat_size;
  } const cases[] = {{2 * gib - 1, 0, 2 * gib - 1, 0, 2 * gib - 1},
                     {2 * gib, ERANGE, -1, 0, -2 * gib},
                     {4 * gib - 1, ERANGE, -1, 0, -1},
                     {4 * gib, ERANGE, -1, ERANGE, -1}};
  RecordingCore core;
  const TestDir dir;
  for (const auto &expected : cases) {
    CAPTURE(expected.size);
    make_sparse_file("big", expected.size);
    const UnitFile opened("big");
    const Status by_name = status_of(STAT, "big", expected.stat_result);
    CHECK(core.calls() == (expected.stat_result == 0 ? "" : records(ERANGE)));
    const Status by_unit = status_of(FSTAT, 11, expected.fstat_result);
    CHECK((by_name[7] == expected.stat_size && by_name[2] == 0100666));
    CHECK((by_unit[7] == expected.fstat_size && by_unit[2] == 0100666));
    CHECK((status_of(STATI8, "big")[7] == expected.size && status_of(FSTATI8, 11)[7] == expected.size));
    core.calls();
  }
}

TEST_CASE_FIXTURE(InTestDir, "a failure is recorded and leaves the array alone") {
  Status unchanged{};
  unchanged.fill(untouched);
  CHECK(status_of(STAT, "missing", ENOENT) == unchanged);
  CHECK(core.calls() == records(ENOENT));
  CHECK(status_of(STATI8, "missing", ENOENT) == unchanged);
  for (const auto &[handle, code] : {std::pair{-1, EINVAL}, {0, EBADF}}) {
    core.answer("__msportlib_d_gethandle", handle);
    CHECK((status_of(FSTAT, 11, code) == unchanged && IERRNO() == code));
    CHECK(status_of(FSTATI8, 11, code) == unchanged);
  }
  CHECK(STAT(nullptr, nullptr, 3) == ENOMEM);
}
