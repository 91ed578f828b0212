// SPDX-License-Identifier: MIT
// Positions in texts, searched from the end.
#include "qwport.h"
#include "text.h"
#include "text_search.h"

int32_t LNBLNK(const char *string, size_t string_len) {
  return static_cast<int32_t>(portlib_trimmed_length(string, string_len));
}

// Nothing is copied, so nothing can fail.
int32_t RINDEX(const char *string, const char *substr, size_t string_len, size_t substr_len) {
  if (substr_len > string_len) return 0;
  if (substr_len == 0) return static_cast<int32_t>(string_len + 1);  // behind the last character; this is meant
  const auto any_place = [](size_t) { return true; };
  return static_cast<int32_t>(portlib_find_last(string, string_len, substr, substr_len, any_place));
}
