// SPDX-License-Identifier: MIT
// Where a pattern occurs in a text, from either end.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <emmintrin.h>

#include "heap_text.h"

// Characters are taken this many at a time.
constexpr size_t portlib_text_block = 16;

inline __m128i portlib_load(const char *place) { return _mm_loadu_si128(reinterpret_cast<const __m128i *>(place)); }

// The same of a text that may end before, with NULs behind its end.
inline __m128i portlib_load_text(const char *text, size_t length) {
  constexpr size_t half = portlib_text_block / 2;
  if (length >= portlib_text_block) return portlib_load(text);
  uint64_t low = 0;
  uint64_t high = 0;
  if (length > half) {
    std::memcpy(&low, text, half);
    std::memcpy(&high, text + length - half, half);
    high >>= 8 * (portlib_text_block - length);
  } else {
    for (size_t i = 0; i < length; ++i) low |= uint64_t{static_cast<unsigned char>(text[i])} << 8 * i;
  }
  return _mm_set_epi64x(static_cast<int64_t>(high), static_cast<int64_t>(low));
}

// Which characters of a block are this one, as bits.
inline uint32_t portlib_matches_of(__m128i characters, char character) {
  return static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(characters, _mm_set1_epi8(character))));
}

struct PortlibPattern {
  const char *text;
  size_t length;  // at least 1
};

// Of the places from text on, at most a block of them: those that have the pattern's first and last character.
inline uint32_t portlib_candidates(const char *text, size_t length, size_t places, PortlibPattern pattern) {
  const size_t last = pattern.length - 1;
  const uint32_t found = portlib_matches_of(portlib_load_text(text, length), pattern.text[0]) &
                         portlib_matches_of(portlib_load_text(text + last, length - last), pattern.text[last]);
  return places >= portlib_text_block ? found : found & ((uint32_t{1} << places) - 1);
}

template <class Word> bool portlib_has_same_ends(const char *place, PortlibPattern pattern) {
  Word ends[4];
  const size_t end = pattern.length - sizeof(Word);
  std::memcpy(&ends[0], place, sizeof(Word));
  std::memcpy(&ends[1], pattern.text, sizeof(Word));
  std::memcpy(&ends[2], place + end, sizeof(Word));
  std::memcpy(&ends[3], pattern.text + end, sizeof(Word));
  return ends[0] == ends[1] && ends[2] == ends[3];
}

// Whether the pattern stands at a candidate. Counts the blocks that were compared.
inline bool portlib_is_match(const char *place, PortlibPattern pattern, size_t &blocks) {
  if (pattern.length <= 2) return true;
  if (pattern.length < 4) return place[1] == pattern.text[1];
  if (pattern.length < 8) return portlib_has_same_ends<uint32_t>(place, pattern);
  if (!portlib_has_same_ends<uint64_t>(place, pattern)) return false;
  if (pattern.length <= portlib_text_block) return true;
  const size_t end = pattern.length - portlib_text_block;
  for (size_t start = 0; start < pattern.length; start += portlib_text_block, ++blocks) {
    const size_t i = std::min(start, end);
    const __m128i equal = _mm_cmpeq_epi8(portlib_load(place + i), portlib_load(pattern.text + i));
    if (_mm_movemask_epi8(equal) != 0xFFFF) return false;
  }
  return true;
}

// The search of Knuth, Morris and Pratt, in linear time for any text: each character is looked at once, and the
// table tells for each part of the pattern how much of its beginning is also its end. From the end everything is
// mirrored. Gives the position from 1, or 0.
template <bool is_backward, class Accept>
size_t portlib_find_by_table(const char *text, size_t length, PortlibPattern pattern, size_t *table, Accept accept) {
  const auto at = [](const char *characters, size_t count, size_t i) {
    return is_backward ? characters[count - 1 - i] : characters[i];
  };
  const auto extend = [&](size_t matched, char next) {
    while (matched > 0 && at(pattern.text, pattern.length, matched) != next) matched = table[matched - 1];
    return at(pattern.text, pattern.length, matched) == next ? matched + 1 : matched;
  };
  table[0] = 0;
  for (size_t i = 1; i < pattern.length; ++i) table[i] = extend(table[i - 1], at(pattern.text, pattern.length, i));
  size_t matched = 0;
  for (size_t i = 0; i < length; ++i) {
    matched = extend(matched, at(text, length, i));
    if (matched < pattern.length) continue;
    const size_t offset = is_backward ? length - 1 - i : i + 1 - pattern.length;
    if (accept(offset)) return offset + 1;
    matched = table[matched - 1];
  }
  return 0;
}

// Says when comparing candidates takes longer than the table would, and makes room for it: then the pattern and the
// text repeat themselves. Without memory the search goes on as it began.
class PortlibSearchTable {
 public:
  size_t blocks = 0;  // compared until now

  size_t *room(size_t places_done, size_t pattern_length) {
    constexpr size_t blocks_a_place = 8;
    constexpr size_t small_search = 4096;
    if (blocks < blocks_a_place * places_done + small_search || was_asked_) return nullptr;
    was_asked_ = true;
    memory_ = portlib_allocate_array<size_t>(pattern_length);
    return memory_.get();
  }

 private:
  HeapArray<size_t> memory_;
  bool was_asked_ = false;
};

// The position, from 1, of the last occurrence whose offset `accept` takes; 0 if there is none. The pattern is
// not empty and not longer than the text.
template <class Accept>
size_t portlib_find_last(const char *text, size_t length, PortlibPattern pattern, Accept accept) {
  PortlibSearchTable table;
  const size_t places = length - (pattern.length - 1);
  for (size_t left = places; left > 0;) {
    const size_t rest = left + pattern.length - 1;
    if (size_t *room = table.room(places - left, pattern.length))
      return portlib_find_by_table<true>(text, rest, pattern, room, accept);
    const size_t count = std::min(left, portlib_text_block);
    left -= count;
    size_t found = 0;  // the last one of the block: processors find a lowest bit faster than a highest
    uint32_t candidates = portlib_candidates(text + left, length - left, count, pattern);
    for (; candidates != 0; candidates &= candidates - 1) {
      const size_t offset = left + static_cast<size_t>(std::countr_zero(candidates));
      if (portlib_is_match(text + offset, pattern, table.blocks) && accept(offset)) found = offset + 1;
    }
    if (found != 0) return found;
  }
  return 0;
}

// The same of the first occurrence.
template <class Accept>
size_t portlib_find_first(const char *text, size_t length, PortlibPattern pattern, Accept accept) {
  PortlibSearchTable table;
  const size_t places = length - (pattern.length - 1);
  for (size_t start = 0; start < places; start += portlib_text_block) {
    if (size_t *room = table.room(start, pattern.length)) {
      const auto accept_from_start = [&](size_t offset) { return accept(start + offset); };
      const size_t found = portlib_find_by_table<false>(text + start, length - start, pattern, room, accept_from_start);
      return found == 0 ? 0 : start + found;
    }
    uint32_t candidates = portlib_candidates(text + start, length - start, places - start, pattern);
    for (; candidates != 0; candidates &= candidates - 1) {
      const size_t offset = start + static_cast<size_t>(std::countr_zero(candidates));
      if (portlib_is_match(text + offset, pattern, table.blocks) && accept(offset)) return offset + 1;
    }
  }
  return 0;
}
