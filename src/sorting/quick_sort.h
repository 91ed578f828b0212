// SPDX-License-Identifier: MIT
// Quicksort in place, without branches that depend on the keys: a processor guesses every second of those
// wrong, which costs more than all moves.
#pragma once

#include <array>
#include <bit>

#include "heap_sort.h"
#include "short_sort.h"
#include "sort_keys.h"

namespace qwport::sorting {

// The median of three keys, or of nine of a long array.
template <class Key> Key choose_pivot(const Key *keys, size_t count) {
  constexpr size_t long_count = 200;
  std::array<Key, 9> some;
  const size_t some_count = count < long_count ? 3 : some.size();
  for (size_t i = 0; i < some_count; ++i) some[i] = keys[(2 * i + 1) * count / (2 * some_count)];
  sort_short(some.data(), some_count, KeyOrder{});
  return some[some_count / 2];
}

// Moves the keys that belong to the left to the front, and tells how many they are.
template <class Key, class Belongs> size_t partition(Key *keys, size_t count, Belongs belongs_left) {
  size_t left = 0;
  for (size_t i = 0; i < count; ++i) {
    const Key key = keys[i];
    keys[i] = keys[left];
    keys[left] = key;
    left += static_cast<size_t>(belongs_left(key));
  }
  return left;
}

// Pivots near the ends, time and again, use the depth up; then heap sort takes over.
template <class Key> void quick_sort_to_depth(Key *keys, size_t count, int depth) {
  while (count > longest_short_sort) {
    if (depth-- == 0) return heap_sort(keys, count);
    const Key pivot = choose_pivot(keys, count);
    size_t left = partition(keys, count, [pivot](const Key &key) { return key < pivot; });
    if (left == 0) {  // the pivot is the least: what equals it is in place
      left = partition(keys, count, [pivot](const Key &key) { return !(pivot < key); });
    } else {
      quick_sort_to_depth(keys, left, depth);
    }
    keys += left;
    count -= left;
  }
  sort_short(keys, count, KeyOrder{});
}

template <class Key> void quick_sort(Key *keys, size_t count) {
  quick_sort_to_depth(keys, count, 2 * static_cast<int>(std::bit_width(count)));
}

}  // namespace qwport::sorting
