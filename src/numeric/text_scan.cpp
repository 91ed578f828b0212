// SPDX-License-Identifier: MIT
// Positions in texts, searched from the end.
#include <cstdint>

#include "qwport.h"
#include "text.h"
#include "text_search.h"

namespace {

// Positions of longer texts, and the one behind their end, are no INTEGER(4).
constexpr size_t longest_text = INT32_MAX - 1;

}  // namespace

int32_t LNBLNK(const char *string, size_t string_len) {
  // The usual variable of a name: one look, and no further call.
  if (string_len >= 8 && string_len < 16) {
    const size_t trimmed = portlib_trim_eight(string, string_len);
    if (trimmed > string_len - 8) return static_cast<int32_t>(trimmed);
  }
  const size_t length = portlib_trimmed_length(string, string_len);
  return length > longest_text ? 0 : static_cast<int32_t>(length);
}

// Memory is wanted for speed alone, so nothing can fail.
int32_t RINDEX(const char *string, const char *substr, size_t string_len, size_t substr_len) {
  if (substr_len > string_len || string_len > longest_text) return 0;
  if (substr_len == 0) return static_cast<int32_t>(string_len + 1);  // behind the last character; this is meant
  const auto any_place = [](size_t) { return true; };
  return static_cast<int32_t>(portlib_find_last(string, string_len, {substr, substr_len}, any_place));
}
