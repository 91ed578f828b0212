// SPDX-License-Identifier: MIT
#include "text.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <emmintrin.h>

#include "errors.h"

namespace {

// For each of 16 characters, whether it is a blank.
__m128i blanks_of(const char *place) {
  return _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(place)), _mm_set1_epi8(' '));
}

uint32_t bits_of(__m128i truths) { return static_cast<uint32_t>(_mm_movemask_epi8(truths)); }

}  // namespace

size_t portlib_trimmed_length(const char *text, size_t length) {
  length = portlib_length(length);
  // Long variables are mostly blanks: 64 at a time, then 16, 8 and one by one.
  for (; length >= 64; length -= 64) {
    const char *end = text + length;
    const __m128i left = _mm_and_si128(blanks_of(end - 64), blanks_of(end - 48));
    const __m128i right = _mm_and_si128(blanks_of(end - 32), blanks_of(end - 16));
    if (bits_of(_mm_and_si128(left, right)) != 0xFFFF) break;
  }
  for (; length >= 16; length -= 16) {
    const uint32_t others = ~bits_of(blanks_of(text + length - 16)) & 0xFFFF;
    if (others != 0) return length - 16 + static_cast<size_t>(std::bit_width(others));
  }
  for (; length >= 8; length -= 8) {
    const size_t trimmed = portlib_trim_eight(text, length);
    if (trimmed > length - 8) return trimmed;
  }
  while (length > 0 && text[length - 1] == ' ') --length;
  return length;
}

char *portlib_fstr_to_cstr(const char *text, size_t length) {
  // Room for the NUL and to append a short suffix in place; kept at this size on purpose.
  constexpr size_t spare_bytes = 23;

  if (text == nullptr) {
    portlib_report_errno(EINVAL);
    return nullptr;
  }
  length = portlib_trimmed_length(text, length);

  auto *copy = static_cast<char *>(std::malloc(length + spare_bytes));
  if (copy == nullptr) {
    portlib_report_errno(ENOMEM);
    return nullptr;
  }
  std::memcpy(copy, text, length);
  copy[length] = '\0';
  return copy;
}

void portlib_place_text(char *buffer, size_t buffer_length, const char *text, size_t text_length) {
  buffer_length = portlib_length(buffer_length);
  const size_t placed = std::min(text_length, buffer_length);
  std::copy_n(text, placed, buffer);
  std::fill(buffer + placed, buffer + buffer_length, ' ');
}

size_t portlib_cstr_to_fstr(char *buffer, const char *source, size_t buffer_length, size_t source_length) {
  if (buffer == nullptr) {
    portlib_report_errno(EINVAL);
    return 0;
  }
  buffer_length = portlib_length(buffer_length);
  source_length = source == nullptr ? 0 : portlib_length(source_length);
  const size_t placed = source_length == 0 ? 0 : strnlen(source, std::min(source_length, buffer_length));
  portlib_place_text(buffer, buffer_length, source, placed);

  const bool full = placed == buffer_length;
  if (full && source_length > 0 && source[placed] != '\0') portlib_report_errno(EINVAL);
  return placed;
}
