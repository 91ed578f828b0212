// SPDX-License-Identifier: MIT
// Sorting arrays of numbers and of byte strings.
//
// What a sort leaves in the array is what a Shell sort with the gaps 1, 4, 13, 40, ... leaves. Where elements
// that compare equal are the same bits every sort leaves that, and the standard library's is faster; NaNs and
// zeros of both signs show the order in which elements were compared, so that such arrays get the Shell sort.
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
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

// Whether the order in which elements are compared shows in the sorted array.
template <class Real> bool has_nan_or_zeros_of_both_signs(const Real *array, int64_t count) {
  bool nan = false;
  bool plus_zero = false;
  bool minus_zero = false;
  for (int64_t i = 0; i < count; ++i) {
    nan |= std::isnan(array[i]);
    const bool is_zero = array[i] == 0;
    const bool is_negative = std::signbit(array[i]);
    plus_zero |= is_zero && !is_negative;
    minus_zero |= is_zero && is_negative;
  }
  return nan || (plus_zero && minus_zero);
}

template <class Number> void sort_numbers(void *array, int64_t count) {
  auto *numbers = static_cast<Number *>(array);
  if constexpr (std::is_floating_point_v<Number>) {
    if (has_nan_or_zeros_of_both_signs(numbers, count)) return shell_sort(numbers, count);
  }
  std::sort(numbers, numbers + count, [](const Number &left, const Number &right) { return is_smaller(left, right); });
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

// The first bytes of an element as a number of the same order, and where the element stands.
struct SortKey {
  uint64_t prefix;
  size_t index;
};
constexpr size_t prefix_size = sizeof(uint64_t);

uint64_t prefix_of(const Byte *element, size_t size) {
  Byte bytes[prefix_size] = {};
  std::memcpy(bytes, element, std::min(size, prefix_size));
  uint64_t number = 0;
  std::memcpy(&number, bytes, prefix_size);
  return __builtin_bswap64(number);
}

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
  std::sort(keys, keys + count, [array, size](const SortKey &left, const SortKey &right) {
    if (left.prefix != right.prefix || size <= prefix_size) return left.prefix < right.prefix;
    return std::memcmp(array + left.index * size + prefix_size, array + right.index * size + prefix_size,
                       size - prefix_size) < 0;
  });
  arrange(array, count, size, taken, keys);
}

struct Free {
  void operator()(void *memory) const { std::free(memory); }
};

// False if there is no memory for one element. Keys are worth their memory only in larger arrays.
bool sort_bytes(Byte *array, int64_t count, size_t size) {
  constexpr int64_t small_count = 40;
  const HeapText taken = portlib_allocate_text(size + 1);
  if (taken == nullptr) return false;
  auto *taken_bytes = reinterpret_cast<Byte *>(taken.get());

  const auto elements = static_cast<size_t>(count);
  std::unique_ptr<SortKey[], Free> keys;
  if (count > small_count) keys.reset(static_cast<SortKey *>(std::calloc(elements, sizeof(SortKey))));
  if (keys == nullptr) {
    shell_sort_bytes(array, count, size, taken_bytes);
  } else {
    sort_by_keys(array, elements, size, taken_bytes, keys.get());
  }
  return true;
}

// ---- By type ------------------------------------------------------------------------------------

int32_t sort_elements(void *array, int64_t count, int32_t size) {
  switch (portlib_element_type(size)) {
    case ElementType::real4:
      sort_numbers<float>(array, count);
      return 0;
    case ElementType::real8:
      sort_numbers<double>(array, count);
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
