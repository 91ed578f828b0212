// SPDX-License-Identifier: MIT
// Sorting single and double precision. Without NaNs and without zeros of both signs the order of the keys is that
// of the language; with them it takes more.
#include <algorithm>
#include <array>

#include "element_sorts.h"
#include "key_sort.h"
#include "real_keys.h"
#include "shell_sort.h"

namespace qwport::sorting {

namespace {

// "Not greater or equal": a NaN is smaller than everything and everything than it.
struct RealOrder {
  uint64_t infinity;
  template <class Key> bool operator()(Key left, Key right) const {
    const uint64_t a = widen(left);
    const uint64_t b = widen(right);
    return is_nan(a, infinity) || is_nan(b, infinity) || value_of(a) < value_of(b);
  }
};

constexpr size_t few_keys = 40;

// False for no memory, the keys then being as they were.
bool sort_wide_specials(uint64_t *keys, size_t count, uint64_t infinity, bool has_nan) {
  if (count > few_keys) return has_nan ? sort_with_nans(keys, count, infinity) : sort_signed_zeros(keys, count);
  shell_sort(keys, static_cast<int64_t>(count), RealOrder{infinity});
  return true;
}

bool sort_specials(uint64_t *keys, size_t count, bool has_nan) {
  return sort_wide_specials(keys, count, infinity<uint64_t>, has_nan);
}

bool sort_specials(uint32_t *keys, size_t count, bool has_nan) {
  std::array<uint64_t, few_keys> few;
  const auto many = count <= few_keys ? nullptr : allocate_elements<uint64_t>(count);
  uint64_t *const wide = count <= few_keys ? few.data() : many.get();
  if (wide == nullptr) return false;
  std::transform(keys, keys + count, wide, [](uint32_t key) { return widen(key); });
  if (!sort_wide_specials(wide, count, widen(infinity<uint32_t>), has_nan)) return false;
  std::transform(wide, wide + count, keys, narrow);
  return true;
}

// Whether reals are sorted, without a NaN among them. They are looked at in blocks, without a branch for each.
template <class Key> bool are_sorted(const Key *reals, size_t count) {
  constexpr size_t block = 16;
  Key last = 0;
  bool is_sorted = true;
  for (size_t i = 0; i < count && is_sorted;) {
    for (const size_t end = std::min(count, i + block); i < end; ++i) {
      const Key key = key_of_real(reals[i]);
      is_sorted &= key >= last;
      is_sorted &= !is_nan(key, infinity<Key>);
      last = key;
    }
  }
  return is_sorted;
}

template <class Key> void sort_keys_of_reals(Key *keys, size_t count) {
  if (are_sorted(keys, count)) return;
  bool has_nan = false;
  bool has_plus_zero = false;
  bool has_minus_zero = false;
  for (size_t i = 0; i < count; ++i) {
    const Key key = key_of_real(keys[i]);
    keys[i] = key;
    has_nan |= is_nan(key, infinity<Key>);
    has_plus_zero |= key == plus_zero<Key>;
    has_minus_zero |= key == minus_zero<Key>;
  }
  if (!has_nan && !(has_plus_zero && has_minus_zero)) {
    sort_keys(keys, count);
  } else if (!sort_specials(keys, count, has_nan)) {
    shell_sort(keys, static_cast<int64_t>(count), RealOrder{widen(infinity<Key>)});
  }
  for (size_t i = 0; i < count; ++i) keys[i] = real_of_key(keys[i]);
}

}  // namespace

void sort_reals(uint32_t *reals, size_t count) { sort_keys_of_reals(reals, count); }
void sort_reals(uint64_t *reals, size_t count) { sort_keys_of_reals(reals, count); }

}  // namespace qwport::sorting
