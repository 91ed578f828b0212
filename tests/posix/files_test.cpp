// SPDX-License-Identifier: MIT
// Files, directories, descriptors and limits, on real ones and on a simulated host.
#include <algorithm>
#include <set>

#include <fcntl.h>
#include <sys/stat.h>

#include "pxf.h"

namespace {

std::string read_file(int32_t descriptor, int32_t count) {
  return answer(PXFREAD, descriptor, Room{static_cast<size_t>(std::abs(count))}, count);
}

// The names of a directory, and the error that ended their reading.
std::set<std::string> entries(int32_t stream, int32_t dirent) {
  std::set<std::string> names;
  int32_t error = 0;
  while ((error = pxf(PXFREADDIR, stream, dirent)) == 0) CHECK(names.insert(text(dirent, "d_name")).second);
  names.insert("error " + std::to_string(error));
  return names;
}

std::string system_limit(const char *name) { return answer(PXFSYSCONF, call(IPXFCONST, name)); }
std::string limit(const char *path, int32_t length, const char *name) {
  return answer(PXFPATHCONF, path, length, call(IPXFCONST, name));
}
std::string limit(int32_t descriptor, const char *name) {
  return answer(PXFFPATHCONF, descriptor, call(IPXFCONST, name));
}

DWORD simulated_length;
uint64_t simulated_memory;
const char *simulated_system;

}  // namespace

TEST_CASE_FIXTURE(Posix, "a path is its first characters, or all without trailing white space") {
  make_file("plain");
  make_file("plain x");
  // Mode 1 is none, and asks for no more than that the file is there.
  const auto access = [](const char *path, int32_t length) { return pxf(PXFACCESS, path, length, 1); };
  CHECK(seen({access("plain \t\n\v\f\r ", 0), access("plain x", 0), access("plain x.", 7), access("plain", 9)}) ==
        "0 0 0 0");
  CHECK(seen({access("plain x.", 4), access("plain x.", -1), access("missing", 0), GETLASTERROR()}) == "2 22 2 2");
  CHECK(core.calls() == reports(ENOENT) + ' ' + reports(EINVAL) + ' ' + reports(ENOENT));
}

TEST_CASE_FIXTURE(Posix, "descriptors and pipes are opened, written, positioned, read, duplicated and closed") {
  const int32_t file = value_of(PXFOPEN, "data.bin   ", 0, _O_CREAT + _O_RDWR + _O_BINARY, _S_IWRITE);
  CHECK(seen({answer(PXFWRITE, file, "hello\nworld", 11), answer(PXFLSEEK, file, 6, SEEK_SET), read_file(file, 9),
              read_file(file, 3), answer(PXFLSEEK, file, -2, SEEK_END), answer(PXFLSEEK, file, -1, SEEK_CUR)}) ==
        "11|0 6|0 world####|5|0 ###|0|0 9|0 8|0");
  const int32_t copy = value_of(PXFDUP, file), second = copy + 40;
  CHECK(seen({read_file(copy, 1), read_file(file, 1), pxf(PXFDUP2, file, second), read_file(second, 1)}) ==
        "r|1|0 l|1|0 0 d|1|0");
  CHECK(seen({answer(PXFLSEEK, file, -9, SEEK_SET), answer(PXFWRITE, file, "x", -1), read_file(file, -1)}) ==
        "-1|22 -77|22 #|-77|22");
  CHECK(seen({pxf(PXFCLOSE, second), pxf(PXFCLOSE, copy), pxf(PXFCLOSE, file), pxf(PXFCLOSE, file)}) == "0 0 0 9");
  CHECK(seen({answer(PXFDUP, closed), pxf(PXFDUP2, closed, file), answer(PXFLSEEK, closed, 0, 0),
              answer(PXFWRITE, closed, "x", 1), read_file(closed, 1), answer(PXFOPEN, "missing", 0, 0, 0)}) ==
        "-1|9 9 -1|9 -1|9 #|-1|9 -1|2");
  int32_t in = unset, out = unset;
  const int32_t stat = create("stat");
  REQUIRE(pxf(PXFPIPE, &in, &out) == 0);
  CHECK(seen({pxf(PXFFSTAT, in, stat), number(stat, "st_mode") & _S_IFMT, answer(PXFWRITE, out, "through", 7),
              read_file(in, 8), pxf(PXFCLOSE, out), read_file(in, 1), pxf(PXFCLOSE, in)}) ==
        "0 4096 7|0 through#|7|0 0 #|0|0 0");
}

