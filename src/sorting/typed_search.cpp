// SPDX-License-Identifier: MIT
// Searching sorted arrays of numbers and of byte strings.
#include <cerrno>
#include <cstring>

#include "element_types.h"
#include "errors.h"
#include "qwport.h"

namespace {

using namespace qwport::sorting;

// compare(index) tells how the key stands to an element: negative, zero or positive. The index, from 1, of the
// element that the halving meets first among equal ones; 0 if there is none.
template <class Compare> int64_t search(int64_t length, Compare compare) {
  int64_t low = 0;
  int64_t high = length - 1;
  while (low <= high) {
    const int64_t middle = (low + high) >> 1;
    const int order = compare(middle);
    if (order == 0) return middle + 1;
    if (order < 0) {
      high = middle - 1;
    } else {
      low = middle + 1;
    }
  }
  return 0;
}

template <class Number> int64_t search_numbers(const void *key_address, const void *array, int64_t length) {
  const Number key = *static_cast<const Number *>(key_address);
  const auto *numbers = static_cast<const Number *>(array);
  return search(length, [key, numbers](int64_t index) {
    if (is_smaller(key, numbers[index])) return -1;
    return is_smaller(numbers[index], key) ? 1 : 0;
  });
}

int64_t search_bytes(const void *key, const void *array, int64_t length, size_t size) {
  const auto *bytes = static_cast<const char *>(array);
  return search(length, [key, bytes, size](int64_t index) {
    return std::memcmp(key, bytes + static_cast<size_t>(index) * size, size);
  });
}

constexpr int64_t not_an_array = -1;

int64_t search_elements(const void *key, const void *array, int64_t length, int32_t size) {
  if (key == nullptr || !is_array(array, length, size)) return not_an_array;
  switch (element_type(size)) {
    case ElementType::real4:
      return search_numbers<float>(key, array, length);
    case ElementType::real8:
      return search_numbers<double>(key, array, length);
    case ElementType::int1:
      return search_numbers<int8_t>(key, array, length);
    case ElementType::int2:
      return search_numbers<int16_t>(key, array, length);
    case ElementType::int4:
      return search_numbers<int32_t>(key, array, length);
    case ElementType::int8:
      return search_numbers<int64_t>(key, array, length);
    case ElementType::real16:
      return search_numbers<Quadruple>(key, array, length);
    default:
      return search_bytes(key, array, length, static_cast<size_t>(size));
  }
}

}  // namespace

int32_t BSEARCHQQ(const int64_t *keyAddress, const int64_t *arrayAddress, const int64_t *length, const int32_t *size) {
  const int64_t found = search_elements(reinterpret_cast<const void *>(*keyAddress),
                                        reinterpret_cast<const void *>(*arrayAddress), *length, *size);
  if (0 <= found && found <= INT32_MAX) return static_cast<int32_t>(found);
  portlib_report_errno(EINVAL);  // an index that the result cannot hold, too
  return 0;
}
