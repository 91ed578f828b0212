// SPDX-License-Identifier: MIT
#include "digit_choice.h"

#include <algorithm>
#include <cstring>

#include "short_sort.h"
#include "sort_keys.h"

namespace qwport::sorting {

namespace {

// How many of so many keys agree with one in a digit, going by counts of some.
double count_agreeing(double keys, const DigitCounts &counts) {
  double all = 0;
  double squares = 0;
  for (const size_t count : counts) {
    all += static_cast<double>(count);
    squares += static_cast<double>(count) * static_cast<double>(count);
  }
  return keys * squares / (all * all);
}

// Where many keys are equal, the first digit to deal by: some keys all differ there or above. Else 0.
size_t choose_digit_of_few_values(const unsigned char *keys, size_t count, size_t key_size, size_t last_digit) {
  constexpr size_t many_in = 3;
  std::array<WideKey, longest_short_sort> some = {};
  const size_t step = count / some.size();
  for (size_t i = 0; i < some.size(); ++i) std::memcpy(&some[i], keys + i * step * key_size, key_size);
  sort_short(some.data(), some.size(), KeyOrder{});
  size_t equal = 0;
  size_t first = key_size - 1;
  for (size_t i = 1; i < some.size(); ++i) {
    const auto difference = number_of(some[i]) ^ number_of(some[i - 1]);
    size_t digit = key_size;
    while (digit > last_digit && difference >> 8 * (digit - 1) == 0) --digit;
    if (digit == last_digit) {
      ++equal;
    } else {
      first = std::min(first, digit - 1);
    }
  }
  return equal > some.size() / many_in ? first : 0;
}

}  // namespace

size_t choose_first_digit(const unsigned char *keys, size_t count, size_t key_size, size_t last_digit) {
  constexpr double few = 0.5;
  constexpr size_t sample_size = 2000;
  if (const size_t digit = choose_digit_of_few_values(keys, count, key_size, last_digit)) return digit;
  auto others = static_cast<double>(count);
  size_t digit = key_size;
  while (digit > last_digit && others > few) {
    DigitCounts counts = {};
    --digit;
    for (size_t i = 0; i < count; i += 1 + count / sample_size) ++counts[keys[i * key_size + digit]];
    others = count_agreeing(others, counts);
  }
  return digit;
}

}  // namespace qwport::sorting
