// SPDX-License-Identifier: MIT
// Characters of one and two bytes: how long they are, where they begin, how many there are.
#include "multibyte.h"
#include "qwport.h"
#include "text.h"
#include "text_search.h"

using namespace qwport::multibyte;

namespace {

bool is_in_text(const char *string, ptrdiff_t length, const int32_t *pos) {
  return string != nullptr && pos != nullptr && *pos >= 1 && *pos <= length;
}

// Codes from 1 to 127 are those above 0 as signed numbers.
bool is_ascii_without_nul(__m128i block) {
  return _mm_movemask_epi8(_mm_cmpgt_epi8(block, _mm_setzero_si128())) == 0xFFFF;
}

// The characters that are no NULs.
int32_t count_characters(const char *string, ptrdiff_t length) {
  LeadBytes bytes;
  int32_t count = 0;
  for (ptrdiff_t i = 0; i < length; ++i) {
    constexpr ptrdiff_t block = portlib_text_block;
    for (; length - i >= block && is_ascii_without_nul(portlib_load(string + i)); i += block) count += block;
    if (i == length) break;
    if (string[i] == '\0') continue;
    ++count;
    if (bytes.contain(string[i])) ++i;
  }
  return count;
}

// The text up to its last byte that is neither a blank nor a NUL. If that byte is the first of a pair, the pair is
// counted all the same.
ptrdiff_t length_without_blanks_and_nuls(const char *string, ptrdiff_t length) {
  auto trimmed = static_cast<size_t>(length);
  do {
    while (trimmed > 0 && string[trimmed - 1] == '\0') --trimmed;
    trimmed = portlib_trimmed_length(string, trimmed);
  } while (trimmed > 0 && string[trimmed - 1] == '\0');
  return static_cast<ptrdiff_t>(trimmed);
}

}  // namespace

int32_t MBCURMAX() {
  CPINFO information{};
  if (GetCPInfo(GetConsoleCP(), &information) == 0) return 0;
  return static_cast<int32_t>(information.MaxCharSize);
}

int32_t MBLEAD(const char *c, size_t c_len) {
  if (c == nullptr || c_len == 0 || *c == '\0') return 0;
  return ask_lead_byte(*c);
}

int32_t MBCHARLEN(const char *string, size_t string_len) {
  const auto length = static_cast<ptrdiff_t>(string_len);
  if (string == nullptr || length == 0 || string[0] == '\0') return 0;
  if (length < 2) return 1;
  return ask_lead_byte(string[0]) != 0 && string[1] != '\0' ? 2 : 1;
}

int32_t MBNEXT(const char *string, const int32_t *pos, size_t string_len) {
  const ptrdiff_t length = text_length(string_len);
  if (!is_in_text(string, length, pos) || *pos == length) return 0;
  const int32_t next = *pos + (ask_lead_byte(string[*pos - 1]) != 0 ? 2 : 1);
  return next > length ? 0 : next;
}

int32_t MBPREV(const char *string, const int32_t *pos, size_t string_len) {
  if (!is_in_text(string, text_length(string_len), pos) || *pos < 2) return 0;
  if (*pos == 2) return 1;
  // One byte is looked at and no more, although that misjudges runs of lead bytes; this is meant.
  return ask_lead_byte(string[*pos - 3]) != 0 ? *pos - 2 : *pos - 1;
}

int32_t MBSTRLEAD(const char *string, const int32_t *pos, size_t string_len) {
  if (!is_in_text(string, text_length(string_len), pos)) return 0;
  LeadBytes bytes;
  ptrdiff_t position = 1;
  while (position < *pos) position += bytes.contain(string[position - 1]) ? 2 : 1;
  return position == *pos && bytes.contain(string[position - 1]) ? 1 : 0;
}

int32_t MBLEN(const char *string, size_t string_len) {
  return string == nullptr ? 0 : count_characters(string, text_length(string_len));
}

int32_t MBLEN_TRIM(const char *string, size_t string_len) {
  if (string == nullptr) return 0;
  return count_characters(string, length_without_blanks_and_nuls(string, text_length(string_len)));
}
