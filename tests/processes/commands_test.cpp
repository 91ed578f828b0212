// SPDX-License-Identifier: MIT
// Running commands: real children, and the command lines that the host is given.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "library_test.h"

namespace {

std::string recorded_line() {
  std::ifstream file("command_line.txt");
  return {std::istreambuf_iterator<char>(file), {}};
}

// The command line that CreateProcessA was given.
std::string started_line;
BOOL WINAPI start_nothing(const char *application, char *line, SECURITY_ATTRIBUTES *, SECURITY_ATTRIBUTES *,
                          BOOL inherit, DWORD flags, void *, const char *, STARTUPINFOA *startup,
                          PROCESS_INFORMATION *) {
  CHECK((application == nullptr && inherit && flags == 0 && startup->cb == 104));
  started_line = line;
  return FALSE;
}

}  // namespace

CHILD_PROGRAM(records_its_command_line) {
  std::ofstream("command_line.txt") << GetCommandLineA();
  return std::atoi(arguments.at(0).c_str());
}

CHILD_PROGRAM(system_without_memory) {
  const FailingCall memory("malloc");
  return call(SYSTEM, "x");
}

TEST_CASE_FIXTURE(InTestDir, "SYSTEM runs the command by the interpreter and gives the whole exit code") {
  CHECK(call(SYSTEM, "exit 70000   ") == 70000);
  // Some hosts' interpreters read commands when they are given none: they find nothing.
  SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
  HANDLE nothing = CreateFileA("NUL", GENERIC_READ, FILE_SHARE_READ, &inheritable, OPEN_EXISTING, 0, nullptr);
  HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  SetStdHandle(STD_INPUT_HANDLE, nothing);
  CHECK(call(SYSTEM, "     ") == 0);
  SetStdHandle(STD_INPUT_HANDLE, input);
  CloseHandle(nothing);
  const std::string command = own_path() + " --child records_its_command_line 65535 \"a b\"";
  CHECK(call(SYSTEM, command + "  ") == 65535);
  CHECK(recorded_line() == command);
  CHECK(core.calls() == "");
  check_assertion("system_without_memory", "command, file portability/system, line 54");
}

TEST_CASE("SYSTEM's command line") {
  const ImportOverride directory(library(), "GetSystemDirectoryA",
                                 [](char *buffer, UINT) { return std::strcpy(buffer, "S:\\dir"), UINT{6}; });
  const ImportOverride start(library(), "CreateProcessA", start_nothing);
  const std::string long_command(3000, 'x');
  const std::pair<std::string, std::string> cases[] = {
      {" a  b  ", "  a  b"}, {"   ", ""}, {"", ""}, {{"ab \0cd", 6}, " ab "}, {long_command, ' ' + long_command}};
  for (const auto &[command, expected] : cases) {
    CHECK(call(SYSTEM, command) == -1);
    CHECK(started_line == "S:\\dir\\cmd.exe /c" + expected);
  }
}

TEST_CASE("SYSTEMQQ tells whether there was an interpreter") {
  RecordingCore core;
  CHECK(call(SYSTEMQQ, "exit 0") == 1);
  CHECK(call(SYSTEMQQ, "exit 1  ") == 1);
  CHECK_CALLS(SYSTEMQQ(nullptr, 3), 0, reports(EINVAL));
  const std::string interpreter = std::getenv("COMSPEC");
  _putenv("COMSPEC=Z:\\no\\such\\interpreter.exe");
  CHECK(call(SYSTEMQQ, "exit 0") == 0);
  _putenv(("COMSPEC=" + interpreter).c_str());
}

TEST_CASE_FIXTURE(InTestDir, "RUNQQ runs a program, also one with blanks in its name") {
  const std::string home = std::filesystem::path(own_path()).parent_path().string();
  _putenv(("PATH=" + home + ';' + std::getenv("PATH")).c_str());  // for the copy's DLLs
  std::filesystem::copy_file(own_path(), "a program.exe");
  const std::string arguments = "--child records_its_command_line 40000  \"x y\"";
  CHECK(call(RUNQQ, "a program.exe  ", arguments + "  ") == static_cast<int16_t>(40000));
  CHECK(recorded_line() == "\"a program.exe\" " + arguments);
  CHECK_CALLS(call(RUNQQ, ".\\a program", "--child records_its_command_line 65535"), -1, "");
}

TEST_CASE("RUNQQ's argument line and failures") {
  RecordingCore core;
  static std::string line;
  const ImportOverride spawn(library(), "_spawnl",
                             [](int, const char *, const char *argument, const char *end) -> intptr_t {
                               line = argument;
                               CHECK(end == nullptr);
                               errno = ENOENT;
                               return -1;
                             });
  CHECK(call(RUNQQ, "p", "   ") == -1);
  CHECK(line == "\"p\" ");
  CHECK_CALLS(errno, ENOENT, "");

  CHECK_CALLS(RUNQQ(nullptr, "x", 3, 1), -1, reports(EINVAL) + ' ' + reports(ENOMEM));
  CHECK(errno == ENOMEM);
  const FailingCall memory("malloc");
  CHECK_CALLS(call(RUNQQ, "p", "x"), -1, reports(ENOMEM) + ' ' + reports(ENOMEM));
}
