// SPDX-License-Identifier: MIT
// Sorting and searching against plain models of the described algorithms.
#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "library_test.h"
#include "thread.h"

namespace {

using Element = std::string;  // its bytes
using Elements = std::vector<Element>;

struct Type {
  int32_t code;
  size_t size;
  bool (*is_smaller)(const Element &, const Element &);
};

template <class Number> bool smaller_number(const Element &left, const Element &right) {
  Number a, b;
  std::memcpy(&a, left.data(), sizeof a);
  std::memcpy(&b, right.data(), sizeof b);
  return !(a >= b);
}

// Sign, exponent, fraction: two halves.
bool smaller_quadruple(const Element &left, const Element &right) {
  uint64_t a[2], b[2];
  std::memcpy(a, left.data(), sizeof a);
  std::memcpy(b, right.data(), sizeof b);
  const bool is_negative = a[1] >> 63 != 0;
  if (is_negative != (b[1] >> 63 != 0)) return is_negative;
  const int half = a[1] == b[1] ? 0 : 1;
  return a[half] != b[half] && (a[half] < b[half]) != is_negative;
}

bool smaller_text(const Element &left, const Element &right) { return left < right; }

constexpr Type types[] = {{QWPORT_SORT_REAL4, 4, smaller_number<float>},
                          {QWPORT_SORT_REAL8, 8, smaller_number<double>},
                          {QWPORT_SORT_INT1, 1, smaller_number<int8_t>},
                          {QWPORT_SORT_INT2, 2, smaller_number<int16_t>},
                          {QWPORT_SORT_INT4, 4, smaller_number<int32_t>},
                          {QWPORT_SORT_INT8, 8, smaller_number<int64_t>},
                          {QWPORT_SORT_REAL16, 16, smaller_quadruple},
                          {1, 1, smaller_text},
                          {2, 2, smaller_text},
                          {3, 3, smaller_text},
                          {7, 7, smaller_text},
                          {16, 16, smaller_text},
                          {17, 17, smaller_text},
                          {300, 300, smaller_text}};
constexpr const Type &two_bytes = types[3];

// The sort whose result is promised, one move after the other.
void model_sort(Elements &a, const Type &type) {
  size_t gap = 1;
  while (3 * gap + 1 < a.size()) gap = 3 * gap + 1;
  if (gap > 1) gap /= 3;
  for (; gap > 0; gap /= 3)
    for (size_t i = gap; i < a.size(); ++i)
      for (size_t j = i; j >= gap && type.is_smaller(a[j], a[j - gap]); j -= gap) std::swap(a[j], a[j - gap]);
}

int32_t model_find(const Element &key, const Elements &array, const Type &type) {
  int64_t low = 0, high = static_cast<int64_t>(array.size()) - 1;
  while (low <= high) {
    const int64_t middle = (low + high) / 2;
    const Element &element = array[static_cast<size_t>(middle)];
    const bool is_below = type.is_smaller(key, element), is_above = type.is_smaller(element, key);
    if (!is_below && !is_above) return static_cast<int32_t>(middle) + 1;
    (is_below ? high : low) = middle + (is_below ? -1 : 1);
  }
  return 0;
}

std::mt19937 generator(20231105);

// Few values or many. The special ones are NaNs, infinities and zeros of the real types; without them the highest bit
// of the exponent is never set. Long byte strings differ late, and quadruples that share their high halves in the low
// ones.
Elements random_array(const Type &type, size_t count, bool with_specials) {
  constexpr char specials[][2] = {{'\0', '\0'},     {'\x80', '\0'},   {'\0', '\0'},
                                  {'\x80', '\0'},   {'\x7F', '\x80'}, {'\xFF', '\x80'},
                                  {'\x7F', '\xF0'}, {'\xFF', '\xF8'}, {'\xBF', '\0'}};
  const unsigned spread = 1 + generator() % 256, one_in = 1 + generator() % 40;
  Elements array(count, Element(type.size, '\0'));
  for (Element &element : array) {
    if (with_specials && generator() % one_in == 0) {
      const auto &[highest, next] = specials[generator() % std::size(specials)];
      element.back() = highest;
      if (type.size > 1) element.end()[-2] = next;
      continue;
    }
    for (char &byte : element) byte = static_cast<char>(generator() % spread);
    if (!with_specials) element.back() &= '\xBF';
    if (type.size > 16) std::memset(element.data(), generator() % 2 == 0 ? 'a' : 'b', 16);
    if (type.size == 16 && with_specials) std::memset(element.data() + 8, generator() % 2 == 0 ? 7 : 199, 8);
  }
  return array;
}

enum class Order { ascending, descending, last_first };

// In this order but for a few elements in each hundred.
void put_in_order(Elements &array, const Type &type, Order order) {
  model_sort(array, type);
  if (order == Order::descending) std::reverse(array.begin(), array.end());
  if (order == Order::last_first) return void(std::rotate(array.begin(), array.end() - 1, array.end()));
  for (size_t i = 0; i < array.size() / 50; ++i)
    std::swap(array[generator() % array.size()], array[generator() % array.size()]);
}

std::string joined(const Elements &array) {
  std::string bytes;
  for (const Element &element : array) bytes += element;
  return bytes;
}

// The count after the sort.
int64_t sort(char *array, int64_t count, int32_t code) {
  call(SORTQQ, reinterpret_cast<int64_t>(array), &count, code);
  return count;
}

int32_t find(const Element &key, const std::string &array, int64_t length, int32_t code) {
  return call(BSEARCHQQ, reinterpret_cast<int64_t>(key.data()), reinterpret_cast<int64_t>(array.data()), length, code);
}

// Against an inaccessible page, at an even address or an odd one.
void check_sort(const Type &type, Elements array) {
  const std::string behind(array.size() % 2, '#');
  const auto count = static_cast<int64_t>(array.size());
  GuardedText bytes(joined(array) + behind);
  model_sort(array, type);
  CHECK_MESSAGE((sort(bytes.data(), count, type.code) == count && bytes.str() == joined(array) + behind), "type ",
                type.code, " count ", count);
}

// Few elements by each count, and many round the counts where another algorithm may begin.
void check_counts(const Type &type) {
  std::vector<size_t> counts = {1000, 3000};
  for (size_t count = 1; count <= 130; ++count) counts.push_back(count);
  for (const size_t many : {150, 200, 256, 300, 512, 600, 1200, 2000, 2400})
    counts.insert(counts.end(), {many - 1, many, many + 1});
  for (const size_t count : counts)
    for (const bool with_specials : {false, true}) {
      Elements array = random_array(type, count, with_specials);
      check_sort(type, array);
      if (count % 10 != 0) continue;
      for (const Order order : {Order::ascending, Order::descending, Order::last_first}) {
        put_in_order(array, type, order);
        check_sort(type, array);
      }
    }
}

// ---- By a procedure -----------------------------------------------------------------------------

using Compare = int16_t (*)(const void *, const void *);

int16_t compare_last_digits(const void *left, const void *right) {
  return static_cast<int16_t>(*static_cast<const int32_t *>(left) % 10 - *static_cast<const int32_t *>(right) % 10);
}

int16_t reversed(const void *left, const void *right) { return compare_last_digits(right, left); }

// All equal in the low 16 bits, which are all that counts.
int32_t high_bits_only(const void *, const void *) { return 65536; }

DWORD WINAPI sort_two(void *) {
  int32_t digits[] = {1, 2};
  return call(QSORT, digits, 2, 4, reversed), digits[0];
}

int inner_sorts;
int16_t sorts_inside(const void *left, const void *right) {
  ++inner_sorts;
  sort_two(nullptr);
  return reversed(left, right);
}

std::jmp_buf way_out;
int16_t jumps_out(const void *, const void *) { std::longjmp(way_out, 1); }
int16_t throws(const void *, const void *) { throw 5; }

// Has another thread sort meanwhile.
HANDLE other_thread;
int16_t sorts_elsewhere(const void *left, const void *right) {
  if (other_thread == nullptr) {
    other_thread = CreateThread(nullptr, 0, sort_two, nullptr, 0, nullptr);
    CHECK(WaitForSingleObject(other_thread, 200) == WAIT_TIMEOUT);
  }
  return compare_last_digits(left, right);
}

}  // namespace

