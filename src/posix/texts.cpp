// SPDX-License-Identifier: MIT
#include "texts.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "qwport.h"
#include "text.h"

namespace qwport::posix {

namespace {

// Beyond it a length is a negative number, and no text is.
constexpr size_t longest_text = PTRDIFF_MAX - 1;

HeapText own_text(const char *text, size_t length) {
  HeapText copy = portlib_allocate_text(length + 1);
  if (copy == nullptr) {
    errno = ENOMEM;
    return copy;
  }
  std::memcpy(copy.get(), text, length);
  copy[length] = '\0';
  return copy;
}

// In every locale.
bool is_white_space(char c) { return c == ' ' || ('\t' <= c && c <= '\r'); }

}  // namespace

HeapText own_name(const char *text, size_t text_len) {
  const std::string_view name = read_name(text, text_len).text;
  return own_text(name.data(), name.size());
}

HeapText own_path(const char *text, int32_t ilen, size_t text_len) {
  if (ilen < 0 || text_len > longest_text) {
    errno = EINVAL;
    return nullptr;
  }
  if (ilen > 0) return own_text(text, std::min(static_cast<size_t>(ilen), text_len));
  while (text_len > 0 && is_white_space(text[text_len - 1])) --text_len;
  return own_text(text, text_len);
}

bool put_text(char *buffer, size_t buffer_len, const char *text, size_t length) {
  portlib_place_text(buffer, buffer_len, text, length);
  return length <= buffer_len;
}

}  // namespace qwport::posix

int32_t IPXFLENTRIM(const char *string, size_t string_len) {
  const bool is_negative = string_len > PTRDIFF_MAX;
  return is_negative ? 0 : static_cast<int32_t>(portlib_trimmed_length(string, string_len));
}
