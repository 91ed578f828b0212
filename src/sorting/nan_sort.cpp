// SPDX-License-Identifier: MIT
// The Shell sort of reals with NaNs among them, a chain of a pass at a time.
//
// A NaN moves to the front of its chain, past all that came before it. A number moves past NaNs and past larger
// numbers, and stops at one that is not larger. So a pass leaves a chain's numbers sorted, equal ones in the
// order in which they stood, and its NaNs in reverse order. Numbers that came before a NaN stay behind it, and a
// later one passes it only if it is smaller than all of these: a NaN ends up before the first number that is not
// below the least one that stood before it.
#include <algorithm>

#include "key_sort.h"
#include "real_keys.h"
#include "shell_sort.h"
#include "short_sort.h"

namespace qwport::sorting {

namespace {

struct Nan {
  uint64_t key;
  uint64_t least_before;  // the value of the least number that stood before it
  bool is_first;          // no number stood before it
};

// A chain of a pass; room for all elements.
struct Chain {
  uint64_t *numbers;
  uint64_t *zeros;  // null if there are none
  Nan *nans;
  size_t number_count;
  size_t nan_count;
};

void take_chain(const uint64_t *keys, size_t count, uint64_t infinity, size_t first, size_t gap, Chain &chain) {
  chain.number_count = 0;
  chain.nan_count = 0;
  uint64_t least = UINT64_MAX;
  size_t looked_at = 0;
  for (size_t i = first; i < count; i += gap) {
    const uint64_t key = keys[i];
    if (is_nan(key, infinity)) {
      for (; looked_at < chain.number_count; ++looked_at) least = std::min(least, value_of(chain.numbers[looked_at]));
      chain.nans[chain.nan_count++] = {key, least, chain.number_count == 0};
    } else {
      chain.numbers[chain.number_count++] = key;
    }
  }
}

struct ValueOrder {
  bool operator()(uint64_t left, uint64_t right) const { return value_of(left) < value_of(right); }
};

// In the order of the values. Zeros keep their order: they are put back as they stood.
void sort_chain(uint64_t *numbers, size_t count, uint64_t *zeros) {
  if (count <= longest_short_sort) return sort_short(numbers, count, ValueOrder{});
  if (zeros == nullptr) return sort_keys(numbers, count);
  const uint64_t *const end = std::copy_if(numbers, numbers + count, zeros, is_zero);
  sort_keys(numbers, count);
  std::copy<const uint64_t *>(zeros, end, std::find_if(numbers, numbers + count, is_zero));
}

void put_chain(uint64_t *keys, size_t first, size_t gap, const Chain &chain) {
  size_t number = 0;
  uint64_t *place = keys + first;
  const auto put = [&place, gap](uint64_t key) {
    *place = key;
    place += gap;
  };
  for (size_t i = chain.nan_count; i-- > 0;) {
    const Nan &nan = chain.nans[i];
    while (number < chain.number_count && (nan.is_first || value_of(chain.numbers[number]) < nan.least_before)) {
      put(chain.numbers[number++]);
    }
    put(nan.key);
  }
  while (number < chain.number_count) put(chain.numbers[number++]);
}

}  // namespace

bool sort_with_nans(uint64_t *keys, size_t count, uint64_t infinity) {
  const auto nan_count = static_cast<size_t>(
      std::count_if(keys, keys + count, [infinity](uint64_t key) { return is_nan(key, infinity); }));
  const auto numbers = allocate_elements<uint64_t>(count);
  const bool has_zeros = std::any_of(keys, keys + count, is_zero);
  const auto zeros = has_zeros ? allocate_elements<uint64_t>(count) : nullptr;
  const auto nans = allocate_elements<Nan>(nan_count);
  if (!numbers || (has_zeros && !zeros) || !nans) return false;
  Chain chain = {numbers.get(), zeros.get(), nans.get(), 0, 0};
  for (auto gap = first_gap(static_cast<int64_t>(count)); gap > 0; gap = next_gap(gap)) {
    for (size_t first = 0; first < static_cast<size_t>(gap); ++first) {
      take_chain(keys, count, infinity, first, static_cast<size_t>(gap), chain);
      sort_chain(chain.numbers, chain.number_count, chain.zeros);
      put_chain(keys, first, static_cast<size_t>(gap), chain);
    }
  }
  return true;
}

}  // namespace qwport::sorting
