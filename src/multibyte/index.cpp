// SPDX-License-Identifier: MIT
// A text in a text, where neither end of a match lies in a longer UTF-8 sequence.
#include <algorithm>

#include "multibyte.h"
#include "qwport.h"
#include "text_search.h"

using namespace qwport::multibyte;

namespace {

// The bytes of the sequence that this one begins; 0 if it begins none of two to four.
size_t sequence_length(char first) {
  const auto byte = static_cast<unsigned char>(first);
  if (byte < 0xC0 || byte > 0xF7) return 0;
  if (byte < 0xE0) return 2;
  return byte < 0xF0 ? 3 : 4;
}

bool is_continuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// Whether a whole sequence begins at the offset.
bool begins_sequence(const char *text, size_t length, size_t offset) {
  const size_t bytes = sequence_length(text[offset]);
  if (bytes == 0 || bytes > length - offset) return false;
  return std::all_of(text + offset + 1, text + offset + bytes, is_continuation);
}

// Whether the byte is the first or a further one of a whole sequence.
bool is_in_sequence(const char *text, size_t length, size_t offset) {
  if ((static_cast<unsigned char>(text[offset]) & 0x80) == 0) return false;
  constexpr size_t longest_way_back = 3;
  for (size_t back = 0; back <= std::min(offset, longest_way_back); ++back) {
    if (back < sequence_length(text[offset - back])) return begins_sequence(text, length, offset - back);
  }
  return false;
}

}  // namespace

int32_t MBINDEX(const char *string, const char *substring, const int32_t *back, size_t string_len,
                size_t substring_len) {
  if (string == nullptr || substring == nullptr) return 0;
  const ptrdiff_t length = text_length(string_len);
  if (text_length(substring_len) == 0 || length < text_length(substring_len)) return 0;

  const size_t last = substring_len - 1;
  const bool begins_in_sequence = begins_sequence(substring, substring_len, 0);
  const bool ends_in_sequence = is_in_sequence(substring, substring_len, last);
  const auto is_whole = [=](size_t offset) {
    return is_in_sequence(string, string_len, offset) == begins_in_sequence &&
           is_in_sequence(string, string_len, offset + last) == ends_in_sequence;
  };
  const bool is_backward = back != nullptr && *back != 0;
  const PortlibPattern pattern = {substring, substring_len};
  const size_t position = is_backward ? portlib_find_last(string, string_len, pattern, is_whole)
                                      : portlib_find_first(string, string_len, pattern, is_whole);
  return static_cast<int32_t>(position);
}
