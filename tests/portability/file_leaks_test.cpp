// SPDX-License-Identifier: MIT
// A thousand calls of each file routine leave no allocation and no handle behind.
#include <doctest/doctest.h>

#include <cstdlib>
#include <functional>
#include <string>

#include <windows.h>

#include "import_override.h"
#include "library.h"
#include "qwport.h"
#include "recording.h"
#include "test_dir.h"

namespace {

int live_allocations;

void *counting_malloc(size_t size) {
  ++live_allocations;
  return std::malloc(size);
}

void counting_free(void *memory) {
  if (memory != nullptr) --live_allocations;
  std::free(memory);
}

DWORD handle_count() {
  DWORD count = 0;
  GetProcessHandleCount(GetCurrentProcess(), &count);
  return count;
}

const std::string present = "a.txt";
const std::string absent = "missing.txt";
const int32_t zero = 0;
const int32_t unit = 11;

void list_all() {
  QwportFileInfo record;
  int64_t handle = QWPORT_FINDINFO_FIRST;
  while (GETFILEINFOQQ("*", &record, &handle, 1) != 0) {
  }
}

void list_all_wide() {
  QwportFileInfoI8 record;
  int64_t handle = QWPORT_FINDINFO_FIRST;
  while (GETFILEINFOQQI8("*", &record, &handle, 1) != 0) {
  }
}

// Every routine of the family, once where it succeeds and once where it fails.
const std::function<void()> calls[] = {
    [] {
      int32_t statb[13] = {};
      for (const std::string &name : {present, absent}) STAT(name.data(), statb, name.size());
      FSTAT(&unit, statb);
    },
    [] {
      int64_t statb[13] = {};
      for (const std::string &name : {present, absent}) STATI8(name.data(), statb, name.size());
      FSTATI8(&unit, statb);
    },
    [] {
      for (const char *mode : {"r", "x", "q"}) ACCESS(present.data(), mode, present.size(), 1);
    },
    [] {
      for (const char *mode : {"+w", "+q"}) CHMOD(present.data(), mode, present.size(), 2);
      CHMOD(absent.data(), "+w", absent.size(), 2);
    },
    [] {
      char name[20];
      ISATTY(&unit);
      TTYNAM(name, &unit, sizeof name);
    },
    list_all,
    list_all_wide,
    [] {
      char path[300];
      for (const std::string &name : {present, absent}) FINDFILEQQ(name.data(), "PATH", path, name.size(), 4, 300);
    },
    [] {
      make_file("b.tmp");
      DELFILESQQ("*.tmp", 5);
      DELFILESQQ("none\\*", 6);
      DELFILESQQ("none\\", 5);
    },
    [] {
      RENAMEFILEQQ("a.txt", "b.txt", 5, 5);
      RENAME("b.txt", "a.txt", 5, 5);
      RENAME("b.txt", "a.txt", 5, 5);
      RENAMEFILEQQ("b.txt", "a.txt", 5, 5);
      UNLINK(absent.data(), absent.size());
    },
    [] {
      for (const std::string &name : {present, absent}) {
        SETFILEACCESSQQ(name.data(), &zero, name.size());
        SETFILETIMEQQ(name.data(), &zero, name.size());
      }
    },
    [] {
      MAKEDIRQQ("dir", 3);
      MAKEDIRQQ("dir", 3);
      CHANGEDIRQQ("dir", 3);
      CHDIR("..", 2);
      CHDIR("none", 4);
      CHANGEDIRQQ("none", 4);
      DELDIRQQ("dir", 3);
      char directory[300];
      GETCWD(directory, sizeof directory);
      GETCWD(directory, 2);
    },
    [] {
      char directory[300] = "C";
      GETDRIVEDIRQQ(directory, sizeof directory);
      GETDRIVEDIRQQ(directory, 2);
      int64_t total, avail;
      GETDRIVESIZEQQI8(R"(\\none\none)", &total, &avail, 11);
      GETDRIVESIZEQQI8("C", &total, &avail, 1);
    },
    [] {
      char path[300], drive[3], name[20], extension[5];
      FULLPATHQQ(present.data(), path, present.size(), sizeof path);
      FULLPATHQQ(present.data(), path, present.size(), 2);
      SPLITPATHQQ(present.data(), drive, path, name, extension, present.size(), 3, 300, 20, 5);
    },
};

}  // namespace

TEST_CASE("a thousand calls of each file routine leave nothing behind") {
  RecordingCore core;
  const TestDir dir;
  make_file(present);
  const ImportOverride allocation(library(), "malloc", counting_malloc);
  const ImportOverride release(library(), "free", counting_free);
  for (size_t i = 0; i < std::size(calls); ++i) {
    CAPTURE(i);
    calls[i]();  // what a first call sets up for good does not count
    live_allocations = 0;
    const DWORD handles = handle_count();
    for (int count = 0; count < 1000; ++count) calls[i]();
    CHECK(live_allocations == 0);
    CHECK(handle_count() == handles);
  }
}