TEST_CASE_FIXTURE(Posix, "files are created, protected, renamed, linked and removed") {
  constexpr int32_t write_access = 2;
  CHECK(seen({pxf(PXFCLOSE, value_of(PXFCREAT, "made", 0, 0666)), is_read_only("made"),
              pxf(PXFCLOSE, value_of(PXFCREAT, "sealed", 0, 0444)), is_read_only("sealed"),
              pxf(PXFACCESS, "sealed", 0, write_access), pxf(PXFCHMOD, "sealed", 0, 0200),
              pxf(PXFACCESS, "sealed", 0, write_access)}) == "0 0 0 1 13 0 0");
  CHECK(seen({answer(PXFUMASK, _S_IWRITE), pxf(PXFCLOSE, value_of(PXFOPEN, "masked", 0, _O_CREAT, _S_IWRITE)),
              answer(PXFUMASK, 0), is_read_only("masked")}) == "0|0 0 128|0 1");
  CHECK(seen({pxf(PXFRENAME, "made  ", 0, "named \t", 0), pxf(PXFLINK, "named", 0, "second", 0),
              pxf(PXFUNLINK, "named", 0), file_exists("second"), file_exists("made")}) == "0 0 0 1 0");
  CHECK(seen({pxf(PXFCHMOD, "made", 0, 0), pxf(PXFRENAME, "made", 0, "b", 0), pxf(PXFUNLINK, "made", 0),
              pxf(PXFLINK, "made", 0, "third", 0)}) == "2 2 2 2");
  static DWORD loaded_from;  // a DLL that lies about in the current directory must not be taken
  const ImportOverride load(
      library(), "LoadLibraryExA",
      +[](const char *, HANDLE, DWORD from) -> HMODULE { return loaded_from = from, nullptr; });
  CHECK(seen({pxf(PXFLINK, "second", 0, "third", 0), loaded_from}) == seen({EFAULT, LOAD_LIBRARY_SEARCH_SYSTEM32}));
}

