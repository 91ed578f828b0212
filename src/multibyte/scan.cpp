// SPDX-License-Identifier: MIT
// Characters of a text that are, or are not, in a set. Both walks have ways of their own that callers see, and
// that are meant: see the comments.
#include <bit>

#include "multibyte.h"
#include "qwport.h"
#include "text_search.h"

using namespace qwport::multibyte;

namespace {

struct Text {
  const char *bytes;
  ptrdiff_t length;
};

Text text_of(const char *bytes, size_t length) { return {bytes, bytes == nullptr ? 0 : text_length(length)}; }

constexpr ptrdiff_t block = portlib_text_block;

// ---- Sets ---------------------------------------------------------------------------------------

// The one-byte characters of a set, where two-byte characters are stepped over.
class SingleBytes {
 public:
  SingleBytes(Text set, LeadBytes &lead_bytes) {
    for (ptrdiff_t i = 0; i < set.length; ++i) {
      const char byte = set.bytes[i];
      if (lead_bytes.contain(byte))
        ++i;
      else if (!contain(byte))
        add(byte);
    }
  }

  [[nodiscard]] bool contain(char byte) const { return is_member_[static_cast<unsigned char>(byte)]; }

  // Which bytes of a block are members, as bits: a few members are compared with the whole block.
  [[nodiscard]] uint32_t matches_of(const char *place) const {
    uint32_t matches = 0;
    if (count_ <= few) {
      const __m128i bytes = portlib_load(place);
      for (size_t i = 0; i < count_; ++i) matches |= portlib_matches_of(bytes, members_[i]);
    } else {
      for (ptrdiff_t i = 0; i < block; ++i) matches |= uint32_t{contain(place[i])} << i;
    }
    return matches;
  }

 private:
  void add(char byte) {
    is_member_[static_cast<unsigned char>(byte)] = true;
    if (count_ < few) members_[count_] = byte;
    ++count_;
  }

  static constexpr size_t few = 16;
  bool is_member_[256] = {};
  char members_[few] = {};
  size_t count_ = 0;
};

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

// ---- Walks --------------------------------------------------------------------------------------

uint32_t ascii_bytes_of(const char *place) {
  return ~static_cast<uint32_t>(_mm_movemask_epi8(portlib_load(place))) & 0xFFFF;
}

int32_t scan_forward(Text string, Text set, bool wanted) {
  LeadBytes lead_bytes;
  const SingleBytes singles(set, lead_bytes);
  for (ptrdiff_t i = 0; i < string.length; ++i) {
    const char *place = string.bytes + i;
    if (string.length - i >= block) {
      // Up to the first byte that may be one of two.
      const int ascii = std::countr_one(ascii_bytes_of(place));
      const uint32_t matches = singles.matches_of(place);
      const uint32_t found = (wanted ? matches : ~matches) & ((uint32_t{1} << ascii) - 1);
      if (found != 0) return static_cast<int32_t>(i + std::countr_zero(found) + 1);
      i += ascii;
      place += ascii;
      if (ascii == block) {
        --i;
        continue;
      }
    }
    const bool is_lead = lead_bytes.contain(*place);
    const bool is_pair = is_lead && i + 1 < string.length;
    const bool found = is_pair ? contains_pair(set, place) : singles.contain(*place);
    if (found == wanted) return static_cast<int32_t>(i + 1);
    if (is_lead) ++i;
  }
  return 0;
}

// The counter begins one behind the byte walk, and moves two down after a two-byte character while the walk
// moves one.
int32_t scan_backward(Text string, Text set, bool wanted) {
  LeadBytes lead_bytes;
  const SingleBytes singles(set, lead_bytes);
  const char *place = string.bytes + string.length - 1;
  for (ptrdiff_t counter = string.length;; --counter) {
    // A block of which no byte has a lead byte before it, and behind which the walk goes on.
    while (counter > block && place - string.bytes >= block && ascii_bytes_of(place - block) == 0xFFFF) {
      const uint32_t matches = singles.matches_of(place - block + 1);
      const uint32_t found = (wanted ? matches : ~matches) & 0xFFFF;
      if (found != 0) return static_cast<int32_t>(counter - (block - std::bit_width(found)) + 1);
      place -= block;
      counter -= block;
    }
    const bool is_pair = place != string.bytes && lead_bytes.contain(place[-1]);
    const bool found = is_pair ? contains_pair(set, place - 1) : singles.contain(*place);
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
