// SPDX-License-Identifier: MIT
// Sorting and searching against plain models of the described algorithms.
#include <doctest/doctest.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "import_override.h"
#include "library.h"
#include "qwport.h"
#include "recording.h"

namespace {

using Bytes = std::vector<unsigned char>;
// Whether the element at the first address is taken for smaller.
using IsSmaller = std::function<bool(const void *, const void *)>;

template <class Number> bool smaller(const void *left, const void *right) {
  Number a, b;
  std::memcpy(&a, left, sizeof a);
  std::memcpy(&b, right, sizeof b);
  return !(a >= b);
}

// Sign, exponent, fraction, word by word.
bool smaller_quadruple(const void *left, const void *right) {
  uint32_t a[4], b[4];
  std::memcpy(a, left, sizeof a);
  std::memcpy(b, right, sizeof b);
  const bool a_negative = a[3] >> 31 != 0, b_negative = b[3] >> 31 != 0;
  if (a_negative != b_negative) return a_negative;
  for (int word = 3; word >= 0; --word) {
    if (a[word] != b[word]) return (a[word] < b[word]) != a_negative;
  }
  return false;
}

struct Type {
  int32_t code;
  size_t size;
  IsSmaller is_smaller;
};

Type byte_string(size_t size) {
  return {static_cast<int32_t>(size), size,
          [size](const void *a, const void *b) { return std::memcmp(a, b, size) < 0; }};
}

const std::vector<Type> types = {{QWPORT_SORT_REAL4, 4, smaller<float>},
                                 {QWPORT_SORT_REAL8, 8, smaller<double>},
                                 {QWPORT_SORT_INT1, 1, smaller<int8_t>},
                                 {QWPORT_SORT_INT2, 2, smaller<int16_t>},
                                 {QWPORT_SORT_INT4, 4, smaller<int32_t>},
                                 {QWPORT_SORT_INT8, 8, smaller<int64_t>},
                                 {QWPORT_SORT_REAL16, 16, smaller_quadruple},
                                 byte_string(1),
                                 byte_string(7),
                                 byte_string(8),
                                 byte_string(10),
                                 byte_string(300)};

// The sort whose result is promised, one move after the other.
void model_sort(Bytes &array, const Type &type) {
  const auto count = static_cast<int64_t>(array.size() / type.size);
  const auto at = [&](int64_t i) { return array.data() + static_cast<size_t>(i) * type.size; };
  std::vector<int64_t> gaps = {1};
  while (3 * gaps.back() + 1 < count) gaps.push_back(3 * gaps.back() + 1);
  if (gaps.size() > 1) gaps.pop_back();
  for (; !gaps.empty(); gaps.pop_back()) {
    const int64_t gap = gaps.back();
    for (int64_t i = gap; i < count; ++i) {
      const Bytes taken(at(i), at(i) + type.size);
      int64_t j = i - gap;
      for (; j >= 0 && type.is_smaller(taken.data(), at(j)); j -= gap) std::memcpy(at(j + gap), at(j), type.size);
      std::memcpy(at(j + gap), taken.data(), type.size);
    }
  }
}

std::mt19937 generator(20231105);

template <class Number> void put(Bytes &array, size_t position, Number value) {
  std::memcpy(array.data() + position, &value, sizeof value);
}

// Few values, special ones among them: all sorts of NaN, infinities and zeros for the real types.
Bytes random_array(const Type &type, size_t count, bool with_specials) {
  Bytes array(count * type.size);
  const unsigned spread = std::uniform_int_distribution<unsigned>(1, 255)(generator);
  for (auto &byte : array) byte = static_cast<unsigned char>(generator() % spread);
  const auto pick = [&](auto... values) {
    const double list[] = {values...};
    return list[generator() % (sizeof list / sizeof *list)];
  };
  for (size_t i = 0; i < count; ++i) {
    const double value =
        with_specials ? pick(0.0, -0.0, NAN, -NAN, double{INFINITY}, -1.5, 3.0) : pick(-2.5, 0.0, 7.0, 1e9);
    if (type.code == QWPORT_SORT_REAL4) put(array, i * 4, static_cast<float>(value));
    if (type.code == QWPORT_SORT_REAL8) put(array, i * 8, value);
  }
  return array;
}

int64_t sort(Bytes &array, int64_t count, int32_t code) {
  const auto address = reinterpret_cast<int64_t>(array.data());
  SORTQQ(&address, &count, &code);
  return count;
}

int32_t find(const void *key, const Bytes &array, int64_t length, int32_t code) {
  const auto key_address = reinterpret_cast<int64_t>(key);
  const auto address = reinterpret_cast<int64_t>(array.data());
  return BSEARCHQQ(&key_address, &address, &length, &code);
}

int32_t model_find(const unsigned char *key, const Bytes &array, const Type &type) {
  int64_t low = 0, high = static_cast<int64_t>(array.size() / type.size) - 1;
  while (low <= high) {
    const int64_t middle = (low + high) / 2;
    const unsigned char *element = array.data() + static_cast<size_t>(middle) * type.size;
    if (type.is_smaller(key, element)) {
      high = middle - 1;
    } else if (type.is_smaller(element, key)) {
      low = middle + 1;
    } else {
      return static_cast<int32_t>(middle) + 1;
    }
  }
  return 0;
}

void check_sort(const Type &type, size_t count, bool with_specials) {
  Bytes array = random_array(type, count, with_specials);
  Bytes expected = array;
  model_sort(expected, type);
  const bool done = sort(array, static_cast<int64_t>(count), type.code) == static_cast<int64_t>(count);
  CHECK_MESSAGE((done && array == expected), "type ", type.code, " count ", count);
}

int16_t compare_last_digits(const void *left, const void *right) {
  return static_cast<int16_t>(*static_cast<const int32_t *>(left) % 10 - *static_cast<const int32_t *>(right) % 10);
}

// All equal in the low 16 bits, which are all that counts.
int32_t high_bits_only(const void *, const void *) { return 65536; }

int16_t reversed(const void *left, const void *right) { return compare_last_digits(right, left); }

int inner_sorts;
int16_t sorts_inside(const void *left, const void *right) {
  ++inner_sorts;
  int32_t digits[] = {1, 2};
  constexpr int32_t count = 2, size = 4;
  QSORT_II(digits, &count, &size, reversed);
  return reversed(left, right);
}

void sort_digits(std::vector<int32_t> &digits, int16_t (*compare)(const void *, const void *)) {
  const auto count = static_cast<int64_t>(digits.size());
  constexpr int64_t size = 4;
  QSORT(digits.data(), &count, &size, compare);
}

DWORD WINAPI sort_many(void *comparison) {
  for (int round = 0; round < 200; ++round) {
    std::vector<int32_t> digits = {3, 9, 1, 7, 5, 2, 8, 0, 6, 4};
    const auto compare = reinterpret_cast<int16_t (*)(const void *, const void *)>(comparison);
    sort_digits(digits, compare);
    if (compare == reversed) std::reverse(digits.begin(), digits.end());
    if (!std::is_sorted(digits.begin(), digits.end())) return 1;
  }
  return 0;
}

}  // namespace

