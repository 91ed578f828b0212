// SPDX-License-Identifier: MIT
// Keys of reals. -0 comes directly before +0, NaNs stand beyond the infinities of their signs; the order of the
// language knows neither. Arrays with NaNs or with zeros of both signs are sorted as wide keys, of single precision
// too: the bits of a single, followed by zeros, are in the order of the singles, and both zeros are a double's.
#pragma once

#include <limits>

#include "sort_keys.h"

namespace qwport::sorting {

template <class Key> constexpr Key sign_bit = Key{1} << (std::numeric_limits<Key>::digits - 1);
template <class Key> constexpr Key plus_zero = sign_bit<Key>;
template <class Key> constexpr Key minus_zero = plus_zero<Key> - 1;

// Negative reals grow with falling bits.
template <class Key> constexpr Key key_of_real(Key bits) {
  const Key is_negative = bits >> (std::numeric_limits<Key>::digits - 1);
  return bits ^ ((Key{0} - is_negative) | sign_bit<Key>);
}
template <class Key> constexpr Key real_of_key(Key key) { return key_of_real<Key>(~key) ^ ~Key{0}; }

template <class Key> constexpr Key infinity = sign_bit<Key> | (sizeof(Key) == 4 ? Key{0x7F800000} : Key{0x7FF} << 52);

inline uint64_t widen(uint64_t key) { return key; }
inline uint64_t widen(uint32_t key) { return uint64_t{key} << 32 | (key < plus_zero<uint32_t> ? UINT32_MAX : 0); }
inline uint32_t narrow(uint64_t key) { return static_cast<uint32_t>(key >> 32); }

// infinity: the key of it, wide for a wide key.
template <class Key> bool is_nan(Key key, Key infinity) { return key - ~infinity > infinity - ~infinity; }

// The same for both zeros.
inline uint64_t value_of(uint64_t key) { return key + static_cast<uint64_t>(key == minus_zero<uint64_t>); }
inline bool is_zero(uint64_t key) { return value_of(key) == plus_zero<uint64_t>; }

// False for no memory, the keys then being as they were.
bool sort_with_nans(uint64_t *keys, size_t count, uint64_t infinity);
bool sort_signed_zeros(uint64_t *keys, size_t count);  // zeros of both signs, no NaNs

}  // namespace qwport::sorting
