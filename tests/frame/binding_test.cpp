// SPDX-License-Identifier: MIT
// Loading the library into processes with no and with an incomplete core runtime.
#include <doctest/doctest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <string>

#include <windows.h>

#include "child.h"
#include "guarded_text.h"

namespace {

template <class Result, class... Parameters> Result call(HMODULE module, const char *name, Parameters... parameters) {
  return reinterpret_cast<Result (*)(Parameters...)>(reinterpret_cast<void *>(GetProcAddress(module, name)))(
      parameters...);
}

const int32_t unit = 1;
char character[2] = " ";

int32_t call_fgetc(HMODULE library) { return call<int32_t>(library, "FGETC", &unit, &character[0], size_t{1}); }

std::string guard_text(const std::string &name) {
  return "[Error] " + name +
         " function needs to load libqwcore.dll*"
         "Executable program must link against Fortran DLL run-time libraries\n";
}

}  // namespace

// Loads an incomplete core runtime and the library, and calls what is there and what is not.
CHILD_PROGRAM(uses_an_incomplete_core) {
  const auto build_dir = std::filesystem::path(own_path()).parent_path().parent_path();
  HMODULE core = LoadLibraryA((build_dir / "incomplete/libqwcorert.dll").string().c_str());
  HMODULE library = LoadLibraryA("libqwport.dll");
  call<void>(core, "recording_answer", "__msportlib_d_readchar", int64_t{'A'});
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  std::printf("FGETC %d", call_fgetc(library));
  std::printf(" %s\n", character);
  return call<int32_t>(library, "FLUSH", &unit);
}

CHILD_PROGRAM(calls_without_a_core) {
  HMODULE library = LoadLibraryA("libqwport.dll");
  std::atexit([] { std::printf("exit handlers ran\n"); });
  return arguments[0] == "FGETC" ? call_fgetc(library) : call<int32_t>(library, "IERRNO");
}

TEST_CASE("without a core runtime the library works as far as it needs none, then shows the guard and exits with 1") {
  const ChildResult working = run_child("calls_without_a_core", {"IERRNO"});
  CHECK((working.exit_code == 0 && working.output == "exit handlers ran\n"));
  const ChildResult guarded = run_child("calls_without_a_core", {"FGETC"});
  CHECK((guarded.exit_code == 1 && guarded.output == guard_text("_msportlib_d_readchar") + "exit handlers ran\n"));
}

TEST_CASE("an incomplete core runtime brings the warning; what it has works, what it lacks is guarded") {
  const ChildResult result = run_child("uses_an_incomplete_core");
  CHECK(result.exit_code == 1);
  CHECK(result.output ==
        "[Warning during libqwport.dll initialization] "
        "Non-compatible version of Fortran libqwcore DLL was loaded to process address space\n"
        "FGETC 0 A\n" +
            guard_text("FLUSHQQ"));
}

TEST_CASE("the version text is title, version and build date between tabs, cut or blank-padded, without any core") {
  const auto version_text = [](size_t length) {
    GuardedText text(length);
    CHECK(call<int32_t>(LoadLibraryA("libqwport.dll"), "FOR_QWPORT_VERSION", text.data(), text.size()) == 4);
    return text.str();
  };
  const std::string text = version_text(100), full = text.substr(0, text.find_last_not_of(' ') + 1);
  const std::regex form("[^\t]+\tVersion " QWPORT_VERSION "\t[A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4}");
  CHECK(std::regex_match(full, form));
  for (const size_t length : {size_t{0}, size_t{1}, full.size() - 1, full.size(), full.size() + 1})
    CHECK(version_text(length) == text.substr(0, length));
}
