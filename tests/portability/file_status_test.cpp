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

// The four routines, their results widened, on an array that was filled with one value.
template <class Element> Status status_of(auto call, int32_t expected_result, int64_t filling) {
  std::array<Element, 13> statb{};
  statb.fill(static_cast<Element>(filling));
  CHECK(call(statb.data()) == expected_result);
  Status status{};
  std::copy(statb.begin(), statb.end(), status.begin());
  return status;
}

Status stat_of(std::string_view name, int32_t result = 0, int64_t filling = untouched) {
  GuardedText text(name);
  return status_of<int32_t>([&](auto statb) { return STAT(text.data(), statb, text.size()); }, result, filling);
}

Status stati8_of(std::string_view name, int32_t result = 0) {
  return status_of<int64_t>([&](auto statb) { return STATI8(name.data(), statb, name.size()); }, result, untouched);
}

Status fstat_of(int32_t result = 0) {
  return status_of<int32_t>([](auto statb) { return FSTAT(&unit, statb); }, result, untouched);
}

Status fstati8_of(int32_t result = 0) {
  return status_of<int64_t>([](auto statb) { return FSTATI8(&unit, statb); }, result, untouched);
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

TEST_CASE("the status of a real file by name and by unit") {
  RecordingCore core;
  const TestDir dir;
  make_file("plain.txt", "12345");
  struct __utimbuf64 times = {1'000'000'001, 1'100'000'001};
  _utime64("plain.txt", &times);
  const UnitFile opened("plain.txt");
  const auto lstat_of = [](auto statb) { return LSTAT("plain.txt", statb, 9); };
  const auto lstati8_of = [](auto statb) { return LSTATI8("plain.txt", statb, 9); };
  for (Status status : {stat_of("plain.txt  "), stati8_of("plain.txt"), fstat_of(), fstati8_of(),
                        status_of<int32_t>(lstat_of, 0, untouched), status_of<int64_t>(lstati8_of, 0, untouched)}) {
    status[1] = status[10] = 0;  // the host's number for the file, and the time of its change
    CHECK(status == Status{0, 0, 0100666, 1, 1, 1, 0, 5, 1'000'000'001, 1'100'000'001, 0, 1, untouched});
  }
}

TEST_CASE("the mode follows directory, write right and extension") {
  RecordingCore core;
  const TestDir dir;
  CreateDirectoryA("sub", nullptr);
  CHECK(stat_of("sub")[2] == 040777);
  const UnitFile directory("sub", FILE_FLAG_BACKUP_SEMANTICS);
  CHECK(fstat_of()[2] == 040000);
  const std::pair<const char *, int64_t> modes[] = {{"a.ksh", 0100777},
                                                    {"B.KSH", 0100777},
                                                    {"a.exe.txt", 0100666},
                                                    {"readonly.txt", 0100444},
                                                    {"readonly.ksh", 0100555}};
  for (const auto &[name, mode] : modes) {
    make_file(name);
    if (name[0] == 'r') SetFileAttributesA(name, FILE_ATTRIBUTE_READONLY);
    const UnitFile opened(name);
    CHECK(stat_of(name)[2] == mode);
    CHECK(fstat_of()[2] == mode);
  }
}

TEST_CASE("a file that the C run-time calls executable gains bits on the old mode") {
  RecordingCore core;
  const ImportOverride stat(library(), "_stat64", simulated_stat);
  const auto mode_for = [](const char *name, int host_mode, int64_t old_mode) {
    simulated_mode = static_cast<unsigned short>(host_mode);
    return stat_of(name, 0, old_mode)[2];
  };
  CHECK(mode_for("a", _S_IFREG | _S_IREAD | _S_IWRITE | _S_IEXEC, 0) == 0333);
  CHECK(mode_for("a", _S_IFREG | _S_IREAD | _S_IEXEC, 0100000) == 0100111);
  CHECK(mode_for("a", _S_IFDIR | _S_IREAD | _S_IEXEC, 0777) == 040555);
  CHECK(mode_for("a.ksh", _S_IFREG | _S_IREAD, 0777) == 0100555);
  CHECK(stat_of("a")[8] == 1);  // INTEGER(4) keeps the low half of a time
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
  RecordingCore core;
  const TestDir dir;
  for (const auto &expected : cases) {
    CAPTURE(expected.size);
    make_sparse_file("big", expected.size);
    const UnitFile opened("big");
    const Status by_name = stat_of("big", expected.stat_result);
    CHECK(core.calls() == (expected.stat_result == 0 ? "" : "for_errsns_load(0, 34, 0, 0, 0)"));
    const Status by_unit = fstat_of(expected.fstat_result);
    CHECK((by_name[7] == expected.stat_size && by_name[2] == 0100666));
    CHECK((by_unit[7] == expected.fstat_size && by_unit[2] == 0100666));
    CHECK(stati8_of("big")[7] == expected.size);
    CHECK(fstati8_of()[7] == expected.size);
    core.calls();
  }
}

TEST_CASE("a failure is recorded and leaves the array alone") {
  RecordingCore core;
  const TestDir dir;
  Status unchanged{};
  unchanged.fill(untouched);
  CHECK(stat_of("missing", ENOENT) == unchanged);
  CHECK(IERRNO() == ENOENT);
  CHECK(core.calls() == "for_errsns_load(0, 2, 0, 0, 0)");
  CHECK(stati8_of("missing", ENOENT) == unchanged);
  for (const auto &[handle, code] : {std::pair{-1, EINVAL}, {0, EBADF}}) {
    core.answer("__msportlib_d_gethandle", handle);
    CHECK(fstat_of(code) == unchanged);
    CHECK(IERRNO() == code);
    CHECK(fstati8_of(code) == unchanged);
  }
  CHECK(STAT(nullptr, nullptr, 3) == ENOMEM);
  const ImportOverride allocation(
      library(), "malloc", +[](size_t) -> void * { return nullptr; });
  CHECK(stat_of("a", ENOMEM) == unchanged);
}

TEST_CASE("times that the host cannot convert are -1") {
  RecordingCore core;
  const TestDir dir;
  make_file("a");
  const UnitFile opened("a");
  const ImportOverride conversion(
      library(), "SystemTimeToFileTime", +[](const SYSTEMTIME *, FILETIME *) { return FALSE; });
  const Status status = fstati8_of();
  CHECK((status[8] == -1 && status[9] == -1 && status[10] == -1));
}
