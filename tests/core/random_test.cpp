// SPDX-License-Identifier: MIT
// The shared random generator.
#include <doctest/doctest.h>

#include <cstdint>
#include <set>
#include <vector>

#include <windows.h>

#include "qwcore.h"

namespace {

std::vector<int32_t> draw_integers(int count) {
  std::vector<int32_t> values;
  for (int i = 0; i < count; ++i) values.push_back(__FFirand());
  return values;
}

int32_t current_seed() {
  int32_t seed = 0;
  __FFgetseed(&seed);
  return seed;
}

DWORD WINAPI draw_many(void *values) {
  for (int32_t &value : *static_cast<std::vector<int32_t> *>(values)) value = __FFirand();
  return 0;
}

}  // namespace

TEST_CASE("the sequence is the documented one") {
  // Computed outside this code, with arbitrary-precision integers.
  __FFsetseed(0);
  CHECK(draw_integers(3) == std::vector<int32_t>{1231361927, 510358009, 227163878});
  __FFsetseed(0);
  CHECK((__FFfrand() == 0x1.25945e0000000p-1F && __FFdrand() == 0x1.e6b71f1b147dcp-3));
}

TEST_CASE("a seed repeats its sequence, and a seed that was read continues it") {
  for (const int32_t seed : {0, -1, INT32_MIN}) {
    __FFsetseed(seed);
    CHECK(current_seed() == seed);
    const std::vector<int32_t> first = draw_integers(20);
    const int32_t reached = current_seed();
    const std::vector<int32_t> rest = draw_integers(20);
    CHECK(first != rest);
    __FFsetseed(seed);
    CHECK(draw_integers(20) == first);
    __FFresetseed();
    CHECK(current_seed() == 1);
    __FFsetseed(reached);
    CHECK(draw_integers(20) == rest);
  }
}

TEST_CASE("threads share one sequence: together they draw what one thread draws") {
  constexpr size_t share = 20'000;
  __FFsetseed(7);
  const std::vector<int32_t> single = draw_integers(2 * share);
  __FFsetseed(7);
  std::vector<int32_t> left(share), right(share);
  HANDLE thread = CreateThread(nullptr, 0, draw_many, &right, 0, nullptr);
  draw_many(&left);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  std::multiset<int32_t> together(left.begin(), left.end());
  together.insert(right.begin(), right.end());
  CHECK(together == std::multiset<int32_t>(single.begin(), single.end()));
}
