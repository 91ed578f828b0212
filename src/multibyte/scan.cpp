// SPDX-License-Identifier: MIT
// Characters of a text that are, or are not, in a set. Both walks have ways of their own that callers see, and
// that are meant: see the comments.
#include <bitset>

#include "multibyte.h"
#include "qwport.h"

namespace {

struct Text {
  const char *bytes;
  ptrdiff_t length;
};

Text text_of(const char *bytes, size_t length) { return {bytes, bytes == nullptr ? 0 : portlib_text_length(length)}; }

using ByteSet = std::bitset<256>;

bool contains(const ByteSet &set, char byte) { return set[static_cast<unsigned char>(byte)]; }

// The one-byte characters of a set, where two-byte characters are stepped over.
ByteSet single_bytes_of(Text set, LeadBytes &bytes) {
  ByteSet singles;
  for (ptrdiff_t i = 0; i < set.length; ++i) {
    if (portlib_is_lead_byte(bytes, set.bytes[i]))
      ++i;
    else
      singles.set(static_cast<unsigned char>(set.bytes[i]));
  }
  return singles;
}

// Whether a two-byte character is in a set. The walk goes byte by byte, through other two-byte characters as
// well, and after each equal lead byte the counter that ends it runs one ahead.
bool contains_pair(Text set, const char *character) {
  ptrdiff_t counter = 0;
  for (ptrdiff_t i = 0; counter < set.length; ++i, ++counter) {
    if (set.bytes[i] != character[0]) continue;
    if (++counter == set.length) return false;
    if (set.bytes[i + 1] == character[1]) return true;
  }
  return false;
}

int32_t scan_forward(Text string, Text set, bool wanted) {
  LeadBytes bytes;
  const ByteSet singles = single_bytes_of(set, bytes);
  for (ptrdiff_t i = 0; i < string.length; ++i) {
    const char *place = string.bytes + i;
    const bool is_lead = portlib_is_lead_byte(bytes, *place);
    const bool is_pair = is_lead && i + 1 < string.length;
    const bool found = is_pair ? contains_pair(set, place) : contains(singles, *place);
    if (found == wanted) return static_cast<int32_t>(i + 1);
    if (is_lead) ++i;
  }
  return 0;
}

// The counter begins one behind the byte walk, and moves two down after a two-byte character while the walk
// moves one.
int32_t scan_backward(Text string, Text set, bool wanted) {
  LeadBytes bytes;
  const ByteSet singles = single_bytes_of(set, bytes);
  const char *place = string.bytes + string.length - 1;
  for (ptrdiff_t counter = string.length;; --counter) {
    const bool is_pair = place != string.bytes && portlib_is_lead_byte(bytes, place[-1]);
    const bool found = is_pair ? contains_pair(set, place - 1) : contains(singles, *place);
    if (is_pair) --counter;
    if (place != string.bytes) --place;
    if (found == wanted) return static_cast<int32_t>(counter + 1);
    if (counter < 2) return 0;
  }
}

int32_t scan(Text string, Text set, const int32_t *back, bool wanted) {
  if (string.length < 1) return 0;
  const bool is_backward = back != nullptr && *back != 0;
  return is_backward ? scan_backward(string, set, wanted) : scan_forward(string, set, wanted);
}

}  // namespace

int32_t MBSCAN(const char *string, const char *set, const int32_t *back, size_t string_len, size_t set_len) {
  return scan(text_of(string, string_len), text_of(set, set_len), back, true);
}

int32_t MBVERIFY(const char *string, const char *set, const int32_t *back, size_t string_len, size_t set_len) {
  return scan(text_of(string, string_len), text_of(set, set_len), back, false);
}
