// SPDX-License-Identifier: MIT
// Running other programs and waiting for them.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <process.h>
#include <windows.h>

#include "assertion.h"
#include "errors.h"
#include "qwport.h"
#include "text.h"

namespace {

constexpr char interpreter[] = "\\cmd.exe /c ";

// The command line that has the host's interpreter run a command; null if the host does not tell where the
// interpreter is.
HeapText interpreter_line(const char *command, size_t length) {
  constexpr UINT directory_and_interpreter_size = 274;
  constexpr UINT directory_size = directory_and_interpreter_size - sizeof interpreter;
  length = portlib_length(length);
  HeapText line = portlib_allocate_text(length + directory_and_interpreter_size);
  if (line == nullptr) portlib_fail_assertion("command", "portability/system", 54);

  const UINT directory_length = GetSystemDirectoryA(line.get(), directory_size);
  if (directory_length == 0 || directory_length >= directory_size) return nullptr;
  char *end = std::copy_n(interpreter, sizeof interpreter - 1, line.get() + directory_length);

  // A NUL ends the command; blanks in front of one are the caller's.
  const size_t command_length = strnlen(command, length);
  end = std::copy_n(command, command_length, end);
  if (command_length == length)
    end = line.get() + portlib_trimmed_length(line.get(), static_cast<size_t>(end - line.get()));
  *end = '\0';
  return line;
}

// Starts a command line and waits for its end. Gives the exit code, or -1.
int32_t run_line(char *line) {
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process;
  if (!CreateProcessA(nullptr, line, nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) return -1;
  // The handles stay open when the wait fails; this is meant: the child may still be running.
  if (WaitForSingleObject(process.hProcess, INFINITE) == WAIT_FAILED) return -1;

  DWORD exit_code = 0;
  const bool known = GetExitCodeProcess(process.hProcess, &exit_code) != 0;
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return known ? static_cast<int32_t>(exit_code) : -1;
}

}  // namespace

int32_t SYSTEM(const char *command, size_t command_len) {
  const HeapText line = interpreter_line(command, command_len);
  return line == nullptr ? -1 : run_line(line.get());
}

int32_t SYSTEMQQ(const char *commandline, size_t commandline_len) {
  const HeapText command = portlib_own_text(commandline, commandline_len);
  return command != nullptr && std::system(command.get()) != -1 ? 1 : 0;
}

int16_t RUNQQ(const char *filename, const char *commandline, size_t filename_len, size_t commandline_len) {
  constexpr size_t quotes_blank_and_nul = 4;
  const HeapText program = portlib_own_text(filename, filename_len);
  const size_t program_length = program == nullptr ? 0 : std::strlen(program.get());
  const size_t arguments_length = portlib_trimmed_length(commandline, commandline_len);
  const HeapText line = portlib_allocate_text(program_length + arguments_length + quotes_blank_and_nul);
  if (program == nullptr || line == nullptr) {
    portlib_report_errno(ENOMEM);
    return -1;
  }
  // The name is quoted, so that one with blanks is one word; the blank behind it is there without arguments too.
  char *end = line.get();
  *end++ = '"';
  end = std::copy_n(program.get(), program_length, end);
  *end++ = '"';
  *end++ = ' ';
  end = std::copy_n(commandline, arguments_length, end);
  *end = '\0';
  return static_cast<int16_t>(_spawnl(_P_WAIT, program.get(), line.get(), nullptr));
}
