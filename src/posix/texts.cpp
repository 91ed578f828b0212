// SPDX-License-Identifier: MIT
// Names, paths and other texts of the PXF routines.
#include <algorithm>
#include <cstring>

#include "posix.h"
#include "qwport.h"

namespace {

HeapText own_text(const char *text, size_t length) {
  HeapText copy = portlib_allocate_text(length + 1);
  if (copy == nullptr) return copy;
  std::memcpy(copy.get(), text, length);
  copy[length] = '\0';
  return copy;
}

// In every locale.
bool is_white_space(char c) { return c == ' ' || ('\t' <= c && c <= '\r'); }

}  // namespace

HeapText pxf_own_name(const char *text, size_t text_len) {
  return own_text(text, static_cast<size_t>(std::find(text, text + text_len, ' ') - text));
}

HeapText pxf_own_path(const char *text, int32_t ilen, size_t text_len) {
  if (ilen < 0) {
    errno = EINVAL;
    return nullptr;
  }
  if (ilen > 0) return own_text(text, std::min(static_cast<size_t>(ilen), text_len));
  while (text_len > 0 && is_white_space(text[text_len - 1])) --text_len;
  return own_text(text, text_len);
}

bool pxf_put_text(char *buffer, size_t buffer_len, const char *text, size_t length) {
  portlib_place_text(buffer, buffer_len, text, length);
  return length <= buffer_len;
}

int32_t IPXFLENTRIM(const char *string, size_t string_len) {
  return static_cast<int32_t>(portlib_trimmed_length(string, string_len));
}
