// SPDX-License-Identifier: MIT
// Files, directories, descriptors and limits, on real ones and on a simulated host.
#include <doctest/doctest.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <string>

#include <sys/stat.h>
#include <sys/utime.h>
#include <windows.h>

#include "../portability/library.h"
#include "guarded_text.h"
#include "import_override.h"
#include "qwport.h"
#include "recording.h"
#include "test_dir.h"

namespace {

constexpr int32_t unset = -77;
const int32_t zero = 0;
const int32_t no_handle = 9999;
const int32_t closed = 1500;

int32_t constant(std::string_view name) { return IPXFCONST(name.data(), name.size()); }

// Calls a routine of (path, ilen, further arguments, ierror) and gives ierror.
template <class... Arguments> int32_t with_path(auto routine, std::string_view path, Arguments... arguments) {
  GuardedText text(path);
  int32_t error = unset;
  routine(text.data(), &zero, arguments..., &error, text.size());
  return error;
}

int32_t with_two_paths(auto routine, std::string_view path, std::string_view new_path) {
  int32_t error = unset;
  routine(path.data(), &zero, new_path.data(), &zero, &error, path.size(), new_path.size());
  return error;
}

// Calls a routine that gives a number beside ierror; "number|ierror".
template <class... Arguments> std::string answer(auto routine, Arguments... arguments) {
  int32_t value = unset, error = unset;
  routine(arguments..., &value, &error);
  return std::to_string(value) + '|' + std::to_string(error);
}

int32_t create(std::string_view structure) {
  int32_t handle = 0, error = unset;
  PXFSTRUCTCREATE(structure.data(), &handle, &error, structure.size());
  REQUIRE(error == 0);
  return handle;
}

int64_t field(int32_t handle, std::string_view name) {
  int64_t value = unset;
  int32_t error = unset;
  PXFINT8GET(&handle, name.data(), &value, &error, name.size());
  return error == 0 ? value : -error;
}

int32_t open_file(std::string_view path, int32_t flags) {
  int32_t descriptor = unset;
  const int32_t mode = _S_IREAD | _S_IWRITE;
  CHECK(with_path(PXFOPEN, path, &flags, &mode, &descriptor) == 0);
  return descriptor;
}

void close_file(int32_t descriptor) {
  int32_t error = unset;
  PXFCLOSE(&descriptor, &error);
  CHECK(error == 0);
}

std::string read_file(int32_t descriptor, int32_t count) {
  std::string buffer(static_cast<size_t>(count), '#');
  int32_t done = unset, error = unset;
  PXFREAD(&descriptor, buffer.data(), &count, &done, &error, buffer.size());
  return error == 0 ? buffer.substr(0, static_cast<size_t>(done)) : "error " + std::to_string(error);
}

int32_t write_file(int32_t descriptor, std::string_view text) {
  const auto count = static_cast<int32_t>(text.size());
  int32_t done = unset, error = unset;
  PXFWRITE(&descriptor, text.data(), &count, &done, &error, text.size());
  return error == 0 ? done : -error;
}

std::string seek_file(int32_t descriptor, int32_t offset, int32_t whence) {
  return answer(PXFLSEEK, &descriptor, &offset, &whence);
}

std::string path_limit(std::string_view path, int32_t name, int32_t length = 0) {
  int32_t value = unset, error = unset;
  PXFPATHCONF(path.data(), &length, &name, &value, &error, path.size());
  return std::to_string(value) + '|' + std::to_string(error);
}

std::string descriptor_limit(int32_t descriptor, int32_t name) { return answer(PXFFPATHCONF, &descriptor, &name); }

std::string system_limit(int32_t name) { return answer(PXFSYSCONF, &name); }

// The names of a directory, or the error that ended their reading.
std::set<std::string> entries(int32_t stream, int32_t dirent) {
  std::set<std::string> names;
  for (int32_t error = 0;;) {
    PXFREADDIR(&stream, &dirent, &error);
    if (error != 0) return names.insert("error " + std::to_string(error)), names;
    char name[300];
    int32_t length = 0;
    PXFSTRGET(&dirent, "d_name", name, &length, &error, 6, sizeof name);
    CHECK(names.emplace(name, length).second);
  }
}

int answers_nothing() { return 0; }

uint64_t simulated_memory;

}  // namespace

