// SPDX-License-Identifier: MIT
#include "message_box.h"

#include "late_entry.h"

void portlib_show_error(const char *text, const char *caption) {
  const auto show = portlib_late_entry<decltype(MessageBoxA)>("user32.dll", "MessageBoxA");
  if (show != nullptr) show(nullptr, text, caption, MB_ICONERROR);
}