TEST_CASE(
    "SORTQQ leaves what the Shell sort leaves, for every type, order, size and address, with memory and without") {
  const auto check_all = [](size_t longest_element) {
    for (const Type &type : types)
      if (type.size <= longest_element) check_counts(type);
    // As many as are worth counting.
    for (const size_t count : {32767, 32768, 40000}) check_sort(two_bytes, random_array(two_bytes, count, false));
  };
  check_all(300);
  const FailingCall cleared("calloc"), memory("malloc");
  check_all(17);  // the longest need memory for one
}

TEST_CASE("SORTQQ and BSEARCHQQ refuse what they cannot sort and leave the array alone") {
  constexpr int32_t none = 0x70000, int4 = QWPORT_SORT_INT4;
  const std::pair<int64_t, int32_t> refused[] = {
      {0, 1},  {-7, 1},       {3, none},        {3, 32767},     {3, 0x90000},       {3, 0x50001},
      {3, -1}, {3, none + 1}, {3, -2147483647}, {INT64_MAX, 2}, {INT64_MAX, 32766}, {INT64_MAX, int4}};
  RecordingCore core;
  std::string array = "321";
  for (const auto &[count, type] : refused) {
    CAPTURE(type);
    CHECK_CALLS(sort(array.data(), count, type), 0, reports(EINVAL));
    CHECK_CALLS(find(array, array, count, type), 0, reports(EINVAL));
  }
  CHECK_CALLS(sort(nullptr, 3, 1), 0, reports(EINVAL));
  const FailingCall memory("malloc");
  CHECK_CALLS(sort(array.data(), 3, 300), 0, reports(ENOMEM));
  CHECK(array == "321");
}

