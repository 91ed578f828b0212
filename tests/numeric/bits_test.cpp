// SPDX-License-Identifier: MIT
#include <cstdint>
#include <limits>

#include "library_test.h"

namespace {

constexpr int32_t min32 = std::numeric_limits<int32_t>::min();

// The word after a bit of it was set or cleared.
template <class Word> Word with(void (*routine)(const int32_t *, Word *), int32_t position, Word word) {
  call(routine, position, &word);
  return word;
}

}  // namespace

TEST_CASE("each bit of both widths can be set, tested and cleared; positions out of range do nothing") {
  const auto check = [](int32_t position) {
    CAPTURE(position);
    const auto wide_bit = static_cast<int64_t>(position < 0 || position > 63 ? 0 : uint64_t{1} << position);
    const auto bit = static_cast<int32_t>(wide_bit);
    CHECK((with<int64_t>(BISI8, position, 0) == wide_bit && with<int64_t>(BICI8, position, -1) == ~wide_bit));
    CHECK((call(BITI8, position, -1) == (wide_bit != 0) && call(BITI8, position, ~wide_bit) == 0));
    CHECK((with<int32_t>(BIS, position, 0) == bit && with<int32_t>(BIC, position, -1) == ~bit));
    CHECK((call(BIT, position, -1) == (bit != 0) && call(BIT, position, ~bit) == 0));
  };
  for (int32_t position = -1; position <= 64; ++position) check(position);
  check(min32);
  static const int64_t constant = 5;  // where writing is a fault
  for (auto *routine : {BIS, BIC})
    call(routine, 32, const_cast<int32_t *>(reinterpret_cast<const int32_t *>(&constant)));
  for (auto *routine : {BISI8, BICI8}) call(routine, -1, const_cast<int64_t *>(&constant));
}

TEST_CASE("shifts of 0 to 31, and 0 for all other counts") {
  CHECK(call(LSHIFT, 1, 31) == min32);
  CHECK(call(SHIFTL, 0x12345678, 8) == 0x34567800);
  CHECK((call(RSHIFT, -8, 1) == -4 && call(RSHIFT, min32, 31) == -1));
  CHECK((call(SHIFTR, -8, 1) == 2147483644 && call(SHIFTR, min32, 31) == 1));
  for (auto *routine : {LSHIFT, SHIFTL, RSHIFT, SHIFTR}) {
    CHECK(call(routine, -8, 0) == -8);
    for (const int32_t count : {32, -1, min32}) CHECK(call(routine, -8, count) == 0);
  }
}

TEST_CASE("a pair of words is shifted by 0 to 64 bits") {
  constexpr uint64_t left = 0x0123456789ABCDEF, right = 0xFEDCBA9876543210;
  const std::tuple<int64_t, uint64_t, uint64_t> cases[] = {{0, left, right},
                                                           {4, 0x123456789ABCDEFF, 0xFFEDCBA987654321},
                                                           {63, 0xFF6E5D4C3B2A1908, 0x02468ACF13579BDF},
                                                           {64, right, left},
                                                           {65, 0, 0},
                                                           {-1, 0, 0}};
  for (const auto &[count, to_left, to_right] : cases) {
    CHECK(call(DSHIFTL, left, right, count) == static_cast<int64_t>(to_left));
    CHECK(call(DSHIFTR, left, right, count) == static_cast<int64_t>(to_right));
  }
}

TEST_CASE("the complement of a truth") {
  for (const int32_t truth : {0, 1, -1}) CHECK(call(COMPLLOG, truth) == (truth == 0));
}
