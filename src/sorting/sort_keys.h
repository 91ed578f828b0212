// SPDX-License-Identifier: MIT
// Keys: unsigned numbers in the order of the elements that they stand for. Every type is sorted as keys, so
// that a sort is written once a width.
#pragma once

#include <cstddef>
#include <cstdint>

#include "heap_text.h"

namespace qwport::sorting {

// 16 bytes at any address that suits 8.
struct WideKey {
  uint64_t low;
  uint64_t high;
};

__extension__ using Unsigned128 = unsigned __int128;

template <class Key> Key number_of(Key key) { return key; }
inline Unsigned128 number_of(const WideKey &key) { return Unsigned128{key.high} << 64 | key.low; }

// Without a branch: subtraction with borrow.
inline bool operator<(const WideKey &left, const WideKey &right) { return number_of(left) < number_of(right); }
inline bool operator==(const WideKey &left, const WideKey &right) { return number_of(left) == number_of(right); }

struct KeyOrder {
  template <class Key> bool operator()(const Key &left, const Key &right) const { return left < right; }
};

// Null for no memory. The elements hold nothing yet.
template <class Element> HeapArray<Element> allocate_elements(size_t count) {
  if (count > static_cast<size_t>(PTRDIFF_MAX) / sizeof(Element)) return nullptr;
  return HeapArray<Element>(static_cast<Element *>(std::malloc(count * sizeof(Element))));
}

}  // namespace qwport::sorting
