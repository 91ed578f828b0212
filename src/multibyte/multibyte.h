// SPDX-License-Identifier: MIT
// What the multibyte routines share: lengths, and lead bytes of the console's code page.
#pragma once

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>

#include <windows.h>

// A hidden length as a number that may be below 0, as some callers' are.
inline ptrdiff_t portlib_text_length(size_t length) { return static_cast<ptrdiff_t>(length); }

// A number of elements as the host takes it; what does not fit is cut.
inline int portlib_host_length(ptrdiff_t length) {
  return static_cast<int>(std::clamp<ptrdiff_t>(length, -1, INT_MAX));
}

// The host's answer for one byte.
inline BOOL portlib_ask_lead_byte(char byte) { return IsDBCSLeadByteEx(GetConsoleCP(), static_cast<BYTE>(byte)); }

// The host's answers during one call of a routine: it is asked once for each byte value that occurs.
struct LeadBytes {
  enum Answer : uint8_t { not_asked, single, lead };
  UINT code_page = GetConsoleCP();
  std::array<Answer, 256> answers{};
};

inline bool portlib_is_lead_byte(LeadBytes &bytes, char byte) {
  const auto value = static_cast<BYTE>(byte);
  LeadBytes::Answer &answer = bytes.answers[value];
  if (answer == LeadBytes::not_asked) {
    answer = IsDBCSLeadByteEx(bytes.code_page, value) != 0 ? LeadBytes::lead : LeadBytes::single;
  }
  return answer == LeadBytes::lead;
}
