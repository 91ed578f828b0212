// SPDX-License-Identifier: MIT
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <emmintrin.h>

#include "errors.h"

size_t portlib_trimmed_length(const char *text, size_t length) {
  length = portlib_length(length);
  // Long variables are mostly blanks: 64 at a time, then one by one.
  constexpr size_t block = 64;
  const __m128i blanks = _mm_set1_epi8(' ');
  while (length >= block) {
    const auto *end = reinterpret_cast<const __m128i *>(text + length - block);
    const __m128i left =
        _mm_and_si128(_mm_cmpeq_epi8(_mm_loadu_si128(end), blanks), _mm_cmpeq_epi8(_mm_loadu_si128(end + 1), blanks));
    const __m128i right = _mm_and_si128(_mm_cmpeq_epi8(_mm_loadu_si128(end + 2), blanks),
                                        _mm_cmpeq_epi8(_mm_loadu_si128(end + 3), blanks));
    if (_mm_movemask_epi8(_mm_and_si128(left, right)) != 0xFFFF) break;
    length -= block;
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
