// SPDX-License-Identifier: MIT
// Elements of typed arrays and their order, for sorting and searching.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace qwport::sorting {

// What an element type code stands for.
enum class ElementType : uint8_t { real4, real8, int1, int2, int4, int8, bytes, real16, invalid };

inline ElementType element_type(int32_t code) {
  constexpr uint32_t first_numeric_code = 0x10000;
  constexpr int32_t byte_string_limit = 32767;
  const uint32_t number = std::rotr(static_cast<uint32_t>(code) - first_numeric_code, 16);
  const auto type = static_cast<ElementType>(number);
  if (number <= static_cast<uint32_t>(ElementType::real16) && type != ElementType::bytes) return type;
  return 0 <= code && code < byte_string_limit ? ElementType::bytes : ElementType::invalid;
}

// Whether an array of so many elements can exist: a type, an address, and a size in bytes that is one.
inline bool is_array(const void *array, int64_t count, int32_t code) {
  constexpr std::array<int64_t, 8> sizes = {4, 8, 1, 2, 4, 8, 0, 16};
  const ElementType type = element_type(code);
  if (type == ElementType::invalid || array == nullptr || count < 1) return false;
  const int64_t size = type == ElementType::bytes ? code : sizes[static_cast<size_t>(type)];
  int64_t bytes = 0;
  return !__builtin_mul_overflow(count, size, &bytes);
}

// An IEEE quadruple as the two halves of its bits.
struct Quadruple {
  uint64_t low;
  uint64_t high;
};

// Smaller means "not greater or equal", so that a NaN is smaller than everything and everything than it.
template <class Number> bool is_smaller(const Number &left, const Number &right) { return !(left >= right); }

// Quadruples are ordered by sign, then by magnitude: -0 comes before +0, and a NaN lies beyond the infinity
// of its sign.
inline bool is_smaller(const Quadruple &left, const Quadruple &right) {
  constexpr uint64_t sign_bit = uint64_t{1} << 63;
  const auto low = [](const Quadruple &value) { return (value.high & sign_bit) != 0 ? ~value.low : value.low; };
  const auto high = [](const Quadruple &value) {
    return (value.high & sign_bit) != 0 ? ~value.high : value.high | sign_bit;
  };
  return high(left) != high(right) ? high(left) < high(right) : low(left) < low(right);
}

}  // namespace qwport::sorting
