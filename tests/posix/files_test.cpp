// SPDX-License-Identifier: MIT
// Files, directories, descriptors and limits, on real ones and on a simulated host.
#include <algorithm>
#include <set>

#include <sys/stat.h>

#include "pxf.h"

namespace {

int32_t constant(std::string_view name) { return IPXFCONST(name.data(), name.size()); }

int32_t open_file(std::string_view path, int32_t flags) {
  int32_t descriptor = unset;
  CHECK(pxf(PXFOPEN, path, 0, flags, _S_IREAD | _S_IWRITE, &descriptor) == 0);
  return descriptor;
}

std::string read_file(int32_t descriptor, int32_t count) {
  GuardedText buffer(static_cast<size_t>(std::max(count, 0)));
  int32_t done = unset;
  const int32_t error = pxf(PXFREAD, descriptor, buffer, count, &done);
  return error == 0 ? buffer.str().substr(0, static_cast<size_t>(done)) : "error " + std::to_string(error);
}

std::string write_file(int32_t descriptor, std::string_view text) {
  return answer(PXFWRITE, descriptor, text, text.size());
}

// The kinds that a structure's st_mode is of.
std::string kinds(int32_t stat) {
  const auto mode = static_cast<int32_t>(number(stat, "st_mode"));
  std::string found;
  const auto add = [&](int32_t (*is_kind)(const int32_t *), char letter) {
    found.append(is_kind(&mode) == -1, letter);
  };
  add(PXFISREG, 'r'), add(PXFISDIR, 'd'), add(PXFISCHR, 'c'), add(PXFISBLK, 'b'), add(PXFISFIFO, 'f');
  return found;
}

// The names of a directory, and the error that ended their reading.
std::set<std::string> entries(int32_t stream, int32_t dirent) {
  std::set<std::string> names;
  for (;;) {
    const int32_t error = pxf(PXFREADDIR, stream, dirent);
    if (error != 0) return names.insert("error " + std::to_string(error)), names;
    CHECK(names.insert(text(dirent, "d_name")).second);
  }
}

int opened, closed_again;
DWORD loaded_from, simulated_length;
uint64_t simulated_memory;

}  // namespace

TEST_CASE_FIXTURE(Posix, "a path is its first characters, or all without trailing white space") {
  make_file("plain");
  make_file("plain x");
  const std::tuple<const char *, int, int, int> rows[] = {
      {"plain \t\n\v\f\r ", 0, 0, 0}, {"plain x", 0, 0, 0}, {"plain x.", 7, 0, 0},       {"plain x", 0, 1, 0},
      {"plain x.", 4, 0, ENOENT},     {"plain", 9, 0, 0},   {"plain x.", -1, 0, EINVAL}, {"missing", 0, 0, ENOENT}};
  for (const auto &[path, length, mode, error] : rows) CHECK(pxf(PXFACCESS, path, length, mode) == error);
  CHECK((GETLASTERROR() == ENOENT && core.calls() == reports(ENOENT) + ' ' + reports(EINVAL) + ' ' + reports(ENOENT)));
  // A failure without an errno is a failure still.
  const FailingCall allocation("malloc");
  errno = 0;
  CHECK(pxf(PXFACCESS, "plain", 0, 0) == ENOMEM);
}

TEST_CASE_FIXTURE(Posix, "descriptors and pipes are opened, written, positioned, read, duplicated and closed") {
  const int32_t file = open_file("data.bin   ", constant("O_CREAT") + constant("O_RDWR") + constant("O_BINARY"));
  CHECK(write_file(file, "hello\nworld") == "11|0");
  CHECK((answer(PXFLSEEK, file, 6, constant("SEEK_SET")) == "6|0" && read_file(file, 9) == "world"));
  CHECK((read_file(file, 3).empty() && answer(PXFLSEEK, file, -2, constant("SEEK_END")) == "9|0"));
  CHECK((answer(PXFLSEEK, file, -1, constant("SEEK_CUR")) == "8|0" && answer(PXFLSEEK, file, -9, 0) == "-1|22"));
  int32_t copy = unset, in = unset, out = unset;
  CHECK((pxf(PXFDUP, file, &copy) == 0 && copy != file && read_file(copy, 1) == "r" && read_file(file, 1) == "l"));
  CHECK((pxf(PXFDUP2, file, copy + 40) == 0 && read_file(copy + 40, 5) == "d"));
  CHECK((answer(PXFWRITE, file, "x", -1) == "-77|22" && read_file(file, -1) == "error 22"));
  int32_t error = unset;
  PXFREAD(&file, nullptr, &copy, &copy, &error, 0);
  CHECK(error == 0);
  for (const int32_t descriptor : {copy + 40, copy, file}) CHECK(pxf(PXFCLOSE, descriptor) == 0);

  CHECK((pxf(PXFCLOSE, closed) == EBADF && pxf(PXFDUP2, closed, file) == EBADF && answer(PXFDUP, closed) == "-1|9"));
  CHECK((answer(PXFLSEEK, closed, 0, 0) == "-1|9" && write_file(closed, "x") == "-1|9"));
  CHECK((read_file(closed, 1) == "error 9" && answer(PXFOPEN, "missing", 0, 0, 0) == "-1|2"));

  const int32_t stat = create("stat");
  REQUIRE((pxf(PXFPIPE, &in, &out) == 0 && pxf(PXFFSTAT, in, stat) == 0));
  CHECK((write_file(out, "through") == "7|0" && read_file(in, 100) == "through" && kinds(stat) == "f"));
  CHECK((pxf(PXFCLOSE, out) == 0 && read_file(in, 1).empty() && pxf(PXFCLOSE, in) == 0));
}