TEST_CASE("SORTQQ leaves what the Shell sort leaves, for every type, NaNs and zeros included") {
  for (const Type &type : types) {
    for (size_t count = 1; count <= 200; ++count) {
      check_sort(type, count, false);
      check_sort(type, count, true);
    }
    check_sort(type, 3000, true);
  }
}

TEST_CASE("SORTQQ refuses what it cannot sort and leaves the array alone") {
  RecordingCore core;
  Bytes array = {3, 2, 1};
  const Bytes before = array;
  CHECK(sort(array, 0, 1) == 0);
  CHECK(sort(array, -7, 1) == 0);
  for (const int32_t code : {0x70000, 40000, 32767, 0x90000, 0x50001, -1, -2147483647}) {
    CAPTURE(code);
    core.calls();
    CHECK(sort(array, 3, code) == 0);
    CHECK(core.calls() == reports(EINVAL));
  }
  const ImportOverride memory(
      library(), "malloc", +[](size_t) -> void * { return nullptr; });
  CHECK(sort(array, 3, 1) == 0);
  CHECK(core.calls() == reports(ENOMEM));
  CHECK(array == before);
}

TEST_CASE("SORTQQ sorts byte strings without memory for its keys") {
  const ImportOverride memory(
      library(), "calloc", +[](size_t, size_t) -> void * { return nullptr; });
  check_sort(byte_string(10), 500, false);
}

TEST_CASE("BSEARCHQQ finds what the halving meets first") {
  RecordingCore core;
  for (const Type &type : types) {
    Bytes array = random_array(type, 150, type.code == QWPORT_SORT_REAL4);
    model_sort(array, type);
    const Bytes keys = random_array(type, 50, type.code == QWPORT_SORT_REAL4);
    int hits = 0;
    for (size_t i = 0; i < 200; ++i) {
      const unsigned char *key = (i < 50 ? keys.data() + i * type.size : array.data() + (i - 50) * type.size);
      const int32_t found = find(key, array, 150, type.code);
      CHECK(found == model_find(key, array, type));
      hits += found > 0 ? 1 : 0;
    }
    CHECK(hits > 50);
  }
  CHECK(core.calls() == "");
  const Bytes array(8);
  for (const auto &[length, code] : {std::pair<int64_t, int32_t>{0, QWPORT_SORT_INT1}, {1, 0x70000}, {1, 32767}}) {
    CHECK(find(array.data(), array, length, code) == 0);
    CHECK(core.calls() == reports(EINVAL));
  }
}

TEST_CASE("QSORT and its forms sort by 16 bits of the comparison") {
  const std::vector<int32_t> sorted = {10, 21, 32, 43, 54, 65, 76, 87, 98, 109};
  std::vector<int32_t> shuffled = sorted;
  std::shuffle(shuffled.begin(), shuffled.end(), generator);
  constexpr int32_t count = 10, size = 4;
  constexpr int64_t wide_size = 4;
  std::vector<int32_t> digits = shuffled;
  sort_digits(digits, compare_last_digits);
  CHECK(digits == sorted);
  digits = shuffled;
  QSORT_II(digits.data(), &count, &size, compare_last_digits);
  CHECK(digits == sorted);
  digits = shuffled;
  QSORT_IL(digits.data(), &count, &wide_size, compare_last_digits);
  CHECK(digits == sorted);
  sort_digits(digits, reinterpret_cast<int16_t (*)(const void *, const void *)>(high_bits_only));
  CHECK(digits == sorted);
  constexpr int64_t none = -1;
  QSORT(nullptr, &none, &wide_size, compare_last_digits);

  // The inner sort's comparison stays for the outer one: it is called no second time.
  std::vector<int32_t> many = shuffled;
  sort_digits(many, sorts_inside);
  CHECK(inner_sorts == 1);
  std::reverse(many.begin(), many.end());
  CHECK(std::is_sorted(many.begin(), many.end()));
}

TEST_CASE("two threads sort one after the other") {
  HANDLE thread = CreateThread(nullptr, 0, sort_many, reinterpret_cast<void *>(reversed), 0, nullptr);
  const DWORD own = sort_many(reinterpret_cast<void *>(compare_last_digits));
  WaitForSingleObject(thread, INFINITE);
  DWORD other = 1;
  GetExitCodeThread(thread, &other);
  CloseHandle(thread);
  CHECK((own == 0 && other == 0));
}
