// SPDX-License-Identifier: MIT
// The shared random generator.
#include <doctest/doctest.h>

#include <cstdint>
#include <set>
#include <vector>

#include "qwcore.h"
#include "thread.h"

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
  static int32_t drawn[8][20'000];
  __FFsetseed(7);
  const std::vector<int32_t> single = draw_integers(8 * 20'000);
  __FFsetseed(7);
  on_eight_threads([](void *number) -> DWORD {
    for (int32_t &value : drawn[reinterpret_cast<size_t>(number)]) value = __FFirand();
    return 0;
  });
  const std::multiset<int32_t> together(&drawn[0][0], &drawn[0][0] + single.size());
  CHECK(together == std::multiset<int32_t>(single.begin(), single.end()));
}
