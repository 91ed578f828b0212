// SPDX-License-Identifier: MIT
// Keys of one or two bytes. Many are sorted by counting: how often each value occurs is all there is to know. Few
// are sorted as wider keys, for which there are other sorts.
#include <algorithm>
#include <array>
#include <limits>

#include "key_sort.h"
#include "shell_sort.h"

namespace qwport::sorting {

namespace {

template <class Key> constexpr size_t values_of = size_t{std::numeric_limits<Key>::max()} + 1;

// counts: a zero for every value that there is.
template <class Key> void counting_sort(Key *keys, size_t count, Key flips, size_t *counts) {
  for (size_t i = 0; i < count; ++i) ++counts[keys[i]];
  for (size_t place = 0; place < values_of<Key>; ++place) {
    const auto key = static_cast<Key>(place ^ flips);
    keys = std::fill_n(keys, counts[key], key);
  }
}

template <class Key> void sort_widened(Key *keys, size_t count, Key flips, uint32_t *wide) {
  std::transform(keys, keys + count, wide, [flips](Key key) { return uint32_t{key} ^ flips; });
  sort_keys(wide, count);
  std::transform(wide, wide + count, keys, [flips](uint32_t key) { return static_cast<Key>(key ^ flips); });
}

constexpr size_t few_keys = 512;  // their wide ones are on the stack

template <class Key> void sort_few_keys(Key *keys, size_t count, Key flips) {
  std::array<uint32_t, few_keys> wide;
  sort_widened(keys, count, flips, wide.data());
}

}  // namespace

void sort_narrow_keys(uint8_t *keys, size_t count, uint8_t flips) {
  if (count <= few_keys) return sort_few_keys(keys, count, flips);
  std::array<size_t, values_of<uint8_t>> counts = {};
  counting_sort(keys, count, flips, counts.data());
}

void sort_narrow_keys(uint16_t *keys, size_t count, uint16_t flips) {
  constexpr size_t worth_counting = values_of<uint16_t> / 2;
  if (count <= few_keys) return sort_few_keys(keys, count, flips);
  if (count >= worth_counting) {
    if (const auto counts = portlib_allocate_array<size_t>(values_of<uint16_t>)) {
      return counting_sort(keys, count, flips, counts.get());
    }
  } else if (const auto wide = allocate_elements<uint32_t>(count)) {
    return sort_widened(keys, count, flips, wide.get());
  }
  shell_sort(keys, static_cast<int64_t>(count),
             [flips](uint16_t left, uint16_t right) { return (left ^ flips) < (right ^ flips); });
}

}  // namespace qwport::sorting