TEST_CASE_FIXTURE(Posix, "the status of a file comes by path and by descriptor, and its times are set") {
  make_file("plain", "12345");
  const int32_t stat = create("stat"), times = create("utimbuf");
  pxf(PXFINT8SET, times, "actime", 1'000'000'001);
  pxf(PXFINT8SET, times, "modtime", 1'100'000'001);
  CHECK(seen({pxf(PXFUTIME, "plain and more", 0, times), pxf(PXFSTAT, "plain  ", 0, stat), number(stat, "st_atime")}) ==
        "0 0 1000000001");
  const int32_t file = value_of(PXFOPEN, "plain", 0, 0, 0);
  for (const bool is_by_path : {true, false}) {
    CHECK((is_by_path ? pxf(PXFSTAT, "plain", 0, stat) : pxf(PXFFSTAT, file, stat)) == 0);
    CHECK(seen({number(stat, "st_size"), number(stat, "st_nlink"), number(stat, "st_mode") & _S_IFMT,
                number(stat, "st_mtime")}) == "5 1 32768 1100000001");
  }
  CHECK(seen({pxf(PXFFSTAT, file, times), pxf(PXFCLOSE, file), pxf(PXFFSTAT, closed, stat),
              pxf(PXFUTIME, "plain", 0, stat), pxf(PXFSTAT, "missing", 0, stat),
              pxf(PXFSTAT, "plain", 0, no_handle)}) == "22 0 9 22 2 127");
  CHECK(seen({pxf(PXFUTIME, "plain", 0, no_handle), pxf(PXFSTAT, "plain", 0, stat),
              number(stat, "st_mtime") > 1'500'000'000}) == "0 0 1");
}

TEST_CASE_FIXTURE(Posix, "directories are made, entered, named and removed") {
  CHECK(seen({pxf(PXFMKDIR, "sub  ", 0, 0), pxf(PXFMKDIR, "sub", 0, 0), pxf(PXFCHDIR, "sub", 0)}) == "0 17 0");
  const std::string path = dir.path() + "\\sub", length = std::to_string(path.size());
  CHECK(answer(PXFGETCWD, Room{path.size() + 2}) == path + "  |" + length + "|0");
  CHECK(answer(PXFGETCWD, Room{path.size()}) == path + '|' + length + "|0");
  CHECK(answer(PXFGETCWD, Room{path.size() - 1}) == path.substr(0, path.size() - 1) + "|0|129");
  CHECK(seen({GETLASTERROR(), pxf(PXFCHDIR, "..", 0), pxf(PXFCHDIR, "none", 0), pxf(PXFRMDIR, "sub", 0),
              pxf(PXFRMDIR, "sub", 0)}) == "34 0 2 0 2");
}

TEST_CASE_FIXTURE(Posix, "a directory stream gives every entry, once more after a rewind, and is closed") {
  const std::string long_name(200, 'n');
  CreateDirectoryA("sub", nullptr);
  make_file("short");
  make_file(long_name);
  const int32_t dirent = create("dirent");
  int32_t stat = create("stat"), stream = value_of(PXFOPENDIR, ". ", 0), handle = stream;
  REQUIRE(stream == stat + 1);  // one table for both
  CHECK(pxf(PXFREADDIR, stream, dirent) == 0);
  for (int round = 0; round < 2; ++round) {
    CHECK(pxf(PXFREWINDDIR, stream) == 0);
    CHECK(entries(stream, dirent) == std::set<std::string>{".", "..", "error 2", "short", "sub", long_name});
  }
  CHECK(seen({pxf(PXFREADDIR, stream, stat), pxf(PXFREADDIR, dirent, dirent), pxf(PXFREADDIR, stream, no_handle),
              pxf(PXFREADDIR, no_handle, dirent), pxf(PXFREWINDDIR, no_handle), pxf(PXFSTRUCTFREE, &stream)}) ==
        "22 22 127 127 0 126");
  CHECK(seen({pxf(PXFCLOSEDIR, &handle), handle, pxf(PXFCLOSEDIR, &stream), pxf(PXFCLOSEDIR, &stat),
              number(stat, "st_mode")}) == "0 0 127 22 0");
  stream = value_of(PXFOPENDIR, "sub", 0);  // never read
  CHECK(seen({pxf(PXFCLOSEDIR, &stream), answer(PXFOPENDIR, "short", 0), answer(PXFOPENDIR, "none", 0)}) ==
        "0 -77|20 -77|2");
  stream = value_of(PXFOPENDIR, "C:\\", 0);
  CHECK((entries(stream, dirent).size() > 1 && pxf(PXFCLOSEDIR, &stream) == 0));
}

TEST_CASE_FIXTURE(Posix, "limits of paths") {
  make_file("plain");
  const int32_t file = value_of(PXFOPEN, "plain", 0, 0, 0);
  const std::string names = std::to_string(std::min(258 - static_cast<int>(dir.path().size()), 255)) + "|0";
  CHECK(seen({limit("none", 0, "_PC_PATH_MAX"), limit("none", 0, "_PC_PIPE_BUF"), limit("none", 0, "_PC_NAME_MAX"),
              limit("plain", 0, "_PC_MAX_CANON"), limit("plain.", 5, "_PC_NAME_MAX"), limit("plain", 6, "_PC_NAME_MAX"),
              limit("C:\\", 0, "_PC_NAME_MAX")}) == "260|0 4096|0 -77|2 -77|22 " + names + " -77|22 255|0");
  CHECK(seen({limit(-1, "_PC_PATH_MAX"), limit(-1, "_PC_PIPE_BUF"), limit(-1, "_PC_VDISABLE"),
              limit(-1, "_PC_NAME_MAX"), limit(closed, "_PC_LINK_MAX"), limit(file, "_PC_NAME_MAX")}) ==
        "260|0 4096|0 -77|22 -77|9 -77|9 " + names);

  const ImportOverride volume(
      library(), "GetVolumeInformationA",
      [](const char *, char *, DWORD, DWORD *, DWORD *, DWORD *, char *name, DWORD) -> BOOL {
        SetLastError(GetErrorMode() == SEM_FAILCRITICALERRORS ? ERROR_ACCESS_DENIED : ERROR_INVALID_FUNCTION);
        return simulated_system != nullptr && lstrcpyA(name, simulated_system) != nullptr;
      });
  for (const auto &[system, expected] : {std::pair{"NTFS", "1023|0"}, {"FAT32", "0|0"}, {nullptr, "0|13"}}) {
    simulated_system = system;
    CHECK((limit("plain", 0, "_PC_LINK_MAX") == expected && limit(file, "_PC_LINK_MAX") == expected));
  }
  const ImportOverride full(library(), "GetFullPathNameA",
                            [](const char *, DWORD, char *, char **name) { return *name = nullptr, simulated_length; });
  const ImportOverride current(library(), "GetCurrentDirectoryA", [](DWORD, char *) { return simulated_length; });
  for (const auto &[length, expected] : {std::pair{259, "0|0 -1|0"}, {260, "-77|38 -77|38"}}) {
    simulated_length = length;
    CHECK(seen({limit("plain", 0, "_PC_NAME_MAX"), limit(file, "_PC_NAME_MAX")}) == expected);
  }
  CHECK(pxf(PXFCLOSE, file) == 0);
}

TEST_CASE_FIXTURE(Posix, "limits of the system") {
  SYSTEM_INFO system;
  GetSystemInfo(&system);
  CHECK(seen({system_limit("_SC_CLK_TCK"), system_limit("_SC_OPEN_MAX"), system_limit("_SC_STREAM_MAX"),
              system_limit("_SC_TZNAME_MAX"), system_limit("_SC_PAGESIZE"), answer(PXFSYSCONF, 0)}) ==
        "1000|0 2048|0 20|0 3|0 " + std::to_string(system.dwPageSize) + "|0 -77|22");
  const ImportOverride memory(library(), "GlobalMemoryStatusEx", [](MEMORYSTATUSEX *status) {
    status->ullTotalPhys = simulated_memory;
    status->ullAvailPhys = simulated_memory - 1;
    return status->dwLength == sizeof *status;
  });
  simulated_memory = 0x8000'0000;
  CHECK(seen({system_limit("_SC_PHYS_PAGES"), system_limit("_SC_AVPHYS_PAGES")}) == "-1|34 2147483647|0");
}
