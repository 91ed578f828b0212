// SPDX-License-Identifier: MIT
// What SORTQQ, BSEARCHQQ and QSORT are compared with: std::sort, std::lower_bound, qsort; and arrays to sort.
#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>

#include "qwport.h"

namespace {

template <size_t size> using Text = std::array<unsigned char, size>;  // compared by memcmp

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

enum Method : int32_t { by_std_sort = 1, by_qsort };

template <class Element> void sort(void *array, int64_t count, int32_t method) {
  auto *elements = static_cast<Element *>(array);
  if (method == by_std_sort) std::sort(elements, elements + count);
  if (method == by_qsort) std::qsort(array, static_cast<size_t>(count), sizeof(Element), compare<Element>);
}

// ---- Arrays -------------------------------------------------------------------------------------

using Random = std::mt19937_64;

// Of both signs and some forty binary orders of magnitude.
double random_real(Random &random) {
  return static_cast<double>(static_cast<int64_t>(random())) * 0x1p-40 / static_cast<double>(1 + random() % 1000);
}

template <class Element> Element random_element(Random &random) {
  if constexpr (std::is_floating_point_v<Element>) {
    return static_cast<Element>(random_real(random));
  } else if constexpr (std::is_integral_v<Element>) {
    return static_cast<Element>(random());
  } else if constexpr (std::is_same_v<Element, Quadruple>) {
    constexpr uint64_t bias = uint64_t{16383 - 1023} << 48;
    const auto bits = std::bit_cast<uint64_t>(random_real(random));
    return {random(), (bits & uint64_t{1} << 63) | (((bits & ~(uint64_t{1} << 63)) >> 4) + bias)};
  } else {
    Element element;
    for (auto &byte : element) byte = static_cast<unsigned char>('a' + random() % 26);
    return element;
  }
}

enum Pattern : int32_t {
  in_random_order = 1,
  sorted,
  reversed,
  almost_sorted,
  few_valued,
  nans_2_percent,
  one_nan,
  zeros_1_percent,
  zeros_half
};

template <class Element> void order(Element *array, int64_t count, int32_t pattern, Random &random) {
  if (pattern < sorted || pattern > almost_sorted) return;
  std::sort(array, array + count);
  if (pattern == reversed) std::reverse(array, array + count);
  if (pattern != almost_sorted) return;
  const auto any = [&] { return static_cast<int64_t>(random() % static_cast<uint64_t>(count)); };
  for (int64_t i = 0; i < 1 + count / 200; ++i) std::swap(array[any()], array[any()]);
}

// NaNs and zeros of both signs.
template <class Real> void place_specials(Real *array, int64_t count, int32_t pattern, Random &random) {
  const auto nan = std::numeric_limits<Real>::quiet_NaN();
  if (pattern == one_nan) array[random() % static_cast<uint64_t>(count)] = nan;
  for (int64_t i = 0; i < count; ++i) {
    const uint64_t draw = random() % 200;
    const Real zero = random() % 2 == 0 ? Real{0} : -Real{0};
    if (pattern == nans_2_percent && draw < 4) array[i] = nan;
    if ((pattern == zeros_1_percent && draw < 2) || (pattern == zeros_half && draw < 100)) array[i] = zero;
  }
}

template <class Element> void fill(void *memory, int64_t count, int32_t pattern, uint64_t seed) {
  auto *array = static_cast<Element *>(memory);
  Random random(seed);
  std::array<Element, 7> few;
  for (auto &element : few) element = random_element<Element>(random);
  for (int64_t i = 0; i < count; ++i) {
    array[i] = pattern == few_valued ? few[random() % few.size()] : random_element<Element>(random);
  }
  order(array, count, pattern, random);
  if constexpr (std::is_floating_point_v<Element>) {
    if (pattern >= nans_2_percent) place_specials(array, count, pattern, random);
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
    case 4:
      return action(Text<4>{});
    case 10:
      return action(Text<10>{});
    case 20:
      return action(Text<20>{});
    default:
      return action(Text<100>{});
  }
}

}  // namespace

extern "C" {

void fill_array(void *array, int64_t count, int32_t type, int32_t pattern, int32_t seed);
void fill_array(void *array, int64_t count, int32_t type, int32_t pattern, int32_t seed) {
  with_type(type, [&](auto element) { fill<decltype(element)>(array, count, pattern, static_cast<uint64_t>(seed)); });
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
