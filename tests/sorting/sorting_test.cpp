// SPDX-License-Identifier: MIT
// Sorting and searching against plain models of the described algorithms.
#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <numeric>
#include <random>
#include <vector>

#include "library_test.h"
#include "thread.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct Type {
  int32_t code;
  size_t size;
  std::function<bool(const void *, const void *)> is_smaller;
};

template <class Number> Type number_type(int32_t code) {
  return {code, sizeof(Number), [](const void *left, const void *right) {
            Number a, b;
            std::memcpy(&a, left, sizeof a);
            std::memcpy(&b, right, sizeof b);
            return !(a >= b);
          }};
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

Type byte_string(size_t size) {
  return {static_cast<int32_t>(size), size,
          [size](const void *a, const void *b) { return std::memcmp(a, b, size) < 0; }};
}

const std::vector<Type> types = {number_type<float>(QWPORT_SORT_REAL4),
                                 number_type<double>(QWPORT_SORT_REAL8),
                                 number_type<int8_t>(QWPORT_SORT_INT1),
                                 number_type<int16_t>(QWPORT_SORT_INT2),
                                 number_type<int32_t>(QWPORT_SORT_INT4),
                                 number_type<int64_t>(QWPORT_SORT_INT8),
                                 {QWPORT_SORT_REAL16, 16, smaller_quadruple},
                                 byte_string(1),
                                 byte_string(2),
                                 byte_string(3),
                                 byte_string(7),
                                 byte_string(16),
                                 byte_string(17),
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

int32_t model_find(const unsigned char *key, const Bytes &array, const Type &type) {
  int64_t low = 0, high = static_cast<int64_t>(array.size() / type.size) - 1;
  while (low <= high) {
    const int64_t middle = (low + high) / 2;
    const unsigned char *element = array.data() + static_cast<size_t>(middle) * type.size;
    if (type.is_smaller(key, element))
      high = middle - 1;
    else if (type.is_smaller(element, key))
      low = middle + 1;
    else
      return static_cast<int32_t>(middle) + 1;
  }
  return 0;
}

std::mt19937 generator(20231105);

// Few values or many, special ones among them: all sorts of NaN, infinities and zeros for the real types. Long
// byte strings differ late, and quadruples that share their high halves in the low ones.
Bytes random_array(const Type &type, size_t count, bool with_specials) {
  static const std::vector<double> specials = {0.0, -0.0, NAN, -NAN, double{INFINITY}, -1.5, 3.0},
                                   plain = {-2.5, 0, 7, 1e9};
  Bytes array(count * type.size);
  const unsigned spread = std::uniform_int_distribution<unsigned>(1, 256)(generator);
  const unsigned one_in = 1 + generator() % 40;
  for (auto &byte : array) byte = static_cast<unsigned char>(generator() % spread);
  for (size_t i = 0; i < count; ++i) {
    unsigned char *element = array.data() + i * type.size;
    if (type.size > 16) std::memset(element, generator() % 2 == 0 ? 'a' : 'b', 16);
    if (type.code == QWPORT_SORT_REAL16 && with_specials) std::memset(element + 8, generator() % 2 == 0 ? 7 : 199, 8);
    const auto &values = with_specials ? specials : plain;
    const bool is_any = generator() % one_in != 0;
    const double value =
        is_any ? std::ldexp(static_cast<double>(generator()) - 2e9, -9) : values[generator() % values.size()];
    const auto single = static_cast<float>(value);
    if (type.code == QWPORT_SORT_REAL4) std::memcpy(element, &single, sizeof single);
    if (type.code == QWPORT_SORT_REAL8) std::memcpy(element, &value, sizeof value);
  }
  return array;
}

// Sorted, or reversed, but for a few elements in each hundred.
void put_in_order(Bytes &array, const Type &type, bool is_reversed) {
  const size_t count = array.size() / type.size;
  const auto at = [&](size_t i) { return array.data() + i * type.size; };
  model_sort(array, type);
  const auto swap = [&](size_t i, size_t j) { std::swap_ranges(at(i), at(i) + type.size, at(j)); };
  for (size_t i = 0; is_reversed && i < count / 2; ++i) swap(i, count - 1 - i);
  for (size_t i = 0; i < count / 50; ++i) {
    if (const size_t j = generator() % count, k = generator() % count; j != k) swap(j, k);
  }
}

// The count after the sort.
int64_t sort(Bytes &array, int64_t count, int32_t code) {
  call(SORTQQ, reinterpret_cast<int64_t>(array.data()), &count, code);
  return count;
}

int32_t find(const void *key, const Bytes &array, int64_t length, int32_t code) {
  return call(BSEARCHQQ, reinterpret_cast<int64_t>(key), reinterpret_cast<int64_t>(array.data()), length, code);
}

void check_sort(const Type &type, Bytes array) {
  Bytes expected = array;
  model_sort(expected, type);
  const auto count = static_cast<int64_t>(array.size() / type.size);
  CHECK_MESSAGE((sort(array, count, type.code) == count && array == expected), "type ", type.code, " count ", count);
}

// ---- By a procedure -----------------------------------------------------------------------------

using Compare = int16_t (*)(const void *, const void *);

int16_t compare_last_digits(const void *left, const void *right) {
  return static_cast<int16_t>(*static_cast<const int32_t *>(left) % 10 - *static_cast<const int32_t *>(right) % 10);
}

int16_t reversed(const void *left, const void *right) { return compare_last_digits(right, left); }

// All equal in the low 16 bits, which are all that counts.
int32_t high_bits_only(const void *, const void *) { return 65536; }

int inner_sorts;
int16_t sorts_inside(int32_t count, const void *left, const void *right) {
  ++inner_sorts;
  int32_t digits[] = {1, 2};
  call(QSORT_II, digits, count, 4, reversed);
  return reversed(left, right);
}
int16_t sorts_two_inside(const void *left, const void *right) { return sorts_inside(2, left, right); }
int16_t sorts_none_inside(const void *left, const void *right) { return sorts_inside(0, left, right); }

std::jmp_buf way_out;
int16_t jumps_out(const void *, const void *) { std::longjmp(way_out, 1); }
int16_t throws(const void *, const void *) { throw 5; }

DWORD WINAPI sort_two(void *) {
  int32_t digits[] = {1, 2};
  return call(QSORT, digits, 2, 4, reversed), digits[0];
}

// Has another thread sort meanwhile.
HANDLE other_thread;
int16_t sorts_elsewhere(const void *left, const void *right) {
  if (other_thread == nullptr) {
    other_thread = CreateThread(nullptr, 0, sort_two, nullptr, 0, nullptr);
    constexpr DWORD enough_ms = 200;
    CHECK(WaitForSingleObject(other_thread, enough_ms) == WAIT_TIMEOUT);
  }
  return compare_last_digits(left, right);
}

}  // namespace

TEST_CASE("SORTQQ leaves what the Shell sort leaves, for every type, order and size, with and without memory") {
  const auto check_types = [](const std::vector<Type> &some, size_t longest) {
    for (const Type &type : some) {
      std::vector<size_t> counts(longest);
      std::iota(counts.begin(), counts.end(), 1);
      counts.insert(counts.end(), {1000, 3000});
      for (const size_t count : counts) {
        for (const bool with_specials : {false, true}) {
          Bytes array = random_array(type, count, with_specials);
          check_sort(type, array);
          if (count % 10 != 0) continue;
          put_in_order(array, type, with_specials);
          check_sort(type, array);
        }
      }
    }
  };
  check_types(types, 130);
  check_sort(types[3], random_array(types[3], 40000, false));  // INTEGER(2), as many as are worth counting
  const FailingCall cleared("calloc");
  const FailingCall memory("malloc");
  check_types({types.begin(), types.end() - 1}, 60);  // the last type's elements need memory for one
  check_sort(types[3], random_array(types[3], 40000, false));
}

TEST_CASE("SORTQQ takes arrays at any address") {
  for (const Type &type : types) {
    const Bytes elements = random_array(type, 900, true);
    Bytes shifted(elements.size() + 1), expected = elements;
    std::copy(elements.begin(), elements.end(), shifted.begin() + 1);
    int64_t count = 900;
    call(SORTQQ, reinterpret_cast<int64_t>(shifted.data() + 1), &count, type.code);
    model_sort(expected, type);
    CHECK_MESSAGE(std::equal(expected.begin(), expected.end(), shifted.begin() + 1), "type ", type.code);
  }
}

TEST_CASE("SORTQQ refuses what it cannot sort and leaves the array alone") {
  RecordingCore core;
  Bytes array = {3, 2, 1};
  const auto check = [&](int64_t count, int32_t type, int32_t error) {
    CAPTURE(type);
    CHECK_CALLS(sort(array, count, type), 0, reports(error));
    CHECK(array == Bytes{3, 2, 1});
  };
  for (const int64_t count : {0, -7}) check(count, 1, EINVAL);
  for (const int32_t type : {0x70000, 32767, 0x90000, 0x50001, -1, -2147483647}) check(3, type, EINVAL);
  for (const int32_t type : {2, 32766, int32_t{QWPORT_SORT_INT4}}) check(INT64_MAX, type, EINVAL);
  int64_t count = 3;
  CHECK_CALLS((call(SORTQQ, int64_t{0}, &count, 1), count), 0, reports(EINVAL));
  const FailingCall memory("malloc");
  check(3, 300, ENOMEM);
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
  for (const auto &[length, code] :
       {std::pair{int64_t{0}, int32_t{QWPORT_SORT_INT1}}, {1, 0x70000}, {1, 32767}, {INT64_MAX, 2}}) {
    CHECK_CALLS(find(array.data(), array, length, code), 0, reports(EINVAL));
  }
}

TEST_CASE("QSORT and its forms sort by 16 bits of the comparison, of one thread after the other") {
  const std::vector<int32_t> sorted = {10, 21, 32, 43, 54, 65, 76, 87, 98, 109};
  std::vector<int32_t> shuffled = sorted;
  std::shuffle(shuffled.begin(), shuffled.end(), generator);
  const auto sorted_by = [&](auto routine, Compare compare) {
    std::vector<int32_t> digits = shuffled;
    call(routine, digits.data(), 10, 4, compare);
    return digits;
  };
  CHECK(sorted_by(QSORT, compare_last_digits) == sorted);
  CHECK(sorted_by(QSORT_II, compare_last_digits) == sorted);
  CHECK(sorted_by(QSORT_IL, compare_last_digits) == sorted);
  shuffled = sorted;
  CHECK(sorted_by(QSORT, reinterpret_cast<Compare>(high_bits_only)) == sorted);
  call(QSORT, static_cast<void *>(nullptr), -1, 4, compare_last_digits);
  // The inner sort's comparison stays for the outer one: it is called no second time.
  for (const Compare compare : {sorts_two_inside, sorts_none_inside}) {
    inner_sorts = 0;
    const std::vector<int32_t> many = sorted_by(QSORT, compare);
    CHECK(inner_sorts == 1);
    CHECK(std::is_sorted(many.rbegin(), many.rend()));
  }

  CHECK(sorted_by(QSORT, sorts_elsewhere) == sorted);
  DWORD first_of_two = 0;
  CHECK((WaitForSingleObject(other_thread, 60000) == WAIT_OBJECT_0 && GetExitCodeThread(other_thread, &first_of_two)));
  CHECK(first_of_two == 2);
  CloseHandle(other_thread);
}

TEST_CASE("QSORT sorts after comparisons that never came back") {
  int32_t digits[] = {2, 1};
  if (setjmp(way_out) == 0) call(QSORT_II, digits, 2, 4, jumps_out);
  CHECK_THROWS_AS(call(QSORT_II, digits, 2, 4, throws), int);
  CHECK(on_other_thread(sort_two) == 2);
}
