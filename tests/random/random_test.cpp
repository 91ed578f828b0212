// SPDX-License-Identifier: MIT
// RAN and RANF by value; the fronts of the shared generator by what they ask the core runtime.
#include <cstdint>
#include <limits>

#include "library_test.h"
#include "thread.h"

namespace {

constexpr int32_t min32 = std::numeric_limits<int32_t>::min();

// The number of a seed, and the seed after it.
std::pair<float, int32_t> ran_of(int32_t seed) {
  const float number = RAN(&seed);
  return {number, seed};
}

}  // namespace

TEST_CASE("RAN gives Schrage's numbers for seeds of every kind and leaves the seeds 0 and 1 alone") {
  const auto schrage = [](int32_t seed) {
    const int32_t x = seed < 0 ? static_cast<int32_t>(static_cast<uint32_t>(seed) + 2147483647U) : seed;
    const int32_t k = x / 44488;
    const int32_t t = 48271 * (x - 44488 * k) - 3399 * k;
    return t > 0 ? t : t + 2147483647;
  };
  // Steps of a prime through all 32-bit seeds, and the ends of each range one by one.
  const auto check = [&schrage](uint32_t bits) {
    const auto seed = static_cast<int32_t>(bits);
    const float number = static_cast<float>(schrage(seed)) * 4.656612873077392578125e-10F;
    REQUIRE(ran_of(seed) == std::pair(number, bits < 2 ? seed : schrage(seed)));
  };
  for (uint64_t bits = 0; bits < 0x1'0000'0000; bits += 10'007) check(static_cast<uint32_t>(bits));
  for (uint32_t offset = 0; offset < 100; ++offset) {
    for (const uint32_t end : {0U, 0x7FFFFF9CU, 0x80000000U, 0xFFFFFF9CU}) check(end + offset);
  }
  const std::pair<int32_t, int32_t> seeds[] = {
      {2, 96542}, {2147483646, 2147435376}, {2147483647, 2147483647}, {-1, 2147435376}, {min32, 2147435376}};
  for (const auto &[before, after] : seeds) CHECK(ran_of(before).second == after);
  CHECK((ran_of(0).first == 1.0F && ran_of(2147483647).first == 1.0F));
}

CHILD_PROGRAM(calls_ran_without_a_seed) { return RAN(nullptr) < 0 ? 98 : 99; }

TEST_CASE("RAN without a seed fails an assertion") {
  check_assertion("calls_ran_without_a_seed", "pseed, file portability/random, line 160");
}

TEST_CASE("the flag goes on, resets or seeds before a number is drawn") {
  RecordingCore core;
  core.answer("__FFirand", 40000);
  core.answer("__FFdrand", 3);
  core.answer("__FFfrand", 5);
  const std::pair<int32_t, std::string> flags[] = {{0, ""}, {1, "__FFresetseed() "}, {-7, "__FFsetseed(-7) "}};
  const auto check = [&](const std::string &draw, auto number, auto... routines) {
    for (const auto &[flag, first] : flags) {
      for (auto routine : {routines...}) {
        CHECK_CALLS(call(routine, flag), number, first + draw);
      }
    }
  };
  check("__FFdrand()", 3.0, DRAND, DRANDM);
  check("__FFirand()", 40000, IRAND, IRANDM);
  check("__FFfrand()", 5.0F, RAND, MSPORTLIB_RANDOM);
  CHECK_CALLS(RAND(nullptr), 5.0F, "__FFfrand()");
  CHECK(IRAND(nullptr) == 40000 - 32768);  // reduced without its argument only
  core.answer("__FFirand", -40000);
  CHECK(IRAND(nullptr) == 32768 - 40000);
}

TEST_CASE("seeds are set and read through the core runtime, reals cut to integers") {
  RecordingCore core;
  int32_t present = 0;
  for (auto *routine : {IRANSET, SRAND}) call(routine, 11);
  for (auto *routine : {RANGET, IRANGET}) routine(&present);
  CHECK(core.calls() == "__FFsetseed(11) __FFsetseed(11) __FFgetseed(&) __FFgetseed(&)");
  const std::pair<double, int32_t> seeds[] = {
      {2147483648.0, min32}, {std::numeric_limits<double>::quiet_NaN(), min32}, {-1e30, min32}, {7.9, 7}, {-7.9, -7}};
  for (const auto &[seed, expected] : seeds) {
    call(RANSET, seed);
    call(DRANSET, seed);
    const std::string set = "__FFsetseed(" + std::to_string(expected) + ")";
    CHECK(core.calls() == set + ' ' + set);
  }
  call(DRANSET, 2147483647.5);
  CHECK(core.calls() == "__FFsetseed(2147483647)");
}

TEST_CASE("RANF is the calling thread's rand, seeded by SRAND") {
  RecordingCore core;
  call(SRAND, 1);
  CHECK(RANF() == 41.0F);
  CHECK(RANF() == 18467.0F);
  CHECK(on_other_thread([](void *) { return static_cast<DWORD>(RANF()); }) == 41);  // a thread starts with seed 1
  CHECK(RANF() == 6334.0F);
}