TEST_CASE_FIXTURE(Posix, "files are created, protected, renamed, linked and removed") {
  const int32_t write_access = constant("W_OK");
  for (const auto &[name, mode] : {std::pair{"made", 0666}, {"sealed", 0444}}) {
    int32_t file = unset;
    CHECK((pxf(PXFCREAT, name, 0, mode, &file) == 0 && write_file(file, "x") == "1|0" && pxf(PXFCLOSE, file) == 0));
    CHECK(is_read_only(name) == (mode == 0444));
  }
  CHECK((pxf(PXFACCESS, "sealed", 0, write_access) == EACCES && pxf(PXFCHMOD, "sealed", 0, 0200) == 0));
  CHECK((pxf(PXFACCESS, "sealed", 0, write_access) == 0 && pxf(PXFCHMOD, "missing", 0, 0200) == ENOENT));
  CHECK((answer(PXFUMASK, int32_t{_S_IWRITE}) == "0|0"));
  CHECK(pxf(PXFCLOSE, open_file("masked", constant("O_CREAT") + constant("O_WRONLY"))) == 0);
  CHECK((answer(PXFUMASK, 0) == "128|0" && is_read_only("masked")));

  CHECK((pxf(PXFRENAME, "made  ", 0, "named \t", 0) == 0 && file_exists("named") && !file_exists("made")));
  CHECK((pxf(PXFRENAME, "made", 0, "b", 0) == ENOENT && pxf(PXFLINK, "named", 0, "second", 0) == 0));
  CHECK((pxf(PXFUNLINK, "named", 0) == 0 && file_exists("second") && pxf(PXFUNLINK, "named", 0) == ENOENT));
  CHECK(pxf(PXFLINK, "missing", 0, "third", 0) == ENOENT);
  {
    const FailingCall entry("GetProcAddress");
    CHECK(pxf(PXFLINK, "second", 0, "third", 0) == EPERM);
  }
  const ImportOverride creating(
      library(), "_creat", +[](const char *, int mode) { return mode; });
  CHECK(answer(PXFCREAT, "x", 0, 0777) == "128|0");
  CHECK(pxf(PXFLINK, "second", 0, "third", 0) == 0);
  const ImportOverride loaded(
      library(), "LoadLibraryExA",
      +[](const char *, HANDLE, DWORD flags) -> HMODULE { return loaded_from = flags, nullptr; });
  CHECK((pxf(PXFLINK, "second", 0, "fourth", 0) == EFAULT && loaded_from == LOAD_LIBRARY_SEARCH_SYSTEM32));
}