TEST_CASE("BSEARCHQQ finds what the halving meets first, and reports nothing") {
  RecordingCore core;
  for (const Type &type : types) {
    Elements array = random_array(type, 150, type.code == QWPORT_SORT_REAL4);
    model_sort(array, type);
    Elements keys = random_array(type, 50, type.code == QWPORT_SORT_REAL4);
    keys.insert(keys.end(), array.begin(), array.end());
    for (const Element &key : keys) CHECK(find(key, joined(array), 150, type.code) == model_find(key, array, type));
  }
  CHECK(core.calls() == "");
}

TEST_CASE("QSORT sorts by 16 bits of the comparison, of one thread after the other") {
  const std::vector<int32_t> sorted = {10, 21, 32, 43, 54, 65, 76, 87, 98, 109},
                             mixed = {54, 10, 98, 21, 32, 109, 65, 43, 87, 76};
  const auto sorted_by = [](std::vector<int32_t> digits, Compare compare) {
    call(QSORT, digits.data(), digits.size(), 4, compare);
    return digits;
  };
  CHECK(sorted_by(mixed, compare_last_digits) == sorted);
  CHECK(sorted_by(sorted, reinterpret_cast<Compare>(high_bits_only)) == sorted);
  call(QSORT, static_cast<void *>(nullptr), -1, 4, compare_last_digits);
  // The inner sort's comparison stays for the outer one: it is called no second time.
  CHECK(sorted_by(mixed, sorts_inside) == std::vector(sorted.rbegin(), sorted.rend()));
  CHECK(inner_sorts == 1);
  CHECK(sorted_by(mixed, sorts_elsewhere) == sorted);
  DWORD first_of_two = 0;
  CHECK((WaitForSingleObject(other_thread, 60000) == WAIT_OBJECT_0 && GetExitCodeThread(other_thread, &first_of_two)));
  CHECK(first_of_two == 2);
}

TEST_CASE("QSORT sorts after comparisons that never came back") {
  int32_t digits[] = {2, 1};
  if (setjmp(way_out) == 0) call(QSORT_II, digits, 2, 4, jumps_out);
  CHECK_THROWS_AS(call(QSORT_II, digits, 2, 4, throws), int);
  CHECK(on_other_thread(sort_two) == 2);
}