TEST_CASE("a path is its first characters, or all without trailing white space") {
  RecordingCore core;
  const TestDir dir;
  make_file("plain");
  make_file("plain x");
  const int32_t exists = 0;
  CHECK(with_path(PXFACCESS, "plain \t\n ", &exists) == 0);
  CHECK(with_path(PXFACCESS, "plain x", &exists) == 0);
  const auto access = [&](int32_t length) {
    int32_t error = unset;
    PXFACCESS("plain x.", &length, &exists, &error, 8);
    return error;
  };
  CHECK((access(5) == 0 && access(7) == 0 && access(4) == ENOENT && access(-1) == EINVAL));
  CHECK((access(9) == access(8)));  // there are no more characters
  core.calls();
  CHECK(with_path(PXFACCESS, "missing", &exists) == ENOENT);
  CHECK((GETLASTERROR() == ENOENT && core.calls() == reports(ENOENT)));
  const ImportOverride allocation(
      library(), "malloc", +[](size_t) -> void * { return errno = ENOMEM, nullptr; });
  CHECK(with_path(PXFACCESS, "plain", &exists) == ENOMEM);
  CHECK(with_two_paths(PXFRENAME, "plain", "other") == ENOMEM);
}

TEST_CASE("descriptors are opened, written, positioned, read, duplicated and closed") {
  RecordingCore core;
  const TestDir dir;
  const int32_t file = open_file("data.bin   ", constant("O_CREAT") + constant("O_RDWR") + constant("O_BINARY"));
  CHECK(write_file(file, "hello\nworld") == 11);
  CHECK((seek_file(file, 6, constant("SEEK_SET")) == "6|0" && read_file(file, 100) == "world" &&
         read_file(file, 3).empty()));
  CHECK((seek_file(file, -2, constant("SEEK_END")) == "9|0" && seek_file(file, -1, constant("SEEK_CUR")) == "8|0"));
  CHECK(seek_file(file, -100, constant("SEEK_SET")) == "-1|22");
  int32_t copy = unset, error = unset;
  PXFDUP(&file, &copy, &error);
  CHECK((error == 0 && copy != file && read_file(copy, 1) == "r" && read_file(file, 1) == "l"));
  const int32_t chosen = copy + 40;
  PXFDUP2(&file, &chosen, &error);
  CHECK((error == 0 && read_file(chosen, 5) == "d"));
  close_file(chosen);
  close_file(copy);
  PXFREAD(&file, nullptr, &zero, &copy, &error, 0);
  CHECK(error == 0);
  close_file(file);

  CHECK((PXFCLOSE(&closed, &error), error == EBADF));
  CHECK((PXFDUP2(&closed, &chosen, &error), error == EBADF));
  CHECK((answer(PXFDUP, &closed) == "-1|9" && seek_file(closed, 0, 0) == "-1|9"));
  CHECK((read_file(closed, 1) == "error 9" && write_file(closed, "x") == -EBADF));
  int32_t descriptor = unset;
  CHECK((with_path(PXFOPEN, "missing", &zero, &zero, &descriptor) == ENOENT && descriptor == -1));
}

TEST_CASE("a pipe gives what was put into it") {
  RecordingCore core;
  int32_t in = unset, out = unset, error = unset;
  PXFPIPE(&in, &out, &error);
  REQUIRE(error == 0);
  CHECK((write_file(out, "through") == 7 && read_file(in, 100) == "through"));
  const int32_t status = create("stat");
  PXFFSTAT(&in, &status, &error);
  const auto mode = static_cast<int32_t>(field(status, "st_mode"));
  CHECK((error == 0 && PXFISFIFO(&mode) == -1 && PXFISREG(&mode) == 0));
  close_file(out);
  CHECK(read_file(in, 1).empty());
  close_file(in);
}

