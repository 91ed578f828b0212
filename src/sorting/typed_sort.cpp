// SPDX-License-Identifier: MIT
// Sorting arrays of numbers and of byte strings.
//
// What a sort leaves in the array is what a Shell sort with the gaps 1, 4, 13, 40, ... leaves. Where elements
// that compare equal are the same bits every sort leaves that, and the standard library's is faster; NaNs and
// zeros of both signs show the order in which elements were compared, so that such arrays get the Shell sort.
#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>

#include "element_types.h"
#include "errors.h"
#include "heap_text.h"
#include "qwport.h"

namespace {

int64_t first_gap(int64_t count) {
  int64_t gap = 1;
  while (3 * (3 * gap + 1) + 1 < count) gap = 3 * gap + 1;
  return gap;
}

template <class Number> void shell_sort(Number *array, int64_t count) {
  for (int64_t gap = first_gap(count); gap > 0; gap = (gap - 1) / 3) {
    for (int64_t i = gap; i < count; ++i) {
      const Number taken = array[i];
      int64_t hole = i;
      for (; hole >= gap && is_smaller(taken, array[hole - gap]); hole -= gap) array[hole] = array[hole - gap];
      array[hole] = taken;
    }
  }
}

template <class Number> bool is_sorted(const Number *array, int64_t count) {
  return std::is_sorted(array, array + count,
                        [](const Number &left, const Number &right) { return is_smaller(left, right); });
}

template <class Number> void sort_numbers(void *array, int64_t count) {
  auto *numbers = static_cast<Number *>(array);
  if (is_sorted(numbers, count)) return;
  if constexpr (std::is_integral_v<Number>) {
    std::sort(numbers, numbers + count);
  } else {
    std::sort(numbers, numbers + count,
              [](const Number &left, const Number &right) { return is_smaller(left, right); });
  }
}

// ---- Reals --------------------------------------------------------------------------------------

// The bits of a real as a number of the same order, but for zeros and NaNs; and back.
template <class Bits> Bits exchange_order(Bits bits) {
  constexpr Bits magnitude = std::numeric_limits<Bits>::max();
  return bits < 0 ? bits ^ magnitude : bits;
}

// Without its sign a zero is 0 and a NaN more than the infinity: one comparison an element finds either.
template <class Bits> bool has_zero_or_nan(const Bits *array, int64_t count, Bits infinity) {
  using Unsigned = std::make_unsigned_t<Bits>;
  const auto limit = static_cast<Unsigned>(2 * static_cast<Unsigned>(infinity));
  bool found = false;
  for (int64_t i = 0; i < count; ++i) found |= 2 * static_cast<Unsigned>(array[i]) - 1 >= limit;
  return found;
}

// Whether the order in which elements are compared shows in the sorted array.
template <class Bits> bool has_nan_or_zeros_of_both_signs(const Bits *array, int64_t count, Bits infinity) {
  if (!has_zero_or_nan(array, count, infinity)) return false;
  constexpr Bits magnitude = std::numeric_limits<Bits>::max();
  bool plus_zero = false;
  bool minus_zero = false;
  for (int64_t i = 0; i < count; ++i) {
    if ((array[i] & magnitude) > infinity) return true;
    plus_zero |= array[i] == 0;
    minus_zero |= array[i] == std::numeric_limits<Bits>::min();
  }
  return plus_zero && minus_zero;
}

// Whole numbers are compared faster than reals.
template <class Real, class Bits> void sort_reals(void *array, int64_t count) {
  auto *reals = static_cast<Real *>(array);
  if (is_sorted(reals, count)) return;
  auto *bits = static_cast<Bits *>(array);
  if (has_nan_or_zeros_of_both_signs(bits, count, std::bit_cast<Bits>(std::numeric_limits<Real>::infinity()))) {
    return shell_sort(reals, count);
  }
  std::transform(bits, bits + count, bits, exchange_order<Bits>);
  std::sort(bits, bits + count);
  std::transform(bits, bits + count, bits, exchange_order<Bits>);
}

// ---- Byte strings -------------------------------------------------------------------------------

using Byte = unsigned char;

void shell_sort_bytes(Byte *array, int64_t count, size_t size, Byte *taken) {
  const auto element = [array, size](int64_t index) { return array + static_cast<size_t>(index) * size; };
  for (int64_t gap = first_gap(count); gap > 0; gap = (gap - 1) / 3) {
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

// The first bytes of an element as a number of the same order, in two halves.
using Prefix = std::array<uint64_t, 2>;

Prefix swap_bytes(Prefix prefix) { return {__builtin_bswap64(prefix[0]), __builtin_bswap64(prefix[1])}; }

Prefix prefix_of(const Byte *element, size_t size) {
  Prefix prefix = {};
  std::memcpy(&prefix, element, std::min(size, sizeof prefix));
  return swap_bytes(prefix);
}

// Elements that are nothing but their prefixes are sorted as such.
void sort_prefixes(Byte *array, size_t count, size_t size, Prefix *prefixes) {
  for (size_t i = 0; i < count; ++i) prefixes[i] = prefix_of(array + i * size, size);
  std::sort(prefixes, prefixes + count);
  for (size_t i = 0; i < count; ++i) {
    const Prefix bytes = swap_bytes(prefixes[i]);
    std::memcpy(array + i * size, &bytes, size);
  }
}

// Longer ones are sorted by the places where they stand.
struct SortKey {
  Prefix prefix;
  size_t index;
};

// Moves every element to the place that its key has, along the cycles of the permutation.
void arrange(Byte *array, size_t count, size_t size, Byte *taken, SortKey *keys) {
  for (size_t start = 0; start < count; ++start) {
    if (keys[start].index == start) continue;
    std::memcpy(taken, array + start * size, size);
    size_t hole = start;
    for (size_t source = keys[hole].index; source != start; source = keys[hole].index) {
      std::memcpy(array + hole * size, array + source * size, size);
      keys[hole].index = hole;
      hole = source;
    }
    std::memcpy(array + hole * size, taken, size);
    keys[hole].index = hole;
  }
}

void sort_by_keys(Byte *array, size_t count, size_t size, Byte *taken, SortKey *keys) {
  for (size_t i = 0; i < count; ++i) keys[i] = {prefix_of(array + i * size, size), i};
  const Byte *const rests = array + sizeof(Prefix);
  std::sort(keys, keys + count, [rests, size](const SortKey &left, const SortKey &right) {
    if (left.prefix != right.prefix) return left.prefix < right.prefix;
    return std::memcmp(rests + left.index * size, rests + right.index * size, size - sizeof(Prefix)) < 0;
  });
  arrange(array, count, size, taken, keys);
}

// Null for a small array, where it is not worth the while, and for no memory.
template <class Element> HeapArray<Element> allocate_keys(size_t count) {
  constexpr size_t small_count = 40;
  return count <= small_count ? nullptr : portlib_allocate_array<Element>(count);
}

// False if there is no memory for one element.
bool sort_bytes(Byte *array, int64_t count, size_t size) {
  const HeapText taken_text = portlib_allocate_text(size + 1);
  if (taken_text == nullptr) return false;
  auto *taken = reinterpret_cast<Byte *>(taken_text.get());
  const auto elements = static_cast<size_t>(count);
  if (size <= sizeof(Prefix)) {
    if (const auto prefixes = allocate_keys<Prefix>(elements)) {
      sort_prefixes(array, elements, size, prefixes.get());
      return true;
    }
  } else if (const auto keys = allocate_keys<SortKey>(elements)) {
    sort_by_keys(array, elements, size, taken, keys.get());
    return true;
  }
  shell_sort_bytes(array, count, size, taken);
  return true;
}

// ---- By type ------------------------------------------------------------------------------------

int32_t sort_elements(void *array, int64_t count, int32_t size) {
  switch (portlib_element_type(size)) {
    case ElementType::real4:
      sort_reals<float, int32_t>(array, count);
      return 0;
    case ElementType::real8:
      sort_reals<double, int64_t>(array, count);
      return 0;
    case ElementType::int1:
      sort_numbers<int8_t>(array, count);
      return 0;
    case ElementType::int2:
      sort_numbers<int16_t>(array, count);
      return 0;
    case ElementType::int4:
      sort_numbers<int32_t>(array, count);
      return 0;
    case ElementType::int8:
      sort_numbers<int64_t>(array, count);
      return 0;
    case ElementType::real16:
      sort_numbers<Quadruple>(array, count);
      return 0;
    case ElementType::bytes:
      return sort_bytes(static_cast<Byte *>(array), count, static_cast<size_t>(size)) ? 0 : ENOMEM;
    default:
      return EINVAL;
  }
}

}  // namespace

void SORTQQ(const int64_t *arrayAddress, int64_t *count, const int32_t *size) {
  const int32_t error = *count < 1 ? EINVAL : sort_elements(reinterpret_cast<void *>(*arrayAddress), *count, *size);
  if (error == 0) return;
  *count = 0;
  portlib_report_errno(error);
}
