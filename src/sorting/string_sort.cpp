// SPDX-License-Identifier: MIT
// Sorting byte strings: up to 16 bytes are a key as a whole; longer ones are sorted by a key of their first
// bytes and the place where they stand.
#include <bit>
#include <cstring>
#include <type_traits>

#include "element_sorts.h"
#include "key_sort.h"
#include "shell_sort.h"

namespace qwport::sorting {

namespace {

using Byte = unsigned char;

constexpr size_t few_elements = 64;  // their keys are on the stack

// ---- A number of the order of bytes -------------------------------------------------------------

uint8_t swap_bytes(uint8_t number) { return number; }
uint16_t swap_bytes(uint16_t number) { return __builtin_bswap16(number); }
uint32_t swap_bytes(uint32_t number) { return __builtin_bswap32(number); }
uint64_t swap_bytes(uint64_t number) { return __builtin_bswap64(number); }

template <class Number> Number load(const Byte *bytes) {
  Number number;
  std::memcpy(&number, bytes, sizeof number);
  return swap_bytes(number);
}

template <class Number> void store(Byte *bytes, Number number) {
  number = swap_bytes(number);
  std::memcpy(bytes, &number, sizeof number);
}

// A key is made of the first bytes and of the last bytes of an element, half and half. They may overlap: of
// elements whose first halves are equal, the overlapping bytes are too.
template <class Key> struct Halves {
  static constexpr size_t digits = 4 * sizeof(Key);
  using Half = std::conditional_t<sizeof(Key) == 8, uint32_t, std::conditional_t<sizeof(Key) == 4, uint16_t, uint8_t>>;
  static Key join(Half first, Half last) { return static_cast<Key>(Key{first} << digits | last); }
  static Half first(Key key) { return static_cast<Half>(key >> digits); }
  static Half last(Key key) { return static_cast<Half>(key); }
};

template <> struct Halves<WideKey> {
  using Half = uint64_t;
  static WideKey join(Half first, Half last) { return {last, first}; }
  static Half first(WideKey key) { return key.high; }
  static Half last(WideKey key) { return key.low; }
};

// ---- Short strings ------------------------------------------------------------------------------

template <class Key> void sort_by_keys(Byte *array, size_t count, size_t size, Key *keys) {
  using Half = typename Halves<Key>::Half;
  Byte *const lasts = array + size - sizeof(Half);
  for (size_t i = 0; i < count; ++i) {
    keys[i] = Halves<Key>::join(load<Half>(array + i * size), load<Half>(lasts + i * size));
  }
  sort_keys(keys, count);
  for (size_t i = 0; i < count; ++i) {
    store<Half>(array + i * size, Halves<Key>::first(keys[i]));
    store<Half>(lasts + i * size, Halves<Key>::last(keys[i]));
  }
}

void shell_sort_strings(Byte *array, int64_t count, size_t size, Byte *taken) {
  const auto element = [array, size](int64_t index) { return array + static_cast<size_t>(index) * size; };
  for (int64_t gap = first_gap(count); gap > 0; gap = next_gap(gap)) {
    for (int64_t i = gap; i < count; ++i) {
      std::memcpy(taken, element(i), size);
      int64_t hole = i;
      for (; hole >= gap && std::memcmp(taken, element(hole - gap), size) < 0; hole -= gap) {
        std::memcpy(element(hole), element(hole - gap), size);
      }
      std::memcpy(element(hole), taken, size);
    }
  }
}

template <class Key> void sort_short_strings(Byte *array, size_t count, size_t size) {
  std::array<Key, few_elements> few;
  if (count <= few_elements) return sort_by_keys(array, count, size, few.data());
  if (const auto keys = allocate_elements<Key>(count)) return sort_by_keys(array, count, size, keys.get());
  std::array<Byte, sizeof(Key)> taken;
  shell_sort_strings(array, static_cast<int64_t>(count), size, taken.data());
}

// ---- Long strings -------------------------------------------------------------------------------

// Keys of long strings: the first bytes above, the place below.
struct StringOrder {
  const Byte *array;
  size_t size;
  bool operator()(const WideKey &left, const WideKey &right) const {
    constexpr size_t step = sizeof(uint64_t);
    if (left.high != right.high) return left.high < right.high;
    const Byte *const left_bytes = array + left.low * size;
    const Byte *const right_bytes = array + right.low * size;
    size_t at = step;
    while (at + step < size && load<uint64_t>(left_bytes + at) == load<uint64_t>(right_bytes + at)) at += step;
    at = std::min(at, size - step);
    return load<uint64_t>(left_bytes + at) < load<uint64_t>(right_bytes + at);
  }
};

// Moves every element to the place that its key has, along the cycles of the permutation.
void arrange(Byte *array, size_t count, size_t size, Byte *taken, WideKey *keys) {
  for (size_t start = 0; start < count; ++start) {
    if (keys[start].low == start) continue;
    std::memcpy(taken, array + start * size, size);
    size_t hole = start;
    for (size_t source = keys[hole].low; source != start; source = keys[hole].low) {
      std::memcpy(array + hole * size, array + source * size, size);
      keys[hole].low = hole;
      hole = source;
    }
    std::memcpy(array + hole * size, taken, size);
    keys[hole].low = hole;
  }
}

// The same through a second array, where the processor can look for many elements at once. False for no memory.
bool arrange_by_copy(Byte *array, size_t count, size_t size, const WideKey *keys) {
  const auto copy = allocate_elements<Byte>(count * size);
  if (copy == nullptr) return false;
  for (size_t i = 0; i < count; ++i) {
    constexpr size_t ahead = 16;
    if (i + ahead < count) __builtin_prefetch(array + keys[i + ahead].low * size);
    std::memcpy(copy.get() + i * size, array + keys[i].low * size, size);
  }
  std::memcpy(array, copy.get(), count * size);
  return true;
}

void sort_by_places(Byte *array, size_t count, size_t size, Byte *taken, WideKey *keys) {
  for (size_t i = 0; i < count; ++i) keys[i] = {i, load<uint64_t>(array + i * size)};
  sort_keys_by(keys, count, sizeof keys->low, StringOrder{array, size});
  if (count <= few_elements || !arrange_by_copy(array, count, size, keys)) arrange(array, count, size, taken, keys);
}

// taken: room for an element.
void sort_long_strings(Byte *array, size_t count, size_t size, Byte *taken) {
  std::array<WideKey, few_elements> few;
  if (count <= few_elements) return sort_by_places(array, count, size, taken, few.data());
  if (const auto keys = allocate_elements<WideKey>(count)) return sort_by_places(array, count, size, taken, keys.get());
  shell_sort_strings(array, static_cast<int64_t>(count), size, taken);
}

}  // namespace

bool sort_strings(Byte *array, size_t count, size_t size) {
  constexpr size_t small_size = 256;
  if (size == 0) return true;
  if (size <= sizeof(uint16_t)) {
    sort_short_strings<uint16_t>(array, count, size);
  } else if (size <= sizeof(uint32_t)) {
    sort_short_strings<uint32_t>(array, count, size);
  } else if (size <= sizeof(uint64_t)) {
    sort_short_strings<uint64_t>(array, count, size);
  } else if (size <= sizeof(WideKey)) {
    sort_short_strings<WideKey>(array, count, size);
  } else if (size <= small_size) {
    std::array<Byte, small_size> taken;
    sort_long_strings(array, count, size, taken.data());
  } else {
    const HeapArray<Byte> taken = allocate_elements<Byte>(size);
    if (taken == nullptr) return false;
    sort_long_strings(array, count, size, taken.get());
  }
  return true;
}

}  // namespace qwport::sorting
