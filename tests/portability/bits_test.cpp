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

TEST_CASE("each bit of both widths can be set, tested and cleared; positions out of range do nothing") {
  const int32_t all = -1;
  const auto check = [&all](int32_t position) {
    CAPTURE(position);
    const auto wide_bit = static_cast<int64_t>(position < 0 || position > 63 ? 0 : uint64_t{1} << position);
    const int64_t others = ~wide_bit, wide_all = -1;
    CHECK(with(BISI8, position, int64_t{0}) == wide_bit);
    CHECK(with(BICI8, position, wide_all) == others);
    CHECK(BITI8(&position, &wide_all) == (wide_bit != 0 ? 1 : 0));
    CHECK(BITI8(&position, &others) == 0);
    const auto bit = static_cast<int32_t>(wide_bit);
    CHECK(with(BIS, position, 0) == bit);
    CHECK(with(BIC, position, all) == ~bit);
    CHECK(BIT(&position, &all) == (bit != 0 ? 1 : 0));
  };
  for (int32_t position = 0; position < 64; ++position) check(position);
  for (const int32_t position : out_of_range) check(position);
}

TEST_CASE("shifts of 0 to 31, and 0 for all other counts") {
  CHECK(shifted(LSHIFT, 1, 31) == min32);
  CHECK(shifted(SHIFTL, 0x12345678, 8) == 0x34567800);
  CHECK(shifted(SHIFTL, -1, 0) == -1);
  CHECK(shifted(RSHIFT, -8, 1) == -4);
  CHECK(shifted(RSHIFT, min32, 31) == -1);
  CHECK(shifted(SHIFTR, -8, 1) == 2147483644);
  CHECK(shifted(SHIFTR, min32, 31) == 1);
  CHECK(shifted(SHIFTR, -1, 0) == -1);
  for (auto *routine : {LSHIFT, SHIFTL, RSHIFT, SHIFTR}) {
    CHECK(shifted(routine, -8, 32) == 0);
    for (const int32_t count : out_of_range) CHECK(shifted(routine, -8, count) == 0);
  }
}

TEST_CASE("a pair of words is shifted by 0 to 64 bits") {
  struct {
    int64_t count;
    uint64_t left, right;
  } const cases[] = {
      {0, 0x0123456789ABCDEF, 0xFEDCBA9876543210},
      {4, 0x123456789ABCDEFF, 0xFFEDCBA987654321},
      {63, 0xFF6E5D4C3B2A1908, 0x02468ACF13579BDF},
      {64, 0xFEDCBA9876543210, 0x0123456789ABCDEF},
      {65, 0, 0},
      {-1, 0, 0},
      {min64, 0, 0},
  };
  for (const auto &expected : cases) {
    CHECK(pair_shifted(DSHIFTL, expected.count) == static_cast<int64_t>(expected.left));
    CHECK(pair_shifted(DSHIFTR, expected.count) == static_cast<int64_t>(expected.right));
  }
}

TEST_CASE("complements and merges") {
  const int32_t i = 0x0F0F0F0F, y = 0x33333333, mask = 0x0000FFFF;
  CHECK(COMPLINT(&i) == static_cast<int32_t>(0xF0F0F0F0));
  CHECK(CSMG(&i, &y, &mask) == 0x33330F0F);
  const float x = 1.0F;
  CHECK(std::bit_cast<uint32_t>(COMPLREAL(&x)) == 0xC07FFFFF);
  for (const int32_t truth : {0, 1, -1}) CHECK(COMPLLOG(&truth) == (truth == 0 ? 1 : 0));
}
