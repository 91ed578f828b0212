// SPDX-License-Identifier: MIT
#include "child.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

#include <windows.h>

#include "message_box.h"

namespace {

constexpr char child_option[] = "--child";
constexpr DWORD time_limit_ms = 60'000;

using ChildProcedure = int (*)(const Arguments &);

std::map<std::string, ChildProcedure> &child_programs() {
  static std::map<std::string, ChildProcedure> programs;
  return programs;
}

std::string quoted(const std::string &word) { return '"' + word + '"'; }

[[noreturn]] void fail(const char *what) {
  std::fprintf(stderr, "%s failed with %lu\n", what, GetLastError());
  std::abort();
}

PROCESS_INFORMATION start(std::string command, HANDLE output) {
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  startup.hStdOutput = output;
  startup.hStdError = output;
  PROCESS_INFORMATION process{};
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
    fail("CreateProcess");
  }
  return process;
}

// Reads what there is. A program that the child started may hold its output open, so the end of the
// pipe cannot be waited for.
std::string read_available(HANDLE pipe) {
  std::string text;
  char buffer[4096];
  DWORD count = 0;
  while (PeekNamedPipe(pipe, nullptr, 0, nullptr, &count, nullptr) && count > 0) {
    if (!ReadFile(pipe, buffer, sizeof buffer, &count, nullptr)) break;
    for (DWORD i = 0; i < count; ++i) {
      if (buffer[i] != '\r') text += buffer[i];
    }
  }
  return text;
}

std::string watch_until_end(const PROCESS_INFORMATION &process, HANDLE pipe) {
  constexpr DWORD interval_ms = 5;
  std::string text;
  const ULONGLONG deadline = GetTickCount64() + time_limit_ms;
  while (WaitForSingleObject(process.hProcess, interval_ms) == WAIT_TIMEOUT) {
    text += read_available(pipe);
    text += dismiss_message_box(process.dwProcessId);
    if (GetTickCount64() > deadline) TerminateProcess(process.hProcess, 255);
  }
  return text + read_available(pipe);
}

}  // namespace

std::string own_path() {
  char path[MAX_PATH];
  return {path, GetModuleFileNameA(nullptr, path, sizeof path)};
}

ChildProgram::ChildProgram(const char *name, ChildProcedure procedure) { child_programs()[name] = procedure; }

bool run_as_child(int argument_count, char **arguments, int &status) {
  if (argument_count < 3 || std::strcmp(arguments[1], child_option) != 0) return false;
  const auto program = child_programs().find(arguments[2]);
  if (program == child_programs().end()) {
    std::fprintf(stderr, "no child program %s\n", arguments[2]);
    std::abort();
  }
  status = program->second(Arguments(arguments + 3, arguments + argument_count));
  return true;
}

ChildResult run_child(const std::string &name, const Arguments &arguments) {
  std::string command = quoted(own_path()) + ' ' + child_option + ' ' + name;
  for (const std::string &argument : arguments) command += ' ' + quoted(argument);

  SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
  HANDLE read_end = nullptr;
  HANDLE write_end = nullptr;
  if (!CreatePipe(&read_end, &write_end, &inheritable, 0)) fail("CreatePipe");
  SetHandleInformation(read_end, HANDLE_FLAG_INHERIT, 0);

  const PROCESS_INFORMATION process = start(command, write_end);
  CloseHandle(write_end);
  ChildResult result{};
  result.output = watch_until_end(process, read_end);
  DWORD exit_code = 0;
  GetExitCodeProcess(process.hProcess, &exit_code);
  result.exit_code = exit_code;
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  CloseHandle(read_end);
  return result;
}
