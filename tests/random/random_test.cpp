// SPDX-License-Identifier: MIT
// RAN and RANF by value; the fronts of the shared generator by what they ask the core runtime.
#include <cmath>
#include <cstdint>

#include "library_test.h"
#include "thread.h"

namespace {

// By Schrage's decomposition in 32-bit arithmetic.
int32_t next_of(int32_t seed) {
  const int32_t x = seed < 0 ? static_cast<int32_t>(static_cast<uint32_t>(seed) + 2147483647U) : seed;
  const int32_t k = x / 44488, t = 48271 * (x - 44488 * k) - 3399 * k;
  return t > 0 ? t : t + 2147483647;
}

void check_ran(uint32_t bits) {
  auto seed = static_cast<int32_t>(bits);
  const int32_t next = next_of(seed);
  REQUIRE(RAN(&seed) == static_cast<float>(next) * 4.656612873077392578125e-10F);
  REQUIRE(seed == (bits < 2 ? static_cast<int32_t>(bits) : next));
}

}  // namespace

CHILD_PROGRAM(calls_ran_without_a_seed) { return RAN(nullptr) < 0 ? 98 : 99; }

TEST_CASE("RAN gives Schrage's numbers for seeds of every kind and leaves the seeds 0 and 1 alone") {
  // Steps of a prime through all 32-bit seeds, and the ends of each range one by one.
  for (uint64_t bits = 0; bits < 0x1'0000'0000; bits += 10'007) check_ran(static_cast<uint32_t>(bits));
  for (uint32_t offset = 0; offset < 100; ++offset)
    for (const uint32_t end : {0U, 0x7FFFFF9CU, 0x80000000U, 0xFFFFFF9CU}) check_ran(end + offset);
  for (const auto &[seed, next] : {std::pair{2, 96542}, {2147483646, 2147435376}, {-1, 2147435376}})
    CHECK(next_of(seed) == next);
  check_assertion("calls_ran_without_a_seed", "pseed, file portability/random, line 160");
}

TEST_CASE("the flag goes on, resets or seeds before a number is drawn") {
  RecordingCore core;
  core.answer("__FFirand", 40000);
  core.answer("__FFdrand", 3);
  core.answer("__FFfrand", 5);
  for (const auto &[flag, first] : {std::pair{0, ""}, {1, "__FFresetseed() "}, {-7, "__FFsetseed(-7) "}}) {
    const std::string action = first;
    for (auto *draw : {DRAND, DRANDM}) CHECK_CALLS(call(draw, flag), 3.0, action + "__FFdrand()");
    for (auto *draw : {IRAND, IRANDM}) CHECK_CALLS(call(draw, flag), 40000, action + "__FFirand()");
    for (auto *draw : {RAND, MSPORTLIB_RANDOM}) CHECK_CALLS(call(draw, flag), 5.0F, action + "__FFfrand()");
  }
  CHECK((RAND(nullptr) == 5.0F && IRAND(nullptr) == 40000 - 32768));  // reduced without its argument only
  core.answer("__FFirand", -40000);
  CHECK(IRAND(nullptr) == 32768 - 40000);
}

TEST_CASE("seeds are reals cut to integers; RANF is the calling thread's rand, seeded by SRAND") {
  RecordingCore core;
  for (const auto &[seed, expected] : {std::pair{2147483648.0, "-2147483648"},
                                       {double{NAN}, "-2147483648"},
                                       {-1e30, "-2147483648"},
                                       {7.9, "7"},
                                       {-7.9, "-7"}}) {
    const std::string set = std::string("__FFsetseed(") + expected + ')';
    call(RANSET, seed);
    call(DRANSET, seed);
    CHECK(core.calls() == set + ' ' + set);
  }
  call(DRANSET, 2147483647.5);
  call(SRAND, 1);
  CHECK(core.calls() == "__FFsetseed(2147483647) __FFsetseed(1)");
  CHECK((RANF() == 41.0F && RANF() == 18467.0F));
  CHECK(on_other_thread([](void *) { return static_cast<DWORD>(RANF()); }) == 41);  // a thread starts with seed 1
  CHECK(RANF() == 6334.0F);
}
