// SPDX-License-Identifier: MIT
// The Shell sort of reals with NaNs among them, a chain of a pass at a time.
//
// A NaN moves to the front of its chain, past all that came before it. A number moves past NaNs and past larger
// numbers, and stops at one that is not larger. So a pass leaves a chain's numbers sorted, equal ones in the
// order in which they stood, and its NaNs in reverse order. Numbers that came before a NaN stay behind it, and a
// later one passes it only if it is smaller than all of these: a NaN ends up before the first number that is not
// below the least one that stood before it.
#pragma once

#include <limits>

#include "merge_sort.h"
#include "real_keys.h"
#include "shell_sort.h"

namespace qwport::sorting {

template <class Key> struct Nan {
  Key key;
  Key least_before;  // the value of the least number that stood before it
  bool is_first;     // no number stood before it
};

// A chain of a pass; room for all elements.
template <class Key> struct Chain {
  HeapArray<Key> numbers;
  HeapArray<Key> other;
  HeapArray<Nan<Key>> nans;
  size_t number_count;
  size_t nan_count;
};

template <class Key> void take_chain(const Key *keys, size_t count, size_t first, size_t gap, Chain<Key> &chain) {
  chain.number_count = 0;
  chain.nan_count = 0;
  Key least = std::numeric_limits<Key>::max();
  for (size_t i = first; i < count; i += gap) {
    const Key key = keys[i];
    if (is_nan(key)) {
      chain.nans[chain.nan_count++] = {key, least, chain.number_count == 0};
    } else {
      chain.numbers[chain.number_count++] = key;
      least = std::min(least, value_of(key));
    }
  }
}

// By insertion, which has little to do after the passes of larger gaps; where it has much, by merging.
template <class Key> void sort_chain(Key *numbers, size_t count, Key *other) {
  constexpr size_t moves_an_element = 16;
  if (count <= longest_short_sort) return sort_short(numbers, count, ValueOrder{});
  size_t moves_left = moves_an_element * count;
  for (size_t i = 1; i < count; ++i) {
    const Key taken = numbers[i];
    size_t hole = i;
    for (; hole > 0 && ValueOrder{}(taken, numbers[hole - 1]); --hole) numbers[hole] = numbers[hole - 1];
    numbers[hole] = taken;
    if (i - hole > moves_left) return merge_sort(numbers, count, other, ValueOrder{});
    moves_left -= i - hole;
  }
}

template <class Key> void put_chain(Key *keys, size_t first, size_t gap, const Chain<Key> &chain) {
  size_t number = 0;
  Key *place = keys + first;
  const auto put = [&](Key key) {
    *place = key;
    place += gap;
  };
  for (size_t i = chain.nan_count; i-- > 0;) {
    const Nan<Key> &nan = chain.nans[i];
    while (number < chain.number_count && (nan.is_first || value_of(chain.numbers[number]) < nan.least_before)) {
      put(chain.numbers[number++]);
    }
    put(nan.key);
  }
  while (number < chain.number_count) put(chain.numbers[number++]);
}

// False for no memory, the keys then being as they were.
template <class Key> bool sort_with_nans(Key *keys, size_t count) {
  Chain<Key> chain = {allocate_elements<Key>(count), allocate_elements<Key>(count), allocate_elements<Nan<Key>>(count),
                      0, 0};
  if (!chain.numbers || !chain.other || !chain.nans) return false;
  for (auto gap = first_gap(static_cast<int64_t>(count)); gap > 0; gap = next_gap(gap)) {
    for (size_t first = 0; first < static_cast<size_t>(gap); ++first) {
      take_chain(keys, count, first, static_cast<size_t>(gap), chain);
      sort_chain(chain.numbers.get(), chain.number_count, chain.other.get());
      put_chain(keys, first, static_cast<size_t>(gap), chain);
    }
  }
  return true;
}

}  // namespace qwport::sorting
