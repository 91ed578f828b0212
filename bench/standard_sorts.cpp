// SPDX-License-Identifier: MIT
// What SORTQQ, BSEARCHQQ and QSORT are compared with: std::sort, std::lower_bound, qsort, and a plain Shell sort.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <utility>

#include "qwport.h"

namespace {

using Word = std::array<unsigned char, 10>;

struct Quadruple {
  uint64_t low;
  uint64_t high;
};
std::pair<uint64_t, uint64_t> order_of(const Quadruple &value) {
  const bool is_negative = value.high >> 63 != 0;
  return {is_negative ? ~value.high : value.high | uint64_t{1} << 63, is_negative ? ~value.low : value.low};
}
bool operator<(const Quadruple &left, const Quadruple &right) { return order_of(left) < order_of(right); }

template <class Element> int compare(const void *left, const void *right) {
  const auto &a = *static_cast<const Element *>(left);
  const auto &b = *static_cast<const Element *>(right);
  return a < b ? -1 : b < a ? 1 : 0;
}

template <class Element> void shell_sort(Element *array, int64_t count) {
  int64_t gap = 1;
  while (gap < count) gap = 3 * gap + 1;
  while ((gap = (gap - 1) / 3) > 0) {
    for (int64_t i = gap; i < count; ++i) {
      const Element taken = array[i];
      int64_t hole = i;
      for (; hole >= gap && taken < array[hole - gap]; hole -= gap) array[hole] = array[hole - gap];
      array[hole] = taken;
    }
  }
}

enum Method : int32_t { by_std_sort = 1, by_qsort, by_shell_sort };

template <class Element> void sort(void *array, int64_t count, int32_t method) {
  auto *elements = static_cast<Element *>(array);
  if (method == by_std_sort) std::sort(elements, elements + count);
  if (method == by_qsort) std::qsort(array, static_cast<size_t>(count), sizeof(Element), compare<Element>);
  if (method == by_shell_sort) shell_sort(elements, count);
}

enum Pattern : int32_t { in_random_order = 1, sorted, reversed, few_valued };

int32_t value_at(int64_t index, int64_t count, int32_t pattern, std::minstd_rand &random) {
  switch (pattern) {
    case in_random_order:
      return static_cast<int32_t>(random());
    case sorted:
      return static_cast<int32_t>(index);
    case reversed:
      return static_cast<int32_t>(count - index);
    default:
      return static_cast<int32_t>(random() % 7);
  }
}

template <class Element> void fill(void *array, int64_t count, int32_t pattern) {
  std::minstd_rand random(12345);
  for (int64_t i = 0; i < count; ++i) {
    const int32_t value = value_at(i, count, pattern, random);
    auto &element = static_cast<Element *>(array)[i];
    if constexpr (std::is_arithmetic_v<Element>) {
      element = static_cast<Element>(value);
    } else {
      const uint32_t big_endian = __builtin_bswap32(static_cast<uint32_t>(value));
      element = {};
      if constexpr (sizeof(Element) == sizeof(Word)) std::memcpy(&element, &big_endian, sizeof big_endian);
      if constexpr (sizeof(Element) == sizeof(Quadruple)) element.high = static_cast<uint64_t>(value) << 32;
    }
  }
}

// Calls an action with an element of the type's.
template <class Action> void with_type(int32_t type, Action action) {
  switch (type) {
    case QWPORT_SORT_REAL4:
      return action(float{});
    case QWPORT_SORT_REAL8:
      return action(double{});
    case QWPORT_SORT_INT1:
      return action(int8_t{});
    case QWPORT_SORT_INT2:
      return action(int16_t{});
    case QWPORT_SORT_INT4:
      return action(int32_t{});
    case QWPORT_SORT_INT8:
      return action(int64_t{});
    case QWPORT_SORT_REAL16:
      return action(Quadruple{});
    default:
      return action(Word{});
  }
}

}  // namespace

extern "C" {

void fill_array(void *array, int64_t count, int32_t type, int32_t pattern);
void fill_array(void *array, int64_t count, int32_t type, int32_t pattern) {
  with_type(type, [&](auto element) { fill<decltype(element)>(array, count, pattern); });
}

void standard_sort(void *array, int64_t count, int32_t type, int32_t method);
void standard_sort(void *array, int64_t count, int32_t type, int32_t method) {
  with_type(type, [&](auto element) { sort<decltype(element)>(array, count, method); });
}

int32_t standard_search(const double *key, const double *array, int64_t count);
int32_t standard_search(const double *key, const double *array, int64_t count) {
  const double *found = std::lower_bound(array, array + count, *key);
  return found != array + count && *found == *key ? static_cast<int32_t>(found - array) + 1 : 0;
}

// The caller's INTEGER(2) comparison behind qsort.
int16_t compare_int4(const int32_t *left, const int32_t *right);
int16_t compare_int4(const int32_t *left, const int32_t *right) {
  return static_cast<int16_t>((*left > *right) - (*left < *right));
}

}  // extern "C"
