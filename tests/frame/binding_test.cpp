// SPDX-License-Identifier: MIT
// Loading the library into processes with no and with an incomplete core runtime.
#include <doctest/doctest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <windows.h>

#include "child.h"
#include "import_override.h"
#include "thread.h"

namespace fs = std::filesystem;

namespace {

fs::path build_dir() { return fs::path(own_path()).parent_path().parent_path(); }

HMODULE load(const std::string &path) {
  if (HMODULE module = LoadLibraryA(path.c_str())) return module;
  std::printf("cannot load %s: %lu\n", path.c_str(), GetLastError());
  std::exit(99);
}

template <class Result, class... Parameters> Result call(HMODULE module, const char *name, Parameters... parameters) {
  return reinterpret_cast<Result (*)(Parameters...)>(reinterpret_cast<void *>(GetProcAddress(module, name)))(
      parameters...);
}

const int32_t unit = 1;
char character[2] = " ";
char *const nothing = nullptr;

int32_t call_fgetc(HMODULE library) { return call<int32_t>(library, "FGETC", &unit, &character[0], size_t{1}); }

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

FARPROC WINAPI find_message_box(HMODULE, const char *) { return reinterpret_cast<FARPROC>(print_message_box); }

}  // namespace

// Loads an incomplete core runtime and the library, and calls what is there and what is not.
CHILD_PROGRAM(uses_an_incomplete_core) {
  HMODULE core = load((build_dir() / "incomplete/libqwcorert.dll").string());
  HMODULE library = load("libqwport.dll");
  call<void>(core, "recording_answer", "__msportlib_d_readchar", int64_t{'A'});
  const int32_t status = call_fgetc(library);
  std::printf("FGETC %d %s\n", status, character);
  std::fflush(stdout);
  return call<int32_t>(library, "FLUSH", &unit);
}

CHILD_PROGRAM(calls_without_a_core) {
  HMODULE library = load("libqwport.dll");
  std::atexit([] { std::printf("exit handlers ran\n"); });
  if (arguments[0] == "IERRNO") return call<int32_t>(library, "IERRNO");
  if (arguments[0] == "FGETC") call_fgetc(library);
  const ImportOverride look_up(library, "GetProcAddress", find_message_box);
  if (arguments[0] == "EXIT") call<void>(library, "EXIT", nothing);
  return 99;
}

TEST_CASE("a thread that starts binds nothing") {
  static int look_ups;
  const ImportOverride find(
      load("libqwport.dll"), "GetModuleHandleA", +[](const char *) -> HMODULE { return ++look_ups, nullptr; });
  on_other_thread([](void *) -> DWORD { return 0; });
  CHECK(look_ups == 0);
}

TEST_CASE("without a core runtime the library works as far as it needs none, then shows the guard and exits with 1") {
  const auto expect = [](const char *name, uint32_t exit_code, const std::string &output) {
    const ChildResult result = run_child("calls_without_a_core", {name});
    CHECK(result.exit_code == exit_code);
    CHECK(result.output == output + "exit handlers ran\n");
  };
  expect("IERRNO", 0, "");
  expect("FGETC", 1, guard_text("_msportlib_d_readchar"));
  expect("EXIT", 1,
         "0000000000000000|for_exit function needs to load libqwcore.dll\n"
         "Executable program must link against Fortran DLL run-time libraries|Error|16\n");
}

TEST_CASE("an incomplete core runtime brings the warning; what it has works, what it lacks is guarded") {
  const ChildResult result = run_child("uses_an_incomplete_core");
  CHECK(result.exit_code == 1);
  CHECK(result.output == warning + std::string("FGETC 0 A\n") + guard_text("FLUSHQQ"));
}
