// SPDX-License-Identifier: MIT
// Names, paths and other texts of the PXF routines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "heap_text.h"

namespace qwport::posix {

// A name: the characters before the first blank.
struct Name {
  std::string_view text;
  uint64_t tail;  // the last eight characters as a number
};

constexpr Name read_name(const char *text, size_t text_len) {
  size_t length = 0;
  uint64_t tail = 0;
  for (; length < text_len && text[length] != ' ' && text[length] != '\0'; ++length) {
    tail = tail << 8 | static_cast<unsigned char>(text[length]);
  }
  return {{text, length}, tail};
}

// Copies of a name and of a path, which is the first ilen characters, or all without trailing white space when ilen is
// 0. Null with errno set: 12 for no memory, 22 for a negative length.
HeapText own_name(const char *text, size_t text_len);
HeapText own_path(const char *text, int32_t ilen, size_t text_len);

// Copies a text into a CHARACTER buffer and fills it with blanks; false if the text was cut.
bool put_text(char *buffer, size_t buffer_len, const char *text, size_t length);

}  // namespace qwport::posix
