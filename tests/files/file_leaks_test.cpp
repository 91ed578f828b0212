// SPDX-License-Identifier: MIT
// A thousand calls of each file routine leave no allocation and no handle behind.
#include <doctest/doctest.h>

#include <cstdlib>
#include <string>

#include <windows.h>

#include "import_override.h"
#include "library.h"
#include "qwport.h"
#include "recording.h"
#include "test_dir.h"

namespace {

int live_allocations;

DWORD handle_count() {
  DWORD count = 0;
  GetProcessHandleCount(GetCurrentProcess(), &count);
  return count;
}

const int32_t zero = 0;
const int32_t unit = 11;

// Hands a text on as an address and a length.
auto with(auto routine, std::string_view text) { return routine(text.data(), text.size()); }

template <class Record> void list_all(auto routine) {
  Record record;
  int64_t handle = QWPORT_FINDINFO_FIRST;
  while (routine("*", &record, &handle, 1) != 0) {
  }
}

// Every routine of the family, once where it succeeds and once where it fails.
void (*const calls[])() = {
    [] {
      int32_t statb[13];
      int64_t wide_statb[13];
      for (const std::string_view name : {"a.txt", "missing.txt"}) {
        STAT(name.data(), statb, name.size());
        STATI8(name.data(), wide_statb, name.size());
        SETFILEACCESSQQ(name.data(), &zero, name.size());
        SETFILETIMEQQ(name.data(), &zero, name.size());
        CHMOD(name.data(), "+w", name.size(), 2);
      }
      FSTAT(&unit, statb);
      FSTATI8(&unit, wide_statb);
    },
    [] {
      for (const char *mode : {"r", "x", "q"}) ACCESS("a.txt", mode, 5, 1);
      CHMOD("a.txt", "+q", 5, 2);
      char name[20];
      ISATTY(&unit);
      TTYNAM(name, &unit, sizeof name);
    },
    [] { list_all<QwportFileInfo>(GETFILEINFOQQ); },
    [] { list_all<QwportFileInfoI8>(GETFILEINFOQQI8); },
    [] {
      char path[300];
      FINDFILEQQ("a.txt", "PATH", path, 5, 4, sizeof path);
      FINDFILEQQ("missing.txt", "PATH", path, 11, 4, sizeof path);
    },
    [] {
      make_file("b.tmp");
      for (const char *files : {"*.tmp", "none\\*", "none\\"}) with(DELFILESQQ, files);
    },
    [] {
      RENAMEFILEQQ("a.txt", "b.txt", 5, 5);
      for (int i = 0; i < 2; ++i) RENAME("b.txt", "a.txt", 5, 5);
      RENAMEFILEQQ("b.txt", "a.txt", 5, 5);
      with(UNLINK, "missing.txt");
    },
    [] {
      for (int i = 0; i < 2; ++i) with(MAKEDIRQQ, "dir");
      for (auto *routine : {CHANGEDIRQQ, CHDIR}) {
        for (const char *directory : {"dir", "..", "none"}) with(routine, directory);
      }
      for (int i = 0; i < 2; ++i) with(DELDIRQQ, "dir");
      char directory[300];
      for (const size_t length : {sizeof directory, size_t{2}}) GETCWD(directory, length);
    },
    [] {
      char directory[300] = "C";
      for (const size_t length : {sizeof directory, size_t{2}}) GETDRIVEDIRQQ(directory, length);
      int64_t total, avail;
      GETDRIVESIZEQQI8(R"(\\none\none)", &total, &avail, 11);
      GETDRIVESIZEQQI8("C", &total, &avail, 1);
    },
    [] {
      char path[300], drive[3], name[20], extension[5];
      for (const size_t length : {sizeof path, size_t{2}}) FULLPATHQQ("a.txt", path, 5, length);
      SPLITPATHQQ("a.txt", drive, path, name, extension, 5, 3, 300, 20, 5);
    },
};

}  // namespace

TEST_CASE("a thousand calls of each file routine leave nothing behind") {
  RecordingCore core;
  const TestDir dir;
  make_file("a.txt");
  const ImportOverride allocation(
      library(), "malloc", +[](size_t size) { return ++live_allocations, std::malloc(size); });
  const ImportOverride release(
      library(), "free", +[](void *memory) {
        if (memory != nullptr) --live_allocations;
        std::free(memory);
      });
  for (const auto &call : calls) {
    CAPTURE(&call - calls);
    call();  // what a first call sets up for good does not count
    live_allocations = 0;
    const DWORD handles = handle_count();
    for (int count = 0; count < 1000; ++count) call();
    CHECK(live_allocations == 0);
    CHECK(handle_count() == handles);
  }
}
