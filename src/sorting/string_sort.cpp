// SPDX-License-Identifier: MIT
// Sorting byte strings: up to 16 bytes are a key as a whole; longer ones are sorted by eight bytes at a time,
// kept with the place where they stand.
#include <algorithm>
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
  using Half = std::conditional_t<sizeof(Key) == 8, uint32_t, uint16_t>;
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

// The keys of long strings: eight bytes above, the place below.
using Word = uint64_t;

// How many leading bytes two elements have in common, up to a limit; so many are known.
size_t count_common(const Byte *left, const Byte *right, size_t size, size_t known, size_t limit) {
  for (size_t at = known; at < limit; at += sizeof(Word)) {
    const size_t from = std::min(at, size - sizeof(Word));
    const Word difference = load<Word>(left + from) ^ load<Word>(right + from);
    if (difference != 0) return std::min(limit, from + static_cast<size_t>(std::countl_zero(difference)) / 8);
  }
  return limit;
}

// Sorts elements that agree in so many bytes. What agrees in the next eight, too, is sorted in the same way, the
// largest part of it last: so the calls that wait for one another are no more than the count has bits.
void sort_places(const Byte *array, size_t size, WideKey *keys, size_t count, size_t known) {
  while (count > 1) {
    size_t common = size;
    for (size_t i = 1; i < count && common > known; ++i) {
      common = count_common(array + keys[0].low * size, array + keys[i].low * size, size, known, common);
    }
    if (common == size) return;
    const size_t from = std::min(common, size - sizeof(Word));
    bool is_reversed = true;
    for (size_t i = 0; i < count; ++i) {
      keys[i].high = load<Word>(array + keys[i].low * size + from);
      is_reversed = is_reversed && (i == 0 || keys[i].high <= keys[i - 1].high);
    }
    if (is_reversed) {
      std::reverse(keys, keys + count);
      const auto is_same = [](const WideKey &left, const WideKey &right) { return left.high == right.high; };
      if (std::adjacent_find(keys, keys + count, is_same) == keys + count) return;
    }
    sort_keys_by_high_half(keys, count);
    known = from + sizeof(Word);

    WideKey *largest = nullptr;
    size_t largest_count = 0;
    for (WideKey *part = keys, *const end = keys + count; part != end;) {
      WideKey *const start = part;
      while (part != end && part->high == start->high) ++part;
      WideKey *smaller = start;
      auto smaller_count = static_cast<size_t>(part - start);
      if (smaller_count > largest_count) {
        std::swap(smaller, largest);
        std::swap(smaller_count, largest_count);
      }
      if (smaller_count > 1) sort_places(array, size, smaller, smaller_count, known);
    }
    keys = largest;
    count = largest_count;
  }
}

// Of more than 16 bytes. To call the C library for a few bytes takes longer than to copy them.
void copy_element(Byte *to, const Byte *from, size_t size) {
  constexpr size_t step = sizeof(WideKey);
  for (size_t at = 0; at < size; at += step) {
    const size_t start = std::min(at, size - step);
    std::memcpy(to + start, from + start, step);
  }
}

// Moves every element to the place that its key has, along the cycles of the permutation.
void arrange(Byte *array, size_t count, size_t size, Byte *taken, WideKey *keys) {
  for (size_t start = 0; start < count; ++start) {
    if (keys[start].low == start) continue;
    copy_element(taken, array + start * size, size);
    size_t hole = start;
    for (size_t source = keys[hole].low; source != start; source = keys[hole].low) {
      copy_element(array + hole * size, array + source * size, size);
      keys[hole].low = hole;
      hole = source;
    }
    copy_element(array + hole * size, taken, size);
    keys[hole].low = hole;
  }
}

// Whether most elements have but to change places with another, if at all.
bool are_mostly_pairs(const WideKey *keys, size_t count) {
  constexpr size_t one_in = 8;
  size_t others = 0;
  for (size_t i = 0; i < count && others <= count / one_in; ++i)
    others += static_cast<size_t>(keys[keys[i].low].low != i);
  return others <= count / one_in;
}

// The same through a second array, where the processor can look for many elements at once. False for no memory.
bool arrange_by_copy(Byte *array, size_t count, size_t size, const WideKey *keys) {
  const auto copy = allocate_elements<Byte>(count * size);
  if (copy == nullptr) return false;
  for (size_t i = 0; i < count; ++i) {
    constexpr size_t ahead = 16;
    if (i + ahead < count) __builtin_prefetch(array + keys[i + ahead].low * size);
    copy_element(copy.get() + i * size, array + keys[i].low * size, size);
  }
  std::memcpy(array, copy.get(), count * size);
  return true;
}

void sort_by_places(Byte *array, size_t count, size_t size, Byte *taken, WideKey *keys) {
  for (size_t i = 0; i < count; ++i) keys[i] = {i, 0};
  sort_places(array, size, keys, count, 0);
  const bool is_in_place = count <= few_elements || are_mostly_pairs(keys, count);
  if (is_in_place || !arrange_by_copy(array, count, size, keys)) arrange(array, count, size, taken, keys);
}

// taken: room for an element.
void sort_long_strings(Byte *array, size_t count, size_t size, Byte *taken) {
  std::array<WideKey, few_elements> few;
  if (count <= few_elements) return sort_by_places(array, count, size, taken, few.data());
  if (const auto keys = allocate_elements<WideKey>(count)) return sort_by_places(array, count, size, taken, keys.get());
  shell_sort_strings(array, static_cast<int64_t>(count), size, taken);
}

// Up to two bytes are numbers but for the order of the bytes.
void sort_pairs(Byte *array, size_t count) {
  auto *numbers = reinterpret_cast<uint16_t *>(array);
  std::transform(numbers, numbers + count, numbers, [](uint16_t number) { return swap_bytes(number); });
  sort_narrow_keys(numbers, count, uint16_t{0});
  std::transform(numbers, numbers + count, numbers, [](uint16_t number) { return swap_bytes(number); });
}

}  // namespace

bool sort_strings(Byte *array, size_t count, size_t size) {
  constexpr size_t small_size = 256;
  if (size == 0) return true;
  if (size == sizeof(uint8_t)) {
    sort_narrow_keys(array, count, uint8_t{0});
  } else if (size == sizeof(uint16_t)) {
    sort_pairs(array, count);
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
