// SPDX-License-Identifier: MIT
#include "child.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

#include <windows.h>

namespace {

constexpr char child_option[] = "--child";
constexpr DWORD time_limit_ms = 60'000;

using ChildProcedure = int (*)(const Arguments &);

std::map<std::string, ChildProcedure> &child_programs() {
  static std::map<std::string, ChildProcedure> programs;
  return programs;
}

void require(bool done, const char *what) {
  if (done) return;
  std::fprintf(stderr, "%s failed with %lu\n", what, GetLastError());
  std::abort();
}

// Controls of another process tell their text only to the message.
std::string text_of(HWND window) {
  char text[1024] = "";
  SendMessageA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

// If the process shows a message box: presses its button, as its user would, and gives "[caption] text" and a line
// end, with an asterisk for each line end of the text. Otherwise gives nothing.
std::string dismiss_message_box(DWORD process) {
  HWND box = nullptr;
  // A box becomes visible when it is complete.
  for (DWORD owner = 0; owner != process || !IsWindowVisible(box); GetWindowThreadProcessId(box, &owner))
    if ((box = FindWindowExA(nullptr, box, "#32770", nullptr)) == nullptr) return "";
  constexpr int message_text_control = 0xFFFF;
  std::string text = '[' + text_of(box) + "] " + text_of(GetDlgItem(box, message_text_control));
  std::replace(text.begin(), text.end(), '\n', '*');
  for (int i = 0; i < 500 && IsWindow(box); ++i, Sleep(10)) PostMessageA(box, WM_COMMAND, IDOK, 0);
  return text + '\n';
}

// What a pipe holds. A program that the child started may hold its output open, so the end cannot be waited for.
std::string read_available(HANDLE pipe) {
  std::string text;
  DWORD count = 0;
  while (PeekNamedPipe(pipe, nullptr, 0, nullptr, &count, nullptr) && count > 0) {
    std::string part(count, '\0');
    if (!ReadFile(pipe, part.data(), count, &count, nullptr)) break;
    text.append(part, 0, count);
  }
  std::erase(text, '\r');
  return text;
}

ChildResult watch_until_end(const PROCESS_INFORMATION &process, HANDLE pipe) {
  ChildResult result{};
  const ULONGLONG deadline = GetTickCount64() + time_limit_ms;
  while (WaitForSingleObject(process.hProcess, 5) == WAIT_TIMEOUT) {
    result.output += read_available(pipe);
    result.output += dismiss_message_box(process.dwProcessId);
    if (GetTickCount64() > deadline) TerminateProcess(process.hProcess, 255);
  }
  result.output += read_available(pipe);
  DWORD exit_code = 0;
  GetExitCodeProcess(process.hProcess, &exit_code);
  result.exit_code = exit_code;
  return result;
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
  require(program != child_programs().end(), arguments[2]);
  status = program->second(Arguments(arguments + 3, arguments + argument_count));
  return true;
}

ChildResult run_child(const std::string &name, const Arguments &arguments) {
  std::string command = '"' + own_path() + "\" " + child_option + ' ' + name;
  for (const std::string &argument : arguments) command += " \"" + argument + '"';

  SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  HANDLE read_end = nullptr;
  require(CreatePipe(&read_end, &startup.hStdOutput, &inheritable, 0), "CreatePipe");
  SetHandleInformation(read_end, HANDLE_FLAG_INHERIT, 0);
  startup.hStdError = startup.hStdOutput;
  PROCESS_INFORMATION process{};
  require(CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process),
          "CreateProcess");
  CloseHandle(startup.hStdOutput);
  const ChildResult result = watch_until_end(process, read_end);
  for (HANDLE handle : {process.hThread, process.hProcess, read_end}) CloseHandle(handle);
  return result;
}
