// SPDX-License-Identifier: MIT
// Positions in texts, searched from the end.
#include <bit>
#include <cstring>

#include <emmintrin.h>

#include "qwport.h"
#include "text.h"

namespace {

// Which of the 16 characters from a place on are this one, as bits.
uint32_t matches_of(const char *place, char character) {
  const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i *>(place));
  return static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(characters, _mm_set1_epi8(character))));
}

// The position, from 1, of the last occurrence; 0 if there is none. Nothing is copied, so nothing can fail.
size_t find_last_text(const char *text, size_t length, const char *pattern, size_t pattern_length) {
  if (pattern_length > length) return 0;
  if (pattern_length == 0) return length + 1;  // behind the last character; this is meant

  // Places are taken 16 at a time: those that have the pattern's first and last character are compared.
  constexpr size_t block = 16;
  const size_t last = pattern_length - 1;
  size_t places = length - last;
  for (; places >= block; places -= block) {
    const char *start = text + places - block;
    uint32_t candidates = matches_of(start, pattern[0]) & matches_of(start + last, pattern[last]);
    while (candidates != 0) {
      const auto place = static_cast<size_t>(std::bit_width(candidates)) - 1;
      if (std::memcmp(start + place, pattern, pattern_length) == 0) return places - block + place + 1;
      candidates &= ~(uint32_t{1} << place);
    }
  }
  for (; places > 0; --places) {
    if (std::memcmp(text + places - 1, pattern, pattern_length) == 0) return places;
  }
  return 0;
}

}  // namespace

int32_t LNBLNK(const char *string, size_t string_len) {
  return static_cast<int32_t>(portlib_trimmed_length(string, string_len));
}

int32_t RINDEX(const char *string, const char *substr, size_t string_len, size_t substr_len) {
  return static_cast<int32_t>(find_last_text(string, string_len, substr, substr_len));
}
