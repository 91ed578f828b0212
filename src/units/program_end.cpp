// SPDX-License-Identifier: MIT
// Ending the program through the core runtime, which closes the units first.
#include <algorithm>
#include <cstring>

#include "core_entries.h"
#include "qwport.h"

void ABORT(const char *message, size_t message_len) {
  constexpr char prefix[] = "abort: ";
  constexpr size_t prefix_length = sizeof prefix - 1;
  constexpr size_t message_limit = 240;

  char text[256] = "abort: Fortran Abort Called";
  if (message != nullptr) {
    const size_t length = strnlen(message, std::min(message_len, message_limit));
    std::memcpy(text + prefix_length, message, length);
    text[prefix_length + length] = '\0';
  }
  core::for_abort(text, std::strlen(text));
}

void EXIT(const int32_t *status) { core::for_exit(status); }
