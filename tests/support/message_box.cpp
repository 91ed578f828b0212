// SPDX-License-Identifier: MIT
#include "message_box.h"

#include <algorithm>

namespace {

constexpr int message_text_control = 0xFFFF;

struct BoxSearch {
  DWORD process;
  HWND found;
};

BOOL CALLBACK find_box(HWND window, LPARAM parameter) {
  auto &search = *reinterpret_cast<BoxSearch *>(parameter);
  char window_class[16] = "";
  DWORD process = 0;
  GetClassNameA(window, window_class, sizeof window_class);
  GetWindowThreadProcessId(window, &process);
  // A box becomes visible when it is complete.
  if (process != search.process || std::string(window_class) != "#32770" || !IsWindowVisible(window)) return TRUE;
  search.found = window;
  return FALSE;
}

// Controls of another process tell their text only to the message.
std::string text_of(HWND window) {
  char text[1024] = "";
  SendMessageA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

}  // namespace

std::string dismiss_message_box(DWORD process) {
  BoxSearch search{process, nullptr};
  EnumWindows(find_box, reinterpret_cast<LPARAM>(&search));
  if (search.found == nullptr) return "";

  std::string text = text_of(GetDlgItem(search.found, message_text_control));
  std::replace(text.begin(), text.end(), '\n', '*');
  const std::string caption = text_of(search.found);
  constexpr int attempts = 500;
  constexpr DWORD interval_ms = 10;
  for (int i = 0; i < attempts && IsWindow(search.found); ++i) {
    PostMessageA(search.found, WM_COMMAND, IDOK, 0);
    Sleep(interval_ms);
  }
  return '[' + caption + "] " + text + '\n';
}
