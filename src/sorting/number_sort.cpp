// SPDX-License-Identifier: MIT
// Sorting numbers: each array is turned into keys in place, sorted, and turned back.
#include "counting_sort.h"
#include "element_sorts.h"
#include "key_sort.h"
#include "nan_sort.h"
#include "signed_zeros.h"

namespace qwport::sorting {

namespace {

void sort_in_order(uint8_t *keys, size_t count) {
  constexpr size_t worth_counting = 100;
  if (count >= worth_counting) {
    std::array<size_t, values_of<uint8_t>> counts = {};
    return counting_sort(keys, count, counts.data());
  }
  std::array<uint16_t, worth_counting> wide;
  std::copy(keys, keys + count, wide.data());
  sort_keys(wide.data(), count);
  std::transform(wide.data(), wide.data() + count, keys, [](uint16_t key) { return static_cast<uint8_t>(key); });
}

void sort_in_order(uint16_t *keys, size_t count) {
  constexpr size_t worth_counting = values_of<uint16_t> / 2;
  if (count >= worth_counting) {
    if (const auto counts = portlib_allocate_array<size_t>(values_of<uint16_t>)) {
      return counting_sort(keys, count, counts.get());
    }
  }
  sort_keys(keys, count);
}

template <class Key> void sort_in_order(Key *keys, size_t count) { sort_keys(keys, count); }

template <class Key> void flip_signs(Key *keys, size_t count) {
  for (size_t i = 0; i < count; ++i) keys[i] = static_cast<Key>(keys[i] ^ sign_bit<Key>);
}

template <class Key> void sort_integers(void *array, size_t count) {
  auto *keys = static_cast<Key *>(array);
  flip_signs(keys, count);
  sort_in_order(keys, count);
  flip_signs(keys, count);
}

template <class Key> void sort_reals(void *array, size_t count) {
  constexpr size_t small_count = 40;
  auto *keys = static_cast<Key *>(array);
  bool has_nan = false;
  bool has_plus_zero = false;
  bool has_minus_zero = false;
  for (size_t i = 0; i < count; ++i) {
    const Key key = key_of_real(keys[i]);
    keys[i] = key;
    has_nan |= is_nan(key);
    has_plus_zero |= key == plus_zero<Key>;
    has_minus_zero |= key == minus_zero<Key>;
  }
  if (!has_nan && !(has_plus_zero && has_minus_zero)) {
    sort_keys(keys, count);
  } else if (count <= small_count || !(has_nan ? sort_with_nans(keys, count) : sort_signed_zeros(keys, count))) {
    shell_sort(keys, static_cast<int64_t>(count), RealOrder{});
  }
  for (size_t i = 0; i < count; ++i) keys[i] = real_of_key(keys[i]);
}

// -0 and NaNs have places of their own among quadruples.
WideKey key_of_quadruple(WideKey bits) {
  const uint64_t flips = uint64_t{0} - (bits.high >> 63);
  return {bits.low ^ flips, bits.high ^ (flips | sign_bit<uint64_t>)};
}

WideKey quadruple_of_key(WideKey key) {
  const uint64_t flips = (key.high >> 63) - 1;
  return {key.low ^ flips, key.high ^ (flips | sign_bit<uint64_t>)};
}

void sort_quadruples(void *array, size_t count) {
  auto *keys = static_cast<WideKey *>(array);
  std::transform(keys, keys + count, keys, key_of_quadruple);
  sort_keys(keys, count);
  std::transform(keys, keys + count, keys, quadruple_of_key);
}

}  // namespace

void sort_numbers(void *array, size_t count, ElementType type) {
  switch (type) {
    case ElementType::real4:
      return sort_reals<uint32_t>(array, count);
    case ElementType::real8:
      return sort_reals<uint64_t>(array, count);
    case ElementType::int1:
      return sort_integers<uint8_t>(array, count);
    case ElementType::int2:
      return sort_integers<uint16_t>(array, count);
    case ElementType::int4:
      return sort_integers<uint32_t>(array, count);
    case ElementType::int8:
      return sort_integers<uint64_t>(array, count);
    default:
      return sort_quadruples(array, count);
  }
}

}  // namespace qwport::sorting
