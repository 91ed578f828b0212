// SPDX-License-Identifier: MIT
// Keys that are sorted, reversed, or sorted but for a few: one look tells, and little is left to do.
#pragma once

#include <algorithm>

#include "quick_sort.h"
#include "sort_keys.h"

namespace qwport::sorting {

// Merges sorted keys that were taken out with the sorted rest, from the end.
template <class Key> void merge_back(Key *keys, size_t rest, const Key *taken, size_t taken_count) {
  size_t hole = rest + taken_count;
  while (taken_count > 0) {
    const bool from_rest = rest > 0 && taken[taken_count - 1] < keys[rest - 1];
    keys[--hole] = from_rest ? keys[--rest] : taken[--taken_count];
  }
}

// Sorted keys at the front of an array, and those that were taken out of it from among them and from behind.
template <class Key> struct Strays {
  Key *keys;
  size_t rest;
  Key *taken;
  size_t taken_count;
  size_t room;
};

// Takes out what breaks the order: a key that is too small, or the one before it if that is too large. Where many
// in a row look too small, it is those before them that are too large. False if it is too much.
template <class Key> bool take_strays(Strays<Key> &strays, size_t count) {
  constexpr size_t fewest = 4;
  constexpr size_t one_in = 8;
  constexpr size_t many = 8;
  auto &[keys, rest, taken, taken_count, room] = strays;
  size_t in_a_row = 0;
  while (rest + taken_count < count) {
    const size_t next = rest + taken_count;
    const Key key = keys[next];
    if (rest == 0 || !(key < keys[rest - 1])) {
      keys[rest++] = key;
      in_a_row = 0;
    } else if (taken_count == room || taken_count > fewest + next / one_in) {
      return false;
    } else if (in_a_row == 0 && rest > 1 && !(key < keys[rest - 2])) {
      taken[taken_count++] = std::exchange(keys[rest - 1], key);
    } else if (in_a_row < many) {
      taken[taken_count++] = key;
      ++in_a_row;
    } else {
      taken_count -= many;
      in_a_row = 0;
      const Key largest = *std::max_element(taken + taken_count, taken + taken_count + many);
      // NOLINTNEXTLINE(bugprone-infinite-loop): the structured binding rest changes
      while (rest > 0 && taken_count < room && largest < keys[rest - 1]) taken[taken_count++] = keys[--rest];
    }
  }
  return true;
}

// False if it is too much, the keys then standing in some order.
template <class Key> bool sort_strays(Key *keys, size_t count, size_t sorted, Key *taken, size_t room) {
  Strays<Key> strays = {keys, sorted, taken, 0, room};
  const bool are_few = take_strays(strays, count);
  if (are_few) {
    quick_sort(taken, strays.taken_count);
    merge_back(keys, strays.rest, taken, strays.taken_count);
  } else {
    std::copy(taken, taken + strays.taken_count, keys + strays.rest);
  }
  return are_few;
}

// A few keys are looked at without a branch for each.
template <class Key> void sort_few(Key *keys, size_t count) {
  size_t ascents = 0;
  size_t descents = 0;
  for (size_t i = 1; i < count; ++i) {
    ascents += static_cast<size_t>(keys[i - 1] < keys[i]);
    descents += static_cast<size_t>(keys[i] < keys[i - 1]);
  }
  if (descents == 0) return;
  if (ascents == 0) return std::reverse(keys, keys + count);
  sort_short(keys, count, KeyOrder{});
}

// Whether the keys are sorted now, as a few always are.
template <class Key> bool sort_by_existing_order(Key *keys, size_t count) {
  constexpr size_t room = 64;
  constexpr size_t one_in = 16;
  if (count <= longest_short_sort) return sort_few(keys, count), true;
  size_t sorted = 1;
  while (sorted < count && !(keys[sorted] < keys[sorted - 1])) ++sorted;
  if (sorted == count) return true;
  if (sorted == 1) {
    size_t reversed = 2;
    while (reversed < count && !(keys[reversed - 1] < keys[reversed])) ++reversed;
    if (reversed == count) return std::reverse(keys, keys + count), true;
  }
  std::array<Key, room> few;
  if (count <= room * one_in) return sort_strays(keys, count, sorted, few.data(), room);
  const auto many = allocate_elements<Key>(count / one_in);
  return many != nullptr && sort_strays(keys, count, sorted, many.get(), count / one_in);
}

}  // namespace qwport::sorting
