// SPDX-License-Identifier: MIT
// Running commands: real children, and host calls that fail.
#include <doctest/doctest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "child.h"
#include "guarded_text.h"
#include "import_override.h"
#include "library.h"
#include "qwport.h"
#include "recording.h"
#include "test_dir.h"

namespace {

constexpr char record_name[] = "command_line.txt";

int32_t run_system(const std::string &command) {
  GuardedText text(command);
  return SYSTEM(text.data(), text.size());
}

int32_t run_systemqq(const std::string &command) {
  GuardedText text(command);
  return SYSTEMQQ(text.data(), text.size());
}

int16_t run_runqq(const std::string &program, const std::string &arguments) {
  GuardedText name(program);
  GuardedText line(arguments);
  return RUNQQ(name.data(), line.data(), name.size(), line.size());
}

std::string recorded_line() {
  std::ostringstream text;
  text << std::ifstream(record_name).rdbuf();
  return text.str();
}

// Children find nothing to read while it lives.
class EmptyInput {
 public:
  EmptyInput() { SetStdHandle(STD_INPUT_HANDLE, nothing_); }
  ~EmptyInput() {
    SetStdHandle(STD_INPUT_HANDLE, previous_);
    CloseHandle(nothing_);
  }
  EmptyInput(const EmptyInput &) = delete;
  EmptyInput &operator=(const EmptyInput &) = delete;

 private:
  SECURITY_ATTRIBUTES inheritable_ = {sizeof inheritable_, nullptr, TRUE};
  HANDLE nothing_ = CreateFileA("NUL", GENERIC_READ, FILE_SHARE_READ, &inheritable_, OPEN_EXISTING, 0, nullptr);
  HANDLE previous_ = GetStdHandle(STD_INPUT_HANDLE);
};

// The command line that CreateProcessA was given.
std::string started_line;
BOOL WINAPI start_nothing(const char *application, char *line, SECURITY_ATTRIBUTES *, SECURITY_ATTRIBUTES *,
                          BOOL inherit, DWORD flags, void *, const char *, STARTUPINFOA *startup,
                          PROCESS_INFORMATION *) {
  CHECK((application == nullptr && inherit && flags == 0 && startup->cb == 104));
  started_line = line;
  return FALSE;
}

UINT WINAPI system_directory(char *buffer, UINT) {
  std::strcpy(buffer, "S:\\dir");
  return 6;
}
UINT WINAPI no_system_directory(char *, UINT) { return 0; }
DWORD WINAPI failing_wait(HANDLE, DWORD) { return WAIT_FAILED; }
BOOL WINAPI failing_query(HANDLE, DWORD *) { return FALSE; }
void *no_memory(size_t) { return nullptr; }

}  // namespace

CHILD_PROGRAM(records_its_command_line) {
  std::ofstream(record_name) << GetCommandLineA();
  return std::atoi(arguments.at(0).c_str());
}

CHILD_PROGRAM(system_without_memory) {
  const ImportOverride memory(library(), "malloc", no_memory);
  return SYSTEM("x", 1);
}

TEST_CASE("SYSTEM runs the command by the interpreter and gives the whole exit code") {
  const TestDir dir;
  RecordingCore core;
  CHECK(run_system("exit 3   ") == 3);
  CHECK(run_system("exit 70000") == 70000);
  {
    const EmptyInput input;  // some hosts' interpreters then read commands
    CHECK(run_system("     ") == 0);
  }
  const std::string command = own_path() + " --child records_its_command_line 65535 \"a b\"";
  CHECK(run_system(command + "  ") == 65535);
  CHECK(recorded_line() == command);
  CHECK(core.calls() == "");
}

TEST_CASE("SYSTEM's command line") {
  const ImportOverride directory(library(), "GetSystemDirectoryA", system_directory);
  const ImportOverride start(library(), "CreateProcessA", start_nothing);
  const std::string interpreter = "S:\\dir\\cmd.exe /c";
  const std::string long_command(3000, 'x');
  const std::pair<std::string, std::string> cases[] = {
      {" a  b  ", "  a  b"}, {"   ", ""}, {"", ""}, {{"ab \0cd", 6}, " ab "}, {long_command, ' ' + long_command}};
  for (const auto &[command, expected] : cases) {
    CAPTURE(command);
    CHECK(run_system(command) == -1);
    CHECK(started_line == interpreter + expected);
  }
}

TEST_CASE("SYSTEM answers -1 when the host fails") {
  RecordingCore core;
  {
    const ImportOverride directory(library(), "GetSystemDirectoryA", no_system_directory);
    CHECK(run_system("exit 3") == -1);
  }
  {
    const ImportOverride wait(library(), "WaitForSingleObject", failing_wait);
    CHECK(run_system("exit 3") == -1);
  }
  {
    const ImportOverride query(library(), "GetExitCodeProcess", failing_query);
    CHECK(run_system("exit 3") == -1);
  }
  CHECK(core.calls() == "");
  const ChildResult child = run_child("system_without_memory");
  CHECK(child.exit_code == 3);
  CHECK(child.output.find("Assertion failed: command, file portability/system, line 54") != std::string::npos);
}

TEST_CASE("SYSTEMQQ tells whether there was an interpreter") {
  RecordingCore core;
  CHECK(run_systemqq("exit 0") == 1);
  CHECK(run_systemqq("exit 1  ") == 1);
  CHECK(SYSTEMQQ(nullptr, 3) == 0);
  CHECK(core.calls() == reports(EINVAL));
  const std::string interpreter = std::getenv("COMSPEC");
  _putenv("COMSPEC=Z:\\no\\such\\interpreter.exe");
  CHECK(run_systemqq("exit 0") == 0);
  _putenv(("COMSPEC=" + interpreter).c_str());
}

TEST_CASE("RUNQQ runs a program, also one with blanks in its name") {
  const TestDir dir;
  RecordingCore core;
  const std::string home = std::filesystem::path(own_path()).parent_path().string();
  _putenv(("PATH=" + home + ';' + std::getenv("PATH")).c_str());  // for the copy's DLLs
  std::filesystem::copy_file(own_path(), "a program.exe");

  const std::string arguments = "--child records_its_command_line 40000  \"x y\"";
  CHECK(run_runqq("a program.exe  ", arguments + "  ") == static_cast<int16_t>(40000));
  CHECK(recorded_line() == "\"a program.exe\" " + arguments);
  CHECK(run_runqq(".\\a program", "--child records_its_command_line 65535") == -1);
  CHECK(core.calls() == "");
}

TEST_CASE("RUNQQ's argument line and failures") {
  RecordingCore core;
  static std::string line;
  const ImportOverride spawn(
      library(), "_spawnl", +[](int, const char *, const char *argument, const char *end) -> intptr_t {
        line = argument;
        CHECK(end == nullptr);
        errno = ENOENT;
        return -1;
      });
  CHECK(run_runqq("p", "   ") == -1);
  CHECK(line == "\"p\" ");
  CHECK(errno == ENOENT);
  CHECK(core.calls() == "");

  CHECK(RUNQQ(nullptr, "x", 3, 1) == -1);
  CHECK(core.calls() == reports(EINVAL) + ' ' + reports(ENOMEM));
  CHECK(errno == ENOMEM);
  static int allocations;
  allocations = 0;
  const ImportOverride memory(
      library(), "malloc", +[](size_t size) { return ++allocations == 2 ? nullptr : std::malloc(size); });
  CHECK(run_runqq("p", "x") == -1);
  CHECK(core.calls() == reports(ENOMEM));
}
