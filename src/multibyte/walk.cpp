// SPDX-License-Identifier: MIT
// Characters of one and two bytes: how long they are, where they begin, how many there are.
#include "multibyte.h"
#include "qwport.h"

namespace {

bool is_in_text(const char *string, ptrdiff_t length, const int32_t *pos) {
  return string != nullptr && pos != nullptr && *pos >= 1 && *pos <= length;
}

struct CharacterCount {
  int32_t all;
  int32_t trimmed;  // up to the last one that is not a blank
};

CharacterCount count_characters(const char *string, ptrdiff_t length) {
  CharacterCount count{};
  if (string == nullptr) return count;
  LeadBytes bytes;
  for (ptrdiff_t i = 0; i < length; ++i) {
    const char byte = string[i];
    if (byte == '\0') continue;
    ++count.all;
    if (byte == ' ') continue;
    count.trimmed = count.all;
    if (portlib_is_lead_byte(bytes, byte)) ++i;
  }
  return count;
}

}  // namespace

int32_t MBCURMAX() {
  CPINFO information{};
  if (GetCPInfo(GetConsoleCP(), &information) == 0) return 0;
  return static_cast<int32_t>(information.MaxCharSize);
}

int32_t MBLEAD(const char *c, size_t) {
  if (c == nullptr || *c == '\0') return 0;
  return portlib_ask_lead_byte(*c);
}

int32_t MBCHARLEN(const char *string, size_t string_len) {
  const ptrdiff_t length = portlib_text_length(string_len);
  if (string == nullptr || length == 0 || string[0] == '\0') return 0;
  if (length < 2) return 1;
  return portlib_ask_lead_byte(string[0]) != 0 && string[1] != '\0' ? 2 : 1;
}

int32_t MBNEXT(const char *string, const int32_t *pos, size_t string_len) {
  const ptrdiff_t length = portlib_text_length(string_len);
  if (!is_in_text(string, length, pos) || *pos == length) return 0;
  const int32_t next = *pos + (portlib_ask_lead_byte(string[*pos - 1]) != 0 ? 2 : 1);
  return next > length ? 0 : next;
}

int32_t MBPREV(const char *string, const int32_t *pos, size_t string_len) {
  if (!is_in_text(string, portlib_text_length(string_len), pos) || *pos < 2) return 0;
  if (*pos == 2) return 1;
  // One byte is looked at and no more, although that misjudges runs of lead bytes; this is meant.
  return portlib_ask_lead_byte(string[*pos - 3]) != 0 ? *pos - 2 : *pos - 1;
}

int32_t MBSTRLEAD(const char *string, const int32_t *pos, size_t string_len) {
  if (!is_in_text(string, portlib_text_length(string_len), pos)) return 0;
  LeadBytes bytes;
  ptrdiff_t position = 1;
  while (position < *pos) position += portlib_is_lead_byte(bytes, string[position - 1]) ? 2 : 1;
  return position == *pos && portlib_is_lead_byte(bytes, string[position - 1]) ? 1 : 0;
}

int32_t MBLEN(const char *string, size_t string_len) {
  return count_characters(string, portlib_text_length(string_len)).all;
}

int32_t MBLEN_TRIM(const char *string, size_t string_len) {
  return count_characters(string, portlib_text_length(string_len)).trimmed;
}
