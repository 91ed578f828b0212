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

#include "existing_order.h"
#include "quick_sort.h"
#include "sort_keys.h"

namespace qwport::sorting {

using DigitCounts = std::array<size_t, 256>;

// Digit 0 is the least significant.
template <class Key> size_t digit_of(const Key &key, size_t digit) {
  return reinterpret_cast<const unsigned char *>(&key)[digit];
}

template <class Key>
void count_digits(const Key *keys, size_t count, size_t step, size_t first_digit,
                  std::array<DigitCounts, sizeof(Key)> &counts) {
  counts = {};
  for (size_t i = 0; i < count; i += step) {
    for (size_t digit = first_digit; digit < sizeof(Key); ++digit) ++counts[digit][digit_of(keys[i], digit)];
  }
}

// How many of so many keys agree with one in a digit, going by counts of some.
inline double count_agreeing(double keys, const DigitCounts &counts) {
  double all = 0;
  double squares = 0;
  for (const size_t count : counts) {
    all += static_cast<double>(count);
    squares += static_cast<double>(count) * static_cast<double>(count);
  }
  return keys * squares / (all * all);
}

// The first digit to deal by, so that a key agrees with few others from there on; a sample tells.
template <class Key>
size_t choose_first_digit(const Key *keys, size_t count, size_t last_digit,
                          std::array<DigitCounts, sizeof(Key)> &counts) {
  constexpr double few = 0.5;
  constexpr size_t sample_size = 2000;
  count_digits(keys, count, 1 + count / sample_size, last_digit, counts);
  auto others = static_cast<double>(count);
  size_t digit = sizeof(Key);
  while (digit > last_digit && others > few) others = count_agreeing(others, counts[--digit]);
  return digit;
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
template <class Key, class Less> void sort_runs(Key *keys, size_t count, size_t digit, Less less) {
  const auto limit = static_cast<decltype(number_of(*keys))>(decltype(number_of(*keys)){1} << 8 * digit);
  for (size_t start = 0; start + 1 < count;) {
    const auto first = number_of(keys[start]);
    size_t end = start + 1;
    while (end < count && (number_of(keys[end]) ^ first) < limit) ++end;
    const size_t length = end - start;
    if (length > 1 && !sort_by_existing_order(keys + start, length, less)) quick_sort(keys + start, length, less);
    start = end;
  }
}

// Digits below the last one are not dealt by: there the order is the caller's. False for no memory, the keys then
// being as they were.
template <class Key, class Less> bool radix_sort(Key *keys, size_t count, size_t last_digit, Less less) {
  const auto other = allocate_elements<Key>(count);
  if (other == nullptr) return false;
  std::array<DigitCounts, sizeof(Key)> counts;
  const size_t first = choose_first_digit(keys, count, last_digit, counts);
  count_digits(keys, count, 1, first, counts);
  Key *from = keys;
  Key *to = other.get();
  for (size_t digit = first; digit < sizeof(Key); ++digit) {
    if (counts[digit][digit_of(from[0], digit)] == count) continue;
    deal(from, to, count, digit, counts[digit]);
    std::swap(from, to);
  }
  if (from != keys) std::memcpy(keys, from, count * sizeof(Key));
  if (first > 0) sort_runs(keys, count, first, less);
  return true;
}

}  // namespace qwport::sorting
