// SPDX-License-Identifier: MIT
// Text in and out: blank-padded CHARACTER arguments to C strings and back.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "heap_text.h"

// A length beyond half of the addresses belongs to no variable, and counts as none.
inline size_t portlib_length(size_t length) { return length <= PTRDIFF_MAX ? length : 0; }

// The length of a text of 8 characters or more without the blanks that end it, of which 8 are dropped at most.
inline size_t portlib_trim_eight(const char *text, size_t length) {
  constexpr uint64_t blanks = 0x2020202020202020;
  uint64_t last = 0;
  std::memcpy(&last, text + length - 8, 8);
  return length - static_cast<size_t>(std::countl_zero(last ^ blanks)) / 8;
}

// The length of a text without its trailing blanks. Only blanks are trimmed, not tabs or NULs.
size_t portlib_trimmed_length(const char *text, size_t length);

// Copies a CHARACTER argument without its trailing blanks into a new C string, which portlib_free frees.
// Null on failure, reported: 22 for a null address, 12 for no memory.
char *portlib_fstr_to_cstr(const char *text, size_t length);

// The same copy, freed at the end of the caller's block.
inline HeapText portlib_own_text(const char *text, size_t length) {
  return HeapText(portlib_fstr_to_cstr(text, length));
}

// Copies a text into a CHARACTER buffer, cut to it or filled with blanks. Reports nothing.
void portlib_place_text(char *buffer, size_t buffer_length, const char *text, size_t text_length);

// Copies a C string of source_length characters, or up to its NUL, into a CHARACTER buffer and fills
// the rest with blanks. Gives the number of characters placed before the padding. A text that does not
// fit is cut and reported as 22, which is seen by reading source[source_length]: pass strlen(source).
size_t portlib_cstr_to_fstr(char *buffer, const char *source, size_t buffer_length, size_t source_length);
