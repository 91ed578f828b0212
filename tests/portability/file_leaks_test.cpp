// SPDX-License-Identifier: MIT
// A thousand calls of each file routine leave no allocation and no handle behind.
#include <cstdlib>

#include "library_test.h"
#include "test_dir.h"

namespace {

int live_allocations;

DWORD handle_count() {
  DWORD count = 0;
  GetProcessHandleCount(GetCurrentProcess(), &count);
  return count;
}

template <class Record> void list_all(auto routine) {
  Record record;
  int64_t handle = QWPORT_FINDINFO_FIRST;
  while (call(routine, "*", &record, &handle) != 0) {
  }
}

// Every routine of the family, once where it succeeds and once where it fails.
void (*const all_calls[])() = {
    [] {
      int32_t statb[13];
      int64_t wide_statb[13];
      for (const std::string_view name : {"a.txt", "missing.txt"}) {
        call(STAT, name, statb);
        call(STATI8, name, wide_statb);
        call(SETFILEACCESSQQ, name, 0);
        call(SETFILETIMEQQ, name, 0);
        call(CHMOD, name, "+w");
      }
      call(FSTAT, 11, statb);
      call(FSTATI8, 11, wide_statb);
    },
    [] {
      for (const char *mode : {"r", "x", "q"}) call(ACCESS, "a.txt", mode);
      call(CHMOD, "a.txt", "+q");
      call(ISATTY, 11);
      call(TTYNAM, Room{20}, 11);
    },
    [] { list_all<QwportFileInfo>(GETFILEINFOQQ); },
    [] { list_all<QwportFileInfoI8>(GETFILEINFOQQI8); },
    [] {
      for (const char *name : {"a.txt", "missing.txt"}) call(FINDFILEQQ, name, "PATH", Room{300});
    },
    [] {
      make_file("b.tmp");
      for (const char *files : {"*.tmp", "none\\*", "none\\"}) call(DELFILESQQ, files);
    },
    [] {
      call(RENAMEFILEQQ, "a.txt", "b.txt");
      for (int i = 0; i < 2; ++i) call(RENAME, "b.txt", "a.txt");
      call(RENAMEFILEQQ, "b.txt", "a.txt");
      call(UNLINK, "missing.txt");
    },
    [] {
      for (int i = 0; i < 2; ++i) call(MAKEDIRQQ, "dir");
      for (auto *routine : {CHANGEDIRQQ, CHDIR}) {
        for (const char *directory : {"dir", "..", "none"}) call(routine, directory);
      }
      for (int i = 0; i < 2; ++i) call(DELDIRQQ, "dir");
      for (const size_t length : {300, 2}) call(GETCWD, Room{length});
    },
    [] {
      for (const size_t length : {300, 2}) call(GETDRIVEDIRQQ, "C" + std::string(length - 1, ' '));
      for (const char *drive : {R"(\\none\none)", "C"}) call(GETDRIVESIZEQQI8, drive, 0, 0);
    },
    [] {
      for (const size_t length : {300, 2}) call(FULLPATHQQ, "a.txt", Room{length});
      call(SPLITPATHQQ, "a.txt", Room{3}, Room{300}, Room{20}, Room{5});
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
  for (const auto &call_once : all_calls) {
    CAPTURE(&call_once - all_calls);
    call_once();  // what a first call sets up for good does not count
    live_allocations = 0;
    const DWORD handles = handle_count();
    for (int count = 0; count < 1000; ++count) call_once();
    CHECK(live_allocations == 0);
    CHECK(handle_count() == handles);
  }
}
