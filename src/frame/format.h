// SPDX-License-Identifier: MIT
// Short texts by the C run-time's own formatting: std::snprintf is MinGW's, 20 KB in each DLL.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>

// Stores at most size - 1 characters and a NUL. Result: the characters stored.
[[gnu::format(printf, 3, 0)]] inline size_t portlib_format_list(char *text, size_t size, const char *format,
                                                                va_list values) {
  const int length = _vsnprintf(text, size, format, values);
  if (length >= 0 && static_cast<size_t>(length) < size) return static_cast<size_t>(length);
  text[size - 1] = '\0';  // the run-time leaves a text that it cuts without one
  return size - 1;
}

[[gnu::format(printf, 3, 4)]] inline size_t portlib_format(char *text, size_t size, const char *format, ...) {
  va_list values;
  va_start(values, format);
  const size_t length = portlib_format_list(text, size, format, values);
  va_end(values);
  return length;
}
