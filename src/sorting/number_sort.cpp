// SPDX-License-Identifier: MIT
// Sorting numbers of all types: each array is turned into keys in place, sorted, and turned back.
#include <algorithm>
#include <type_traits>

#include "element_sorts.h"
#include "key_sort.h"
#include "real_keys.h"
#include "short_sort.h"

namespace qwport::sorting {

namespace {

template <class Key> void flip_signs(Key *keys, size_t count) {
  for (size_t i = 0; i < count; ++i) keys[i] = static_cast<Key>(keys[i] ^ sign_bit<Key>);
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

template <class Number> void sort_integers(void *array, size_t count) {
  auto *numbers = static_cast<Number *>(array);
  const auto number = [](Number itself) { return itself; };
  const uint32_t descents = find_descents(numbers, count, number);
  if (descents == 0) return;
  if (are_nearly_sorted(count, descents)) return sort_by_insertion(numbers, count, descents, number);
  auto *keys = static_cast<std::make_unsigned_t<Number> *>(array);
  if constexpr (sizeof(Number) < sizeof(uint32_t)) {
    sort_narrow_keys(keys, count, sign_bit<std::make_unsigned_t<Number>>);
  } else {
    flip_signs(keys, count);
    sort_keys(keys, count);
    flip_signs(keys, count);
  }
}

}  // namespace

void sort_numbers(void *array, size_t count, ElementType type) {
  switch (type) {
    case ElementType::real4:
      return sort_reals(static_cast<uint32_t *>(array), count);
    case ElementType::real8:
      return sort_reals(static_cast<uint64_t *>(array), count);
    case ElementType::int1:
      return sort_integers<int8_t>(array, count);
    case ElementType::int2:
      return sort_integers<int16_t>(array, count);
    case ElementType::int4:
      return sort_integers<int32_t>(array, count);
    case ElementType::int8:
      return sort_integers<int64_t>(array, count);
    default:
      return sort_quadruples(array, count);
  }
}

}  // namespace qwport::sorting
