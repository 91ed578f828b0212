// SPDX-License-Identifier: MIT
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "errors.h"

char *portlib_fstr_to_cstr(const char *text, size_t length) {
  // Room for the NUL and to append a short suffix in place; kept at this size on purpose.
  constexpr size_t spare_bytes = 23;

  if (text == nullptr) {
    portlib_report_errno(EINVAL);
    return nullptr;
  }
  while (length > 0 && text[length - 1] == ' ') --length;

  auto *copy = static_cast<char *>(std::malloc(length + spare_bytes));
  if (copy == nullptr) {
    portlib_report_errno(ENOMEM);
    return nullptr;
  }
  std::memcpy(copy, text, length);
  copy[length] = '\0';
  return copy;
}

void portlib_free(char *text) { std::free(text); }

size_t portlib_cstr_to_fstr(char *buffer, const char *source, size_t buffer_length, size_t source_length) {
  if (buffer == nullptr) {
    portlib_report_errno(EINVAL);
    return 0;
  }
  if (source == nullptr) source_length = 0;
  const size_t placed = source_length == 0 ? 0 : strnlen(source, std::min(source_length, buffer_length));
  std::copy_n(source, placed, buffer);
  std::fill(buffer + placed, buffer + buffer_length, ' ');

  const bool full = placed == buffer_length;
  if (full && source_length > 0 && source[placed] != '\0') portlib_report_errno(EINVAL);
  return placed;
}
