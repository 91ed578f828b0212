// SPDX-License-Identifier: MIT
// Loading the library into processes with no, several, and incomplete core runtimes.
#include <doctest/doctest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <windows.h>

#include "child.h"
#include "import_override.h"
#include "recording.h"

namespace fs = std::filesystem;

namespace {

// The module names in the order in which the library looks for them.
const std::vector<std::string> core_names = {"libqwcoremd.dll", "libqwcorert.dll", "libqwcoremdd.dll",
                                             "libqwcorertd.dll"};

fs::path test_dir() { return fs::path(own_path()).parent_path().parent_path(); }

HMODULE load(const std::string &path) {
  HMODULE module = LoadLibraryA(path.c_str());
  if (module == nullptr) {
    std::printf("cannot load %s: %lu\n", path.c_str(), GetLastError());
    std::exit(99);
  }
  return module;
}

template <class Routine> Routine *routine(HMODULE module, const char *name) {
  return reinterpret_cast<Routine *>(reinterpret_cast<void *>(GetProcAddress(module, name)));
}

HMODULE load_library() { return load("libqwport.dll"); }

// The recording core under each of the names, in a directory that is removed at the end.
class CoreCopies {
 public:
  CoreCopies() : dir_(test_dir() / ("core_copies_" + std::to_string(GetCurrentProcessId()))) {
    fs::create_directories(dir_);
    for (const std::string &name : core_names) fs::copy_file(test_dir() / "recording/libqwcorert.dll", dir_ / name);
  }
  ~CoreCopies() { fs::remove_all(dir_); }
  CoreCopies(const CoreCopies &) = delete;
  CoreCopies &operator=(const CoreCopies &) = delete;
  [[nodiscard]] std::string path(const std::string &name) const { return (dir_ / name).string(); }

 private:
  fs::path dir_;
};

const std::string incomplete_core() { return (test_dir() / "incomplete/libqwcorert.dll").string(); }

constexpr char warning[] =
    "[Warning during libqwport.dll initialization] "
    "Non-compatible version of Fortran libqwcore DLL was loaded to process address space\n";

std::string guard_text(const std::string &name) {
  return "[Error] " + name +
         " function needs to load libqwcore.dll*"
         "Executable program must link against Fortran DLL run-time libraries\n";
}

int WINAPI print_message_box(HWND owner, const char *text, const char *caption, UINT style) {
  std::printf("%p|%s|%s|%u\n", static_cast<void *>(owner), text, caption, style);
  return IDOK;
}

}  // namespace

// Loads the core runtimes that it is given, then the library, and says which of them FLUSH reached.
CHILD_PROGRAM(names_the_bound_core) {
  std::vector<HMODULE> cores;
  for (const std::string &path : arguments) cores.push_back(load(path));
  const int32_t unit = 1;
  routine<int32_t(const int32_t *)>(load_library(), "FLUSH")(&unit);
  for (size_t i = 0; i < cores.size(); ++i) {
    if (routine<Recording *()>(cores[i], "recording_core")()->call_count == 1) {
      std::printf("%s", fs::path(arguments[i]).filename().string().c_str());
    }
  }
  return 0;
}

// Loads an incomplete core runtime and the library, and calls what is there and what is not.
CHILD_PROGRAM(uses_an_incomplete_core) {
  HMODULE core = load(incomplete_core());
  HMODULE library = load_library();
  routine<void(const char *, int64_t)>(core, "recording_answer")("__msportlib_d_readchar", 'A');
  const int32_t unit = 1;
  char c = ' ';
  const int32_t status = routine<int32_t(const int32_t *, char *, size_t)>(library, "FGETC")(&unit, &c, 1);
  std::printf("FGETC %d %c\n", status, c);
  std::fflush(stdout);
  routine<int32_t(const int32_t *)>(library, "FLUSH")(&unit);
  return 0;
}

CHILD_PROGRAM(calls_without_a_core) {
  HMODULE library = load_library();
  std::atexit([] { std::printf("exit handlers ran\n"); });
  const int32_t unit = 1;
  char c[4] = "";
  if (arguments[0] == "ABORT") routine<void(const char *, size_t)>(library, "ABORT")(nullptr, 0);
  if (arguments[0] == "FLUSH") routine<int32_t(const int32_t *)>(library, "FLUSH")(&unit);
  if (arguments[0] == "FGETC") routine<int32_t(const int32_t *, char *, size_t)>(library, "FGETC")(&unit, c, 1);
  if (arguments[0] == "IERRNO") return routine<int32_t()>(library, "IERRNO")();
  return 99;
}

CHILD_PROGRAM(shows_the_guard_arguments) {
  HMODULE library = load_library();
  const ImportOverride message_box(library, "MessageBoxA", print_message_box);
  routine<void(const int32_t *)>(library, "EXIT")(nullptr);
  return 99;
}

TEST_CASE("the core runtime with the first name in the list is bound, whatever was loaded first") {
  const CoreCopies copies;
  for (size_t first = 0; first < core_names.size(); ++first) {
    Arguments loaded;
    for (size_t i = core_names.size(); i > first; --i) loaded.push_back(copies.path(core_names[i - 1]));
    const ChildResult result = run_child("names_the_bound_core", loaded);
    CHECK(result.exit_code == 0);
    CHECK(result.output == core_names[first]);
  }
}

TEST_CASE("without a core runtime the library loads silently and works as far as it needs none") {
  const ChildResult result = run_child("calls_without_a_core", {"IERRNO"});
  CHECK(result.exit_code == 0);
  CHECK(result.output == "exit handlers ran\n");
}

TEST_CASE("without a core runtime the first use of it shows the guard and exits with 1") {
  const std::pair<const char *, const char *> guards[] = {
      {"ABORT", "for_abort"}, {"FLUSH", "FLUSHQQ"}, {"FGETC", "_msportlib_d_readchar"}};
  for (const auto &[name, guard_name] : guards) {
    const ChildResult result = run_child("calls_without_a_core", {name});
    CHECK(result.exit_code == 1);
    CHECK(result.output == guard_text(guard_name) + "exit handlers ran\n");
  }
}

TEST_CASE("the guard's box has no owner and an error icon") {
  const ChildResult result = run_child("shows_the_guard_arguments");
  CHECK(result.exit_code == 1);
  CHECK(result.output ==
        "0000000000000000|for_exit function needs to load libqwcore.dll\n"
        "Executable program must link against Fortran DLL run-time libraries|Error|16\n");
}

TEST_CASE("an incomplete core runtime brings the warning; what it has works, what it lacks is guarded") {
  const ChildResult result = run_child("uses_an_incomplete_core");
  CHECK(result.exit_code == 1);
  CHECK(result.output == warning + std::string("FGETC 0 A\n") + guard_text("FLUSHQQ"));
}
