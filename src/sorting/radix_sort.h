// SPDX-License-Identifier: MIT
// Radix sort from the least significant digit, for arrays that are worth a second array.
//
// A digit is a byte. Each pass deals the keys out by one digit, keeping the order of equal ones, so that after
// the pass of the leading digit the keys are sorted. A digit that is the same in all keys needs no pass. In
// long keys the leading digits tell nearly all keys apart: the passes begin at the last of these, and what they
// leave undecided are short runs, each sorted by itself.
#pragma once

#include <array>
#include <cstring>
#include <utility>

#include "digit_choice.h"
#include "existing_order.h"
#include "quick_sort.h"
#include "sort_keys.h"

namespace qwport::sorting {

template <class Key> size_t digit_of(const Key &key, size_t digit) {
  return reinterpret_cast<const unsigned char *>(&key)[digit];
}

template <class Key> void deal(const Key *from, Key *to, size_t count, size_t digit, const DigitCounts &counts) {
  DigitCounts places;
  size_t place = 0;
  for (size_t value = 0; value < counts.size(); ++value) {
    places[value] = place;
    place += counts[value];
  }
  for (size_t i = 0; i < count; ++i) {
    const Key key = from[i];
    to[places[digit_of(key, digit)]++] = key;
  }
}

// Sorts what agrees from a digit on.
template <class Key> void sort_runs(Key *keys, size_t count, size_t digit) {
  const auto limit = static_cast<decltype(number_of(*keys))>(decltype(number_of(*keys)){1} << 8 * digit);
  for (size_t start = 0; start + 1 < count;) {
    const auto first = number_of(keys[start]);
    size_t end = start + 1;
    while (end < count && (number_of(keys[end]) ^ first) < limit) ++end;
    const size_t length = end - start;
    if (length > 1 && !sort_by_existing_order(keys + start, length)) quick_sort(keys + start, length);
    start = end;
  }
}

// False for no memory, the keys then being as they were. last_digit: those below it tell hardly anything.
template <class Key> bool radix_sort(Key *keys, size_t count, size_t last_digit) {
  const auto other = allocate_elements<Key>(count);
  if (other == nullptr) return false;
  const size_t first =
      choose_first_digit(reinterpret_cast<const unsigned char *>(keys), count, sizeof(Key), last_digit);
  std::array<DigitCounts, sizeof(Key)> counts = {};
  for (size_t i = 0; i < count; ++i) {
    for (size_t digit = first; digit < sizeof(Key); ++digit) ++counts[digit][digit_of(keys[i], digit)];
  }
  Key *from = keys;
  Key *to = other.get();
  for (size_t digit = first; digit < sizeof(Key); ++digit) {
    if (counts[digit][digit_of(from[0], digit)] == count) continue;
    deal(from, to, count, digit, counts[digit]);
    std::swap(from, to);
  }
  if (from != keys) std::memcpy(keys, from, count * sizeof(Key));
  if (first > 0) sort_runs(keys, count, first);
  return true;
}

}  // namespace qwport::sorting
