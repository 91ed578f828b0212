// SPDX-License-Identifier: MIT
// Single bits, shifts, complements and merges.
#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "qwport.h"

namespace {

template <class Integer> constexpr uint32_t width_of = std::numeric_limits<std::make_unsigned_t<Integer>>::digits;

// Positions and counts are unsigned, so a negative one is out of range.
template <class Integer> bool in_range(int32_t position) { return static_cast<uint32_t>(position) < width_of<Integer>; }

// The integer that has this bit alone.
template <class Integer> Integer bit_at(int32_t position) {
  return static_cast<Integer>(std::make_unsigned_t<Integer>{1} << position);
}

// Out of range nothing is written, so that a constant may stand for i.
template <class Integer> void clear_bit(int32_t position, Integer *i) {
  if (in_range<Integer>(position)) *i &= ~bit_at<Integer>(position);
}

template <class Integer> void set_bit(int32_t position, Integer *i) {
  if (in_range<Integer>(position)) *i |= bit_at<Integer>(position);
}

template <class Integer> int32_t has_bit(int32_t position, Integer i) {
  return in_range<Integer>(position) && (i & bit_at<Integer>(position)) != 0 ? 1 : 0;
}

// A pair of 64-bit words shifted left by 0 to 64 bits; its left half.
uint64_t shift_pair_left(uint64_t left, uint64_t right, uint64_t count) {
  if (count > 64) return 0;
  if (count == 0) return left;
  if (count == 64) return right;
  return (left << count) | (right >> (64 - count));
}

}  // namespace

void BIC(const int32_t *ibit, int32_t *i) { clear_bit(*ibit, i); }

void BICI8(const int32_t *ibit, int64_t *i) { clear_bit(*ibit, i); }

void BIS(const int32_t *ibit, int32_t *i) { set_bit(*ibit, i); }

void BISI8(const int32_t *ibit, int64_t *i) { set_bit(*ibit, i); }

int32_t BIT(const int32_t *ibit, const int32_t *i) { return has_bit(*ibit, *i); }

int32_t BITI8(const int32_t *ibit, const int64_t *i) { return has_bit(*ibit, *i); }

int32_t SHIFTL(const int32_t *i, const int32_t *n) {
  return in_range<int32_t>(*n) ? static_cast<int32_t>(static_cast<uint32_t>(*i) << *n) : 0;
}

int32_t RSHIFT(const int32_t *i, const int32_t *n) { return in_range<int32_t>(*n) ? *i >> *n : 0; }

int32_t SHIFTR(const int32_t *i, const int32_t *n) {
  return in_range<int32_t>(*n) ? static_cast<int32_t>(static_cast<uint32_t>(*i) >> *n) : 0;
}

int64_t DSHIFTL(const int64_t *ileft, const int64_t *iright, const int64_t *n) {
  return static_cast<int64_t>(
      shift_pair_left(static_cast<uint64_t>(*ileft), static_cast<uint64_t>(*iright), static_cast<uint64_t>(*n)));
}

int64_t DSHIFTR(const int64_t *ileft, const int64_t *iright, const int64_t *n) {
  // The right half after n bits to the right is the left half after 64 - n to the left.
  const auto count = static_cast<uint64_t>(*n);
  if (count > 64) return 0;
  return static_cast<int64_t>(
      shift_pair_left(static_cast<uint64_t>(*ileft), static_cast<uint64_t>(*iright), 64 - count));
}

int32_t COMPLINT(const int32_t *i) { return ~*i; }

float COMPLREAL(const float *x) { return std::bit_cast<float>(~std::bit_cast<uint32_t>(*x)); }

int32_t COMPLLOG(const int32_t *l) { return *l == 0 ? 1 : 0; }

int32_t CSMG(const int32_t *x, const int32_t *y, const int32_t *z) { return ((*x ^ *y) & *z) ^ *y; }
