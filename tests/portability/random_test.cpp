// SPDX-License-Identifier: MIT
// RAN and RANF by value; the fronts of the shared generator by what they ask the core runtime.
#include <doctest/doctest.h>

#include <cstdint>
#include <limits>
#include <string>

#include <windows.h>

#include "child.h"
#include "qwport.h"
#include "recording.h"

namespace {

int32_t seed_after(int32_t seed) {
  RAN(&seed);
  return seed;
}

float ran_of(int32_t seed) { return RAN(&seed); }

}  // namespace

TEST_CASE("RAN gives Schrage's numbers for seeds of every kind") {
  const auto schrage = [](int32_t seed) {
    const int32_t x = seed < 0 ? static_cast<int32_t>(static_cast<uint32_t>(seed) + 2147483647U) : seed;
    const int32_t k = x / 44488;
    const int32_t t = 48271 * (x - 44488 * k) - 3399 * k;
    return t > 0 ? t : t + 2147483647;
  };
  // Steps of a prime through all 32-bit seeds, and the ends of each range one by one.
  const auto check = [&schrage](uint32_t bits) {
    const auto seed = static_cast<int32_t>(bits);
    REQUIRE(ran_of(seed) == static_cast<float>(schrage(seed)) * 4.656612873077392578125e-10F);
    if (bits >= 2) REQUIRE(seed_after(seed) == schrage(seed));
  };
  for (uint64_t bits = 0; bits < 0x1'0000'0000; bits += 10'007) check(static_cast<uint32_t>(bits));
  for (uint32_t offset = 0; offset < 100; ++offset) {
    for (const uint32_t end : {0U, 0x7FFFFF9CU, 0x80000000U, 0xFFFFFF9CU}) check(end + offset);
  }
}

TEST_CASE("RAN leaves the seeds 0 and 1 alone and replaces all others") {
  constexpr int32_t min32 = std::numeric_limits<int32_t>::min();
  const std::pair<int32_t, int32_t> seeds[] = {{0, 0},
                                               {1, 1},
                                               {2, 96542},
                                               {2147483646, 2147435376},
                                               {2147483647, 2147483647},
                                               {-1, 2147435376},
                                               {min32, 2147435376},
                                               {-2147483647, 2147483647}};
  for (const auto &[before, after] : seeds) CHECK(seed_after(before) == after);
  CHECK(ran_of(0) == 1.0F);
  CHECK(ran_of(1) == 48271 * 4.656612873077392578125e-10F);
  CHECK(ran_of(2147483647) == 1.0F);
}

CHILD_PROGRAM(calls_ran_without_a_seed) {
  RAN(nullptr);
  return 99;
}

TEST_CASE("RAN without a seed fails an assertion") {
  const ChildResult result = run_child("calls_ran_without_a_seed");
  CHECK(result.exit_code == 3);
  for (const char *part : {"pseed", "portability/random", "160"}) CHECK(result.output.find(part) != std::string::npos);
}

TEST_CASE("the flag goes on, resets or seeds before a number is drawn") {
  RecordingCore core;
  core.answer("__FFirand", 40000);
  core.answer("__FFdrand", 3);
  core.answer("__FFfrand", 5);
  const std::pair<int32_t, std::string> flags[] = {{0, ""}, {1, "__FFresetseed() "}, {-7, "__FFsetseed(-7) "}};
  const auto check = [&](auto routine, auto number, const std::string &draw) {
    for (const auto &[flag, first] : flags) {
      CHECK(routine(&flag) == number);
      CHECK(core.calls() == first + draw);
    }
  };
  check(DRAND, 3.0, "__FFdrand()");
  check(DRANDM, 3.0, "__FFdrand()");
  check(IRAND, 40000, "__FFirand()");
  check(IRANDM, 40000, "__FFirand()");
  check(RAND, 5.0F, "__FFfrand()");
  check(MSPORTLIB_RANDOM, 5.0F, "__FFfrand()");
  CHECK(RAND(nullptr) == 5.0F);
  CHECK(core.calls() == "__FFfrand()");
  CHECK(IRAND(nullptr) == 40000 - 32768);  // reduced without its argument only
  core.answer("__FFirand", -40000);
  CHECK(IRAND(nullptr) == 32768 - 40000);
}

TEST_CASE("seeds are set and read through the core runtime, reals cut to integers") {
  RecordingCore core;
  const int32_t seed = 11;
  int32_t present = 0;
  IRANSET(&seed);
  SRAND(&seed);
  RANGET(&present);
  IRANGET(&present);
  CHECK(core.calls() == "__FFsetseed(11) __FFsetseed(11) __FFgetseed(&) __FFgetseed(&)");

  const double too_large[] = {2147483648.0, -1e30, std::numeric_limits<double>::quiet_NaN()};
  const auto check = [&core](double value, int32_t expected) {
    const auto single = static_cast<float>(value);
    RANSET(&single);
    DRANSET(&value);
    const std::string call = "__FFsetseed(" + std::to_string(expected) + ")";
    CHECK(core.calls() == call + ' ' + call);
  };
  for (const double value : too_large) check(value, std::numeric_limits<int32_t>::min());
  check(7.9, 7);
  check(-7.9, -7);
  const double largest = 2147483647.5;
  DRANSET(&largest);
  CHECK(core.calls() == "__FFsetseed(2147483647)");
}

TEST_CASE("RANF is the calling thread's rand, seeded by SRAND") {
  RecordingCore core;
  const int32_t seed = 1;
  SRAND(&seed);
  CHECK(RANF() == 41.0F);
  CHECK(RANF() == 18467.0F);

  float of_new_thread = 0;
  const auto draw_one = [](void *number) -> DWORD { return *static_cast<float *>(number) = RANF(), 0; };
  HANDLE thread = CreateThread(nullptr, 0, draw_one, &of_new_thread, 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  CHECK(of_new_thread == 41.0F);  // a thread starts with seed 1
  CHECK(RANF() == 6334.0F);
}