TEST_CASE("files are created, protected, renamed, linked and removed") {
  RecordingCore core;
  const TestDir dir;
  int32_t file = unset;
  const int32_t read_write = 0666, read_only = 0444, write_only = constant("W_OK");
  CHECK(with_path(PXFCREAT, "made", &read_write, &file) == 0);
  CHECK(write_file(file, "x") == 1);
  close_file(file);
  CHECK_FALSE(is_read_only("made"));
  CHECK(with_path(PXFCREAT, "sealed", &read_only, &file) == 0);
  close_file(file);
  CHECK((is_read_only("sealed") && with_path(PXFACCESS, "sealed", &write_only) == EACCES));
  CHECK((with_path(PXFCHMOD, "sealed", &read_write) == 0 && with_path(PXFACCESS, "sealed", &write_only) == 0));
  CHECK(with_path(PXFCHMOD, "missing", &read_write) == ENOENT);

  CHECK(with_two_paths(PXFRENAME, "made  ", "named \t") == 0);
  CHECK((file_exists("named") && !file_exists("made") && with_two_paths(PXFRENAME, "made", "b") == ENOENT));
  CHECK(with_two_paths(PXFLINK, "named", "second") == 0);
  CHECK((with_path(PXFUNLINK, "named") == 0 && file_exists("second") && with_path(PXFUNLINK, "named") == ENOENT));
  CHECK(with_two_paths(PXFLINK, "missing", "third") == ENOENT);
  {
    const ImportOverride entry(library(), "GetProcAddress", answers_nothing);
    CHECK(with_two_paths(PXFLINK, "second", "third") == EPERM);
  }
  const ImportOverride present(library(), "GetModuleHandleA", answers_nothing);
  CHECK(with_two_paths(PXFLINK, "second", "third") == 0);
  const ImportOverride loaded(library(), "LoadLibraryA", answers_nothing);
  CHECK(with_two_paths(PXFLINK, "second", "fourth") == EFAULT);
}

