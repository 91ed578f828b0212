// SPDX-License-Identifier: MIT
// What the multibyte routines share: lengths, and lead bytes of the console's code page.
#pragma once

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>

#include <windows.h>

namespace qwport::multibyte {

// The length of a text whose positions, and the one behind its end, are INTEGER(4). All others count as no text:
// longer ones, and lengths that are below 0 as a signed number.
constexpr size_t longest_text = INT32_MAX - 1;
inline ptrdiff_t text_length(size_t length) { return length > longest_text ? 0 : static_cast<ptrdiff_t>(length); }

// Room as the host takes it: what it cannot use of it is left.
inline int host_room(int64_t length) { return static_cast<int>(std::clamp<int64_t>(length, -1, INT_MAX)); }

// The host's answer for one byte.
inline BOOL ask_lead_byte(char byte) { return IsDBCSLeadByteEx(GetConsoleCP(), static_cast<BYTE>(byte)); }

inline bool is_ascii(char byte) { return static_cast<BYTE>(byte) < 0x80; }

// The host's answers during one call of a routine: it is asked once for each byte value that occurs. No code page
// has a lead byte in ASCII.
class LeadBytes {
 public:
  bool contain(char byte) {
    if (is_ascii(byte)) return false;
    if (code_page_ == 0) code_page_ = GetConsoleCP();
    Answer &answer = answers_[static_cast<BYTE>(byte) - 0x80U];
    if (answer == not_asked) {
      answer = IsDBCSLeadByteEx(code_page_, static_cast<BYTE>(byte)) != 0 ? lead : single;
    }
    return answer == lead;
  }

 private:
  enum Answer : uint8_t { not_asked, single, lead };
  UINT code_page_ = 0;  // not asked
  std::array<Answer, 128> answers_{};
};

}  // namespace qwport::multibyte
