// SPDX-License-Identifier: MIT
// Keys of single and double precision. -0 comes directly before +0, NaNs stand beyond the infinities of
// their signs; the order of the language knows neither.
#pragma once

#include <bit>
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

template <class Key> bool is_nan(Key key) { return key - ~infinity<Key> > infinity<Key> - ~infinity<Key>; }

// The same for both zeros.
template <class Key> Key value_of(Key key) { return key + static_cast<Key>(key == minus_zero<Key>); }

struct ValueOrder {
  template <class Key> bool operator()(Key left, Key right) const { return value_of(left) < value_of(right); }
};

// "Not greater or equal": a NaN is smaller than everything and everything than it.
struct RealOrder {
  template <class Key> bool operator()(Key left, Key right) const {
    return is_nan(left) || is_nan(right) || ValueOrder{}(left, right);
  }
};

}  // namespace qwport::sorting
