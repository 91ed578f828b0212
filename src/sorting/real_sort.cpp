// SPDX-License-Identifier: MIT
// Sorting single and double precision. Without NaNs and without zeros of both signs the order of the keys is that
// of the language; with them it takes more.
#include <algorithm>
#include <array>

#include "element_sorts.h"
#include "key_sort.h"
#include "real_keys.h"
#include "shell_sort.h"
#include "short_sort.h"

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

// A zero or a NaN: for others the order of the keys is that of the language.
template <class Key> bool is_special(Key real) {
  constexpr Key infinity_twice = static_cast<Key>((infinity<Key> ^ sign_bit<Key>) << 1);
  return static_cast<Key>(real << 1) - 1 >= infinity_twice;
}

template <class Key> bool have_special(const Key *reals, size_t count) {
  bool found = false;
  for (size_t i = 0; i < count; ++i) found |= is_special(reals[i]);
  return found;
}

template <class Key> bool have_nan(const Key *keys, size_t count) {
  return std::any_of(keys, keys + count, [](Key key) { return is_nan(key, infinity<Key>); });
}

template <class Key> bool have_both_zeros(const Key *keys, size_t count) {
  return std::find(keys, keys + count, plus_zero<Key>) != keys + count &&
         std::find(keys, keys + count, minus_zero<Key>) != keys + count;
}

template <class Key> void sort_keys_of_reals(Key *keys, size_t count) {
  const uint32_t descents = find_descents(keys, count, key_of_real<Key>);
  if (descents == 0) {
    // The NaNs among sorted keys stand at the ends.
    const auto is_end_nan = [](Key real) { return is_nan(key_of_real(real), infinity<Key>); };
    if (!is_end_nan(keys[0]) && !is_end_nan(keys[count - 1])) return;
  } else if (are_nearly_sorted(count, descents) && !have_special(keys, count)) {
    return sort_by_insertion(keys, count, descents, key_of_real<Key>);
  }

  bool has_special = false;
  for (size_t i = 0; i < count; ++i) {
    has_special |= is_special(keys[i]);
    keys[i] = key_of_real(keys[i]);
  }
  const bool has_nan = has_special && have_nan(keys, count);
  if (!has_nan && !(has_special && have_both_zeros(keys, count))) {
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
