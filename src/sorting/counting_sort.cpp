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
template <class Key> void counting_sort(Key *keys, size_t count, size_t *counts) {
  for (size_t i = 0; i < count; ++i) ++counts[keys[i]];
  for (size_t value = 0; value < values_of<Key>; ++value) {
    keys = std::fill_n(keys, counts[value], static_cast<Key>(value));
  }
}

template <class Key> void sort_widened(Key *keys, size_t count, uint32_t *wide) {
  std::copy(keys, keys + count, wide);
  sort_keys(wide, count);
  std::transform(wide, wide + count, keys, [](uint32_t key) { return static_cast<Key>(key); });
}

constexpr size_t few_keys = 512;  // their wide ones are on the stack

}  // namespace

void sort_keys(uint8_t *keys, size_t count) {
  if (count <= few_keys) {
    std::array<uint32_t, few_keys> wide;
    return sort_widened(keys, count, wide.data());
  }
  std::array<size_t, values_of<uint8_t>> counts = {};
  counting_sort(keys, count, counts.data());
}

void sort_keys(uint16_t *keys, size_t count) {
  constexpr size_t worth_counting = values_of<uint16_t> / 2;
  if (count <= few_keys) {
    std::array<uint32_t, few_keys> wide;
    return sort_widened(keys, count, wide.data());
  }
  if (count >= worth_counting) {
    if (const auto counts = portlib_allocate_array<size_t>(values_of<uint16_t>)) {
      return counting_sort(keys, count, counts.get());
    }
  } else if (const auto wide = allocate_elements<uint32_t>(count)) {
    return sort_widened(keys, count, wide.get());
  }
  shell_sort(keys, static_cast<int64_t>(count), KeyOrder{});
}

}  // namespace qwport::sorting
