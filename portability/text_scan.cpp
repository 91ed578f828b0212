// SPDX-License-Identifier: MIT
// Positions in texts, searched from the end.
#include <bit>
#include <cstring>

#include <emmintrin.h>

#include "qwport.h"
#include "text.h"

namespace {

// The number of positions up to and with the last one that holds the character; 0 if none does.
size_t find_last(const char *text, size_t length, char character) {
  constexpr size_t block = 16;
  const __m128i wanted = _mm_set1_epi8(character);
  while (length >= block) {
    const auto *end = reinterpret_cast<const __m128i *>(text + length - block);
    const auto matches = static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(end), wanted)));
    if (matches != 0) return length - block + static_cast<size_t>(std::bit_width(matches));
    length -= block;
  }
  while (length > 0 && text[length - 1] != character) --length;
  return length;
}

// The position, from 1, of the last occurrence; 0 if there is none.
size_t find_last_text(const char *text, size_t length, const char *pattern, size_t pattern_length) {
  if (pattern_length > length) return 0;
  if (pattern_length == 0) return length + 1;  // behind the last character; this is meant
  size_t candidates = length - pattern_length + 1;
  for (;;) {
    candidates = find_last(text, candidates, pattern[0]);
    if (candidates == 0) return 0;
    if (std::memcmp(text + candidates - 1, pattern, pattern_length) == 0) return candidates;
    --candidates;
  }
}

}  // namespace

int32_t LNBLNK(const char *string, size_t string_len) {
  return static_cast<int32_t>(portlib_trimmed_length(string, string_len));
}

int32_t RINDEX(const char *string, const char *substr, size_t string_len, size_t substr_len) {
  return static_cast<int32_t>(find_last_text(string, string_len, substr, substr_len));
}