TEST_CASE("the status of a file comes by path and by descriptor, and its times are set") {
  RecordingCore core;
  const TestDir dir;
  make_file("plain", "12345");
  const int32_t status = create("stat"), times = create("utimbuf");
  int32_t error = unset;
  for (const auto &[name, value] : {std::pair{"actime ", int64_t{1'000'000'001}}, {"modtime", 1'100'000'001}}) {
    PXFINT8SET(&times, name, &value, &error, 7);
  }
  CHECK(with_path(PXFUTIME, "plain and more", &times) == 0);
  const auto by_path = [&] { return with_path(PXFSTAT, "plain  ", &status); };
  CHECK((by_path() == 0 && field(status, "st_atime") == 1'000'000'001));
  const int32_t file = open_file("plain", 0);
  const auto by_descriptor = [&](int32_t descriptor) { return PXFFSTAT(&descriptor, &status, &error), error; };
  for (const bool is_by_path : {true, false}) {
    CHECK((is_by_path ? by_path() : by_descriptor(file)) == 0);
    CHECK((field(status, "st_size") == 5 && field(status, "st_nlink") == 1));
    CHECK(field(status, "st_mtime") == 1'100'000'001);
    const auto mode = static_cast<int32_t>(field(status, "st_mode"));
    CHECK((PXFISREG(&mode) == -1 && PXFISDIR(&mode) == 0 && PXFISCHR(&mode) == 0 && PXFISBLK(&mode) == 0));
  }
  close_file(file);
  CHECK((with_path(PXFUTIME, "plain", &no_handle) == 0 && by_path() == 0));
  CHECK(field(status, "st_mtime") > 1'500'000'000);

  CHECK((with_path(PXFSTAT, "missing", &status) == ENOENT && with_path(PXFSTAT, "plain", &no_handle) == 127));
  CHECK((with_path(PXFSTAT, "plain", &times) == EINVAL && with_path(PXFUTIME, "plain", &status) == EINVAL));
  CHECK(by_descriptor(closed) == EBADF);
  CHECK((PXFFSTAT(&file, &times, &error), error == EINVAL));
  for (const int32_t mode : {16384, 8192, 0x6000, 61440}) {
    CHECK((PXFISDIR(&mode) == (mode == 16384 ? -1 : 0) && PXFISCHR(&mode) == (mode == 8192 ? -1 : 0)));
    CHECK(PXFISBLK(&mode) == 0);
  }
}

TEST_CASE("the mask takes the right to write from new files") {
  RecordingCore core;
  const TestDir dir;
  const int32_t mask = _S_IWRITE;
  CHECK(answer(PXFUMASK, &mask) == "0|0");
  close_file(open_file("masked", constant("O_CREAT") + constant("O_WRONLY")));
  CHECK(answer(PXFUMASK, &zero) == "128|0");
  CHECK(is_read_only("masked"));
}

TEST_CASE("directories are made, entered, named and removed") {
  RecordingCore core;
  const TestDir dir;
  CHECK((with_path(PXFMKDIR, "sub  ", &zero) == 0 && with_path(PXFMKDIR, "sub", &zero) == EEXIST));
  CHECK(with_path(PXFCHDIR, "sub") == 0);
  const std::string expected = dir.path() + "\\sub";
  const auto directory = [](size_t room) {
    GuardedText buffer(room);
    int32_t length = unset, error = unset;
    PXFGETCWD(buffer.data(), &length, &error, room);
    return buffer.str() + '|' + std::to_string(length) + '|' + std::to_string(error);
  };
  const std::string length = std::to_string(expected.size());
  CHECK(directory(expected.size()) == expected + '|' + length + "|0");
  CHECK(directory(expected.size() + 2) == expected + "  |" + length + "|0");
  CHECK(directory(expected.size() - 1) == expected.substr(0, expected.size() - 1) + "|0|129");
  CHECK((GETLASTERROR() == ERANGE && with_path(PXFCHDIR, "..") == 0 && with_path(PXFCHDIR, "none") == ENOENT));
  CHECK((with_path(PXFRMDIR, "sub") == 0 && with_path(PXFRMDIR, "sub") == ENOENT));
}

TEST_CASE("a directory stream gives every entry, once more after a rewind, and is closed") {
  RecordingCore core;
  const TestDir dir;
  const std::string long_name(200, 'n');
  std::set<std::string> expected = {".", "..", "error 2", "short", "sub", long_name};
  CreateDirectoryA("sub", nullptr);
  make_file("short");
  make_file(long_name);
  const int32_t dirent = create("dirent"), status = create("stat");
  int32_t stream = unset, error = unset;
  REQUIRE(with_path(PXFOPENDIR, ". ", &stream) == 0);
  CHECK(stream == status + 1);  // one table for both
  CHECK((PXFREADDIR(&stream, &dirent, &error), error == 0));
  PXFREWINDDIR(&stream, &error);
  CHECK(entries(stream, dirent) == expected);
  PXFREWINDDIR(&stream, &error);
  CHECK((error == 0 && entries(stream, dirent) == expected));

  CHECK((PXFREADDIR(&stream, &status, &error), error == EINVAL));
  CHECK((PXFREADDIR(&dirent, &dirent, &error), error == EINVAL));
  CHECK((PXFREADDIR(&stream, &no_handle, &error), error == 127));
  CHECK((PXFREADDIR(&no_handle, &dirent, &error), error == 127));
  CHECK((PXFREWINDDIR(&no_handle, &error), error == 0));
  CHECK((PXFSTRUCTFREE(&stream, &error), error == 126));
  int32_t handle = stream;
  CHECK((PXFCLOSEDIR(&handle, &error), error == 0 && handle == 0));
  CHECK((PXFCLOSEDIR(&stream, &error), error == 127));
  CHECK((handle = status, PXFCLOSEDIR(&handle, &error), error == EINVAL && handle == status));

  CHECK(with_path(PXFOPENDIR, "sub", &stream) == 0);
  CHECK((PXFCLOSEDIR(&stream, &error), error == 0));  // never read
  CHECK((with_path(PXFOPENDIR, "C:\\", &stream) == 0 && entries(stream, dirent).size() > 1));
  const ImportOverride closing(
      library(), "FindClose", +[](HANDLE) { return SetLastError(ERROR_INVALID_HANDLE), FALSE; });
  CHECK((PXFCLOSEDIR(&stream, &error), error == EBADF && stream == 0));
  CHECK((with_path(PXFOPENDIR, "short", &stream) == ENOTDIR && with_path(PXFOPENDIR, "none", &stream) == ENOENT));
}

TEST_CASE("limits of paths") {
  RecordingCore core;
  const TestDir dir;
  make_file("plain");
  const auto length = static_cast<int32_t>(dir.path().size());
  const auto limit = [](int32_t room) { return std::to_string(std::min(room, 255)) + "|0"; };
  CHECK((path_limit("none", 4) == "260|0" && path_limit("none", 5) == "4096|0" && path_limit("plain", 1) == "-77|22"));
  CHECK((descriptor_limit(-1, 4) == "260|0" && descriptor_limit(-1, 5) == "4096|0" &&
         descriptor_limit(-1, 9) == "-77|22"));
  CHECK((path_limit("none", 3) == "-77|2" && path_limit("plain", 3, 6) == "-77|22"));
  CHECK((descriptor_limit(-1, 3) == "-77|9" && descriptor_limit(closed, 0) == "-77|9"));
  const int32_t file = open_file("plain", 0);
  CHECK((path_limit("plain", 3) == limit(259 - length - 1) && path_limit("plain.", 3, 5) == limit(259 - length - 1)));
  CHECK(descriptor_limit(file, 3) == limit(258 - length));
  CHECK(path_limit("C:\\", 3) == "255|0");
  for (const auto &[system, expected] : {std::pair{"NTFS", "1023|0"}, {"FAT32", "0|0"}}) {
    static const char *name;
    name = system;
    const ImportOverride volume(
        library(), "GetVolumeInformationA",
        +[](const char *, char *, DWORD, DWORD *, DWORD *, DWORD *, char *buffer, DWORD) {
          return lstrcpyA(buffer, name) != nullptr;
        });
    CHECK((path_limit("plain", 0) == expected && descriptor_limit(file, 0) == expected));
  }
  {
    const ImportOverride entry(library(), "GetProcAddress", answers_nothing);
    CHECK((path_limit("plain", 0) == "0|14" && descriptor_limit(file, 0) == "0|14"));
  }
  SetErrorMode(SEM_NOOPENFILEERRORBOX);
  const ImportOverride volume(
      library(), "GetVolumeInformationA", +[](const char *, char *, DWORD, DWORD *, DWORD *, DWORD *, char *, DWORD) {
        return SetLastError(GetErrorMode() == SEM_FAILCRITICALERRORS ? ERROR_ACCESS_DENIED : 1), FALSE;
      });
  CHECK((path_limit("plain", 0) == "0|13" && GetErrorMode() == 0));
  close_file(file);
}

TEST_CASE("limits of the system") {
  RecordingCore core;
  SYSTEM_INFO system;
  GetSystemInfo(&system);
  CHECK((system_limit(2) == "1000|0" && system_limit(4) == "2048|0" && system_limit(5) == "20|0"));
  CHECK((system_limit(6) == "3|0" && system_limit(30) == std::to_string(system.dwPageSize) + "|0"));
  CHECK((system_limit(0) == "-77|22" && system_limit(84) == "-77|22"));
  const ImportOverride memory(
      library(), "GlobalMemoryStatusEx", +[](MEMORYSTATUSEX *status) {
        status->ullTotalPhys = simulated_memory;
        status->ullAvailPhys = simulated_memory - 1;
        return status->dwLength == sizeof *status && simulated_memory != 0;
      });
  simulated_memory = 0x8000'0000;
  CHECK((system_limit(85) == "-1|34" && system_limit(86) == "2147483647|0"));
  simulated_memory = 4096;
  CHECK((system_limit(85) == "4096|0" && system_limit(86) == "4095|0"));
  simulated_memory = 0;
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  CHECK(system_limit(85) == "-77|12");
}
