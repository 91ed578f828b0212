// SPDX-License-Identifier: MIT
#include "message_box.h"

#include <windows.h>

// USER32 is loaded for a box alone: imported, it would take most of the time of every program's start.
void portlib_show_error(const char *text, const char *caption) {
  HMODULE user_interface = LoadLibraryExA("user32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (user_interface == nullptr) return;
  const auto show =
      reinterpret_cast<decltype(&MessageBoxA)>(reinterpret_cast<void *>(GetProcAddress(user_interface, "MessageBoxA")));
  if (show != nullptr) show(nullptr, text, caption, MB_ICONERROR);
}