TEST_CASE_FIXTURE(Posix, "the status of a file comes by path and by descriptor, and its times are set") {
  make_file("plain", "12345");
  const int32_t stat = create("stat"), times = create("utimbuf");
  pxf(PXFINT8SET, times, "actime", 1'000'000'001);
  pxf(PXFINT8SET, times, "modtime", 1'100'000'001);
  CHECK((pxf(PXFUTIME, "plain and more", 0, times) == 0 && pxf(PXFSTAT, "plain  ", 0, stat) == 0));
  CHECK(number(stat, "st_atime") == 1'000'000'001);
  const int32_t file = open_file("plain", 0);
  for (const bool is_by_path : {true, false}) {
    CHECK((is_by_path ? pxf(PXFSTAT, "plain", 0, stat) : pxf(PXFFSTAT, file, stat)) == 0);
    CHECK((number(stat, "st_size") == 5 && number(stat, "st_nlink") == 1 && kinds(stat) == "r"));
    CHECK(number(stat, "st_mtime") == 1'100'000'001);
  }
  CHECK((pxf(PXFFSTAT, file, times) == EINVAL && pxf(PXFCLOSE, file) == 0));
  CHECK((pxf(PXFUTIME, "plain", 0, no_handle) == 0 && pxf(PXFSTAT, "plain", 0, stat) == 0));
  CHECK(number(stat, "st_mtime") > 1'500'000'000);

  CHECK((pxf(PXFSTAT, "missing", 0, stat) == ENOENT && pxf(PXFSTAT, "plain", 0, no_handle) == 127));
  CHECK((pxf(PXFSTAT, "plain", 0, times) == EINVAL && pxf(PXFUTIME, "plain", 0, stat) == EINVAL));
  CHECK(pxf(PXFFSTAT, closed, stat) == EBADF);
}

TEST_CASE_FIXTURE(Posix, "directories are made, entered, named and removed") {
  CHECK((pxf(PXFMKDIR, "sub  ", 0, 0) == 0 && pxf(PXFMKDIR, "sub", 0, 0) == EEXIST && pxf(PXFCHDIR, "sub", 0) == 0));
  const std::string path = dir.path() + "\\sub", length = std::to_string(path.size());
  CHECK(text_answer(path.size(), PXFGETCWD) == path + '|' + length + "|0");
  CHECK(text_answer(path.size() + 2, PXFGETCWD) == path + "  |" + length + "|0");
  CHECK(text_answer(path.size() - 1, PXFGETCWD) == path.substr(0, path.size() - 1) + "|0|129");
  CHECK((GETLASTERROR() == ERANGE && pxf(PXFCHDIR, "..", 0) == 0 && pxf(PXFCHDIR, "none", 0) == ENOENT));
  CHECK((pxf(PXFRMDIR, "sub", 0) == 0 && pxf(PXFRMDIR, "sub", 0) == ENOENT));
}

TEST_CASE_FIXTURE(Posix, "a directory stream gives every entry, once more after a rewind, and is closed") {
  const std::string long_name(200, 'n');
  const std::set<std::string> expected = {".", "..", "error 2", "short", "sub", long_name};
  CreateDirectoryA("sub", nullptr);
  make_file("short");
  make_file(long_name);
  const int32_t dirent = create("dirent"), stat = create("stat");
  int32_t stream = unset;
  const ImportOverride finding(
      library(), "FindFirstFileA",
      +[](const char *pattern, WIN32_FIND_DATAA *entry) { return ++opened, FindFirstFileA(pattern, entry); });
  const ImportOverride ending(
      library(), "FindClose", +[](HANDLE handle) { return ++closed_again, FindClose(handle); });
  REQUIRE(pxf(PXFOPENDIR, ". ", 0, &stream) == 0);
  CHECK(stream == stat + 1);  // one table for both
  CHECK((pxf(PXFREADDIR, stream, dirent) == 0 && pxf(PXFREWINDDIR, stream) == 0));
  CHECK((entries(stream, dirent) == expected && pxf(PXFREWINDDIR, stream) == 0));
  CHECK(entries(stream, dirent) == expected);

  CHECK((pxf(PXFREADDIR, stream, stat) == EINVAL && pxf(PXFREADDIR, dirent, dirent) == EINVAL));
  CHECK((pxf(PXFREADDIR, stream, no_handle) == 127 && pxf(PXFREADDIR, no_handle, dirent) == 127));
  CHECK((pxf(PXFREWINDDIR, no_handle) == 0 && pxf(PXFSTRUCTFREE, &stream) == 126));
  int32_t handle = stream;
  CHECK((pxf(PXFCLOSEDIR, &handle) == 0 && handle == 0 && pxf(PXFCLOSEDIR, &stream) == 127));
  CHECK((opened == 3 && closed_again == 3));
  handle = stat;
  CHECK((pxf(PXFCLOSEDIR, &handle) == EINVAL && handle == stat));

  CHECK((pxf(PXFOPENDIR, "sub", 0, &stream) == 0 && pxf(PXFCLOSEDIR, &stream) == 0));  // never read
  CHECK((answer(PXFOPENDIR, "short", 0) == "-77|20" && answer(PXFOPENDIR, "none", 0) == "-77|2"));
  CHECK((pxf(PXFOPENDIR, "C:\\", 0, &stream) == 0 && entries(stream, dirent).size() > 1));
  const FailingCall closing("FindClose", ERROR_INVALID_HANDLE);
  CHECK((pxf(PXFCLOSEDIR, &stream) == EBADF && stream == 0));
}

TEST_CASE_FIXTURE(Posix, "limits of paths") {
  make_file("plain");
  const auto length = static_cast<int32_t>(dir.path().size());
  const std::string limit = std::to_string(std::min(258 - length, 255)) + "|0";
  const int32_t file = open_file("plain", 0);
  const std::tuple<const char *, int, int, std::string> by_path[] = {
      {"none", 0, 4, "260|0"}, {"none", 0, 5, "4096|0"},  {"plain", 0, 1, "-77|22"}, {"none", 0, 3, "-77|2"},
      {"plain.", 5, 3, limit}, {"plain", 6, 3, "-77|22"}, {"C:\\", 0, 3, "255|0"}};
  for (const auto &[path, size, name, expected] : by_path) CHECK(answer(PXFPATHCONF, path, size, name) == expected);
  const std::tuple<int, int, std::string> by_descriptor[] = {{-1, 4, "260|0"}, {-1, 5, "4096|0"},    {-1, 9, "-77|22"},
                                                             {-1, 3, "-77|9"}, {closed, 0, "-77|9"}, {file, 3, limit}};
  for (const auto &[descriptor, name, expected] : by_descriptor)
    CHECK(answer(PXFFPATHCONF, descriptor, name) == expected);
  CHECK(answer(PXFPATHCONF, ".", 0, 3) != answer(PXFFPATHCONF, file, 3));
  static const char *system;
  const ImportOverride named_volume(
      library(), "GetVolumeInformationA",
      +[](const char *, char *, DWORD, DWORD *, DWORD *, DWORD *, char *name, DWORD) {
        return lstrcpyA(name, system) != nullptr;
      });
  for (const auto &[name, expected] : {std::pair{"NTFS", "1023|0"}, {"FAT32", "0|0"}}) {
    system = name;
    CHECK((answer(PXFPATHCONF, "plain", 0, 0) == expected && answer(PXFFPATHCONF, file, 0) == expected));
  }
  {
    const ImportOverride full(
        library(), "GetFullPathNameA",
        +[](const char *, DWORD, char *, char **name) { return *name = nullptr, simulated_length; });
    const ImportOverride current(
        library(), "GetCurrentDirectoryA", +[](DWORD, char *) { return simulated_length; });
    simulated_length = 259;
    CHECK((answer(PXFPATHCONF, "plain", 0, 3) == "0|0" && answer(PXFFPATHCONF, file, 3) == "-1|0"));
    simulated_length = 260;
    CHECK((answer(PXFPATHCONF, "plain", 0, 3) == "-77|38" && answer(PXFFPATHCONF, file, 3) == "-77|38"));
    const FailingCall status("_fstat64", 0, -1);
    errno = 0;
    CHECK((answer(PXFFPATHCONF, file, 0) == "-77|9" && pxf(PXFFSTAT, file, create("stat")) == EBADF));
  }
  SetErrorMode(SEM_NOOPENFILEERRORBOX);
  const ImportOverride volume(
      library(), "GetVolumeInformationA", +[](const char *, char *, DWORD, DWORD *, DWORD *, DWORD *, char *, DWORD) {
        return SetLastError(GetErrorMode() == SEM_FAILCRITICALERRORS ? ERROR_ACCESS_DENIED : 1), FALSE;
      });
  CHECK((answer(PXFPATHCONF, "plain", 0, 0) == "0|13" && GetErrorMode() == 0 && pxf(PXFCLOSE, file) == 0));
  const FailingCall entry("GetProcAddress");
  CHECK((answer(PXFPATHCONF, "plain", 0, 0) == "0|14" && answer(PXFFPATHCONF, -1, 0) == "-77|9"));
}

TEST_CASE_FIXTURE(Posix, "limits of the system") {
  SYSTEM_INFO system;
  GetSystemInfo(&system);
  const std::pair<int, std::string> rows[] = {
      {2, "1000|0"}, {4, "2048|0"}, {5, "20|0"}, {6, "3|0"}, {30, std::to_string(system.dwPageSize) + "|0"},
      {0, "-77|22"}, {84, "-77|22"}};
  for (const auto &[name, expected] : rows) CHECK(answer(PXFSYSCONF, name) == expected);
  const ImportOverride memory(
      library(), "GlobalMemoryStatusEx", +[](MEMORYSTATUSEX *status) {
        status->ullTotalPhys = simulated_memory;
        status->ullAvailPhys = simulated_memory - 1;
        return status->dwLength == sizeof *status && simulated_memory != 0;
      });
  simulated_memory = 0x8000'0000;
  CHECK((answer(PXFSYSCONF, 85) == "-1|34" && answer(PXFSYSCONF, 86) == "2147483647|0"));
  simulated_memory = 0;
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  CHECK(answer(PXFSYSCONF, 85) == "-77|12");
}
