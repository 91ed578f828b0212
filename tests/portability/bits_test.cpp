// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <limits>

#include "qwport.h"

namespace {

constexpr int32_t min32 = std::numeric_limits<int32_t>::min();
constexpr int64_t min64 = std::numeric_limits<int64_t>::min();
const int32_t out_of_range[] = {-1, min32, 64, 65, 2147483647};

int32_t with(void (*routine)(const int32_t *, int32_t *), int32_t position, int32_t i) {
  routine(&position, &i);
  return i;
}

int64_t with(void (*routine)(const int32_t *, int64_t *), int32_t position, int64_t i) {
  routine(&position, &i);
  return i;
}

int32_t shifted(int32_t (*routine)(const int32_t *, const int32_t *), int32_t i, int32_t n) { return routine(&i, &n); }

int64_t pair_shifted(int64_t (*routine)(const int64_t *, const int64_t *, const int64_t *), int64_t n) {
  const int64_t left = 0x0123456789ABCDEF;
  const int64_t right = static_cast<int64_t>(0xFEDCBA9876543210);
  return routine(&left, &right, &n);
}

}  // namespace

TEST_CASE("each bit of both widths can be set, tested and cleared") {
  for (int32_t position = 0; position < 64; ++position) {
    CAPTURE(position);
    const auto wide_bit = static_cast<int64_t>(uint64_t{1} << position);
    CHECK(with(BISI8, position, int64_t{0}) == wide_bit);
    CHECK(with(BICI8, position, int64_t{-1}) == ~wide_bit);
    CHECK(BITI8(&position, &wide_bit) == 1);
    const int64_t wide_others = ~wide_bit;
    CHECK(BITI8(&position, &wide_others) == 0);

    const bool in_range = position < 32;
    const int32_t bit = in_range ? static_cast<int32_t>(uint32_t{1} << position) : 0;
    CHECK(with(BIS, position, 0) == bit);
    CHECK(with(BIC, position, -1) == ~bit);
    const int32_t all = -1;
    CHECK(BIT(&position, &all) == (in_range ? 1 : 0));
  }
}

TEST_CASE("positions and counts out of range do nothing or give 0") {
  const int32_t all = -1;
  const int64_t wide_all = -1;
  for (const int32_t position : out_of_range) {
    CAPTURE(position);
    CHECK(with(BIS, position, 5) == 5);
    CHECK(with(BIC, position, 5) == 5);
    CHECK(BIT(&position, &all) == 0);
    CHECK(with(BISI8, position, int64_t{5}) == 5);
    CHECK(with(BICI8, position, int64_t{5}) == 5);
    CHECK(BITI8(&position, &wide_all) == 0);
    for (auto *routine : {LSHIFT, SHIFTL, RSHIFT, SHIFTR}) CHECK(shifted(routine, -8, position) == 0);
  }
  for (auto *routine : {LSHIFT, SHIFTL, RSHIFT, SHIFTR}) CHECK(shifted(routine, -8, 32) == 0);
}

TEST_CASE("shifts of 0 to 31") {
  CHECK(shifted(LSHIFT, 1, 31) == min32);
  CHECK(shifted(SHIFTL, 0x12345678, 8) == 0x34567800);
  CHECK(shifted(SHIFTL, -1, 0) == -1);
  CHECK(shifted(RSHIFT, -8, 1) == -4);
  CHECK(shifted(RSHIFT, min32, 31) == -1);
  CHECK(shifted(SHIFTR, -8, 1) == 2147483644);
  CHECK(shifted(SHIFTR, min32, 31) == 1);
  CHECK(shifted(SHIFTR, -1, 0) == -1);
}

TEST_CASE("a pair of words is shifted by 0 to 64 bits") {
  CHECK(pair_shifted(DSHIFTL, 0) == 0x0123456789ABCDEF);
  CHECK(pair_shifted(DSHIFTL, 4) == 0x123456789ABCDEFF);
  CHECK(pair_shifted(DSHIFTL, 63) == static_cast<int64_t>(0xFF6E5D4C3B2A1908));
  CHECK(pair_shifted(DSHIFTL, 64) == static_cast<int64_t>(0xFEDCBA9876543210));
  CHECK(pair_shifted(DSHIFTR, 0) == static_cast<int64_t>(0xFEDCBA9876543210));
  CHECK(pair_shifted(DSHIFTR, 4) == static_cast<int64_t>(0xFFEDCBA987654321));
  CHECK(pair_shifted(DSHIFTR, 63) == 0x02468ACF13579BDF);
  CHECK(pair_shifted(DSHIFTR, 64) == 0x0123456789ABCDEF);
  for (const int64_t count : {int64_t{65}, int64_t{-1}, min64}) {
    CHECK(pair_shifted(DSHIFTL, count) == 0);
    CHECK(pair_shifted(DSHIFTR, count) == 0);
  }
}

TEST_CASE("complements and merges") {
  const int32_t i = 0x0F0F0F0F;
  const int32_t zero = 0;
  const int32_t one = 1;
  const int32_t minus_one = -1;
  CHECK(COMPLINT(&i) == static_cast<int32_t>(0xF0F0F0F0));
  const float x = 1.0F;
  CHECK(std::bit_cast<uint32_t>(COMPLREAL(&x)) == 0xC07FFFFF);
  CHECK(COMPLLOG(&zero) == 1);
  CHECK(COMPLLOG(&one) == 0);
  CHECK(COMPLLOG(&minus_one) == 0);
  const int32_t y = 0x33333333;
  const int32_t mask = 0x0000FFFF;
  CHECK(CSMG(&i, &y, &mask) == 0x33330F0F);
}
