// SPDX-License-Identifier: MIT
// The command lines that the host is given.
#include <cstdlib>

#include "library_test.h"

namespace {

std::string started_line;

}  // namespace

CHILD_PROGRAM(system_without_memory) {
  const FailingCall memory("malloc");
  return call(SYSTEM, "x");
}

TEST_CASE("SYSTEM's command line") {
  const ImportOverride directory(library(), "GetSystemDirectoryA",
                                 [](char *buffer, UINT) { return std::strcpy(buffer, "S:\\dir"), UINT{6}; });
  const ImportOverride start(library(), "CreateProcessA",
                             [](const char *, char *line) { return started_line = line, FALSE; });
  const std::string long_command(3000, 'x');
  const std::pair<std::string, std::string> cases[] = {
      {" a  b  ", "  a  b"}, {"   ", ""}, {{"ab \0cd", 6}, " ab "}, {long_command, ' ' + long_command}};
  for (const auto &[command, expected] : cases) {
    CHECK(call(SYSTEM, command) == -1);
    CHECK(started_line == "S:\\dir\\cmd.exe /c" + expected);
  }
  check_assertion("system_without_memory", "command, file portability/system, line 54");
}

TEST_CASE("SYSTEMQQ tells whether there was an interpreter") {
  const std::string interpreter = std::getenv("COMSPEC");
  _putenv("COMSPEC=Z:\\no\\such\\interpreter.exe");
  CHECK(call(SYSTEMQQ, "exit 0") == 0);
  _putenv(("COMSPEC=" + interpreter).c_str());
  CHECK(call(SYSTEMQQ, "exit 0") == 1);
}

TEST_CASE("RUNQQ's argument line and failures") {
  RecordingCore core;
  const ImportOverride spawn(library(), "_spawnl", [](int, const char *, const char *line) {
    started_line = line;
    errno = ENOENT;
    return intptr_t{-1};
  });
  for (const auto &[arguments, line] : {std::pair{"   ", "\"a p\" "}, {" x  \"y z\" ", "\"a p\"  x  \"y z\""}}) {
    CHECK_CALLS(call(RUNQQ, "a p  ", arguments), -1, "");
    CHECK((started_line == line && errno == ENOENT));
  }
  CHECK_CALLS(RUNQQ(nullptr, "x", 3, 1), -1, reports(EINVAL) + ' ' + reports(ENOMEM));
  CHECK(errno == ENOMEM);
}
