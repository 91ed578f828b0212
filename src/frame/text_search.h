// SPDX-License-Identifier: MIT
// Where a pattern occurs in a text, from either end.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <emmintrin.h>

// Places are taken this many at a time: those that have the pattern's first and last character are compared.
constexpr size_t portlib_search_block = 16;

// Which of the characters from a place on are this one, as bits.
inline uint32_t portlib_matches_of(const char *place, char character) {
  const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i *>(place));
  return static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(characters, _mm_set1_epi8(character))));
}

// The position, from 1, of the last occurrence whose offset `accept` takes; 0 if there is none. The pattern is
// not empty and not longer than the text.
template <class Accept>
size_t portlib_find_last(const char *text, size_t length, const char *pattern, size_t pattern_length, Accept accept) {
  const size_t last = pattern_length - 1;
  const auto is_match = [&](size_t offset) {
    return std::memcmp(text + offset, pattern, pattern_length) == 0 && accept(offset);
  };
  size_t places = length - last;
  for (; places >= portlib_search_block; places -= portlib_search_block) {
    const size_t start = places - portlib_search_block;
    uint32_t candidates =
        portlib_matches_of(text + start, pattern[0]) & portlib_matches_of(text + start + last, pattern[last]);
    while (candidates != 0) {
      const auto place = static_cast<size_t>(std::bit_width(candidates)) - 1;
      if (is_match(start + place)) return start + place + 1;
      candidates &= ~(uint32_t{1} << place);
    }
  }
  for (; places > 0; --places) {
    if (is_match(places - 1)) return places;
  }
  return 0;
}

// The same of the first occurrence.
template <class Accept>
size_t portlib_find_first(const char *text, size_t length, const char *pattern, size_t pattern_length, Accept accept) {
  const size_t last = pattern_length - 1;
  const auto is_match = [&](size_t offset) {
    return std::memcmp(text + offset, pattern, pattern_length) == 0 && accept(offset);
  };
  const size_t places = length - last;
  size_t start = 0;
  for (; places - start >= portlib_search_block; start += portlib_search_block) {
    uint32_t candidates =
        portlib_matches_of(text + start, pattern[0]) & portlib_matches_of(text + start + last, pattern[last]);
    for (; candidates != 0; candidates &= candidates - 1) {
      const size_t offset = start + static_cast<size_t>(std::countr_zero(candidates));
      if (is_match(offset)) return offset + 1;
    }
  }
  for (; start < places; ++start) {
    if (is_match(start)) return start + 1;
  }
  return 0;
}
