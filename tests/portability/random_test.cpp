// SPDX-License-Identifier: MIT
// RAN and RANF by value; the fronts of the shared generator by what they ask the core runtime.
#include <doctest/doctest.h>

#include <cstdint>
#include <limits>
#include <random>
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

DWORD WINAPI draw_one(void *number) {
  *static_cast<float *>(number) = RANF();
  return 0;
}

}  // namespace

TEST_CASE("RAN is the minimal-standard generator with multiplier 48271") {
  std::minstd_rand standard(12345);
  int32_t seed = 12345;
  for (int i = 0; i < 100'000; ++i) {
    const float number = RAN(&seed);
    const auto expected = static_cast<int32_t>(standard());
    REQUIRE(seed == expected);
    REQUIRE(number == static_cast<float>(expected) * 4.656612873077392578125e-10F);
  }
}

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
  CHECK(seed_after(0) == 0);
  CHECK(ran_of(0) == 1.0F);
  CHECK(seed_after(1) == 1);
  CHECK(ran_of(1) == 48271 * 4.656612873077392578125e-10F);
  CHECK(seed_after(2) == 96542);
  CHECK(seed_after(2147483646) == 2147435376);
  CHECK(seed_after(-1) == 2147435376);
  CHECK(seed_after(2147483647) == 2147483647);
  CHECK(ran_of(2147483647) == 1.0F);
  CHECK(seed_after(-2147483647) == 2147483647);
  CHECK(seed_after(std::numeric_limits<int32_t>::min()) == 2147435376);
}

CHILD_PROGRAM(calls_ran_without_a_seed) {
  RAN(nullptr);
  return 99;
}

TEST_CASE("RAN without a seed fails an assertion") {
  const ChildResult result = run_child("calls_ran_without_a_seed");
  CHECK(result.exit_code == 3);
  CHECK(result.output.find("pseed") != std::string::npos);
  CHECK(result.output.find("portability/random") != std::string::npos);
  CHECK(result.output.find("160") != std::string::npos);
}

TEST_CASE("the flag goes on, resets or seeds before a number is drawn") {
  RecordingCore core;
  core.answer("__FFirand", 40000);
  core.answer("__FFdrand", 3);
  core.answer("__FFfrand", 5);
  const int32_t go_on = 0;
  const int32_t reset = 1;
  const int32_t seed = -7;

  CHECK(DRAND(&go_on) == 3.0);
  CHECK(core.calls() == "__FFdrand()");
  CHECK(DRANDM(&reset) == 3.0);
  CHECK(core.calls() == "__FFresetseed() __FFdrand()");
  CHECK(IRANDM(&seed) == 40000);
  CHECK(core.calls() == "__FFsetseed(-7) __FFirand()");
  CHECK(RAND(&seed) == 5.0F);
  CHECK(core.calls() == "__FFsetseed(-7) __FFfrand()");
  CHECK(MSPORTLIB_RANDOM(&reset) == 5.0F);
  CHECK(core.calls() == "__FFresetseed() __FFfrand()");
  CHECK(RAND(nullptr) == 5.0F);
  CHECK(core.calls() == "__FFfrand()");
}

TEST_CASE("IRAND is reduced without its argument only") {
  RecordingCore core;
  core.answer("__FFirand", 40000);
  const int32_t go_on = 0;
  CHECK(IRAND(nullptr) == 40000 - 32768);
  CHECK(IRAND(&go_on) == 40000);
  CHECK(core.calls() == "__FFirand() __FFirand()");
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

  const std::pair<double, std::string> cases[] = {
      {7.9, "7"},
      {-7.9, "-7"},
      {2147483648.0, "-2147483648"},
      {-1e30, "-2147483648"},
      {std::numeric_limits<double>::quiet_NaN(), "-2147483648"},
  };
  for (const auto &[value, expected] : cases) {
    const auto single = static_cast<float>(value);
    RANSET(&single);
    DRANSET(&value);
    CHECK(core.calls() == "__FFsetseed(" + expected + ") __FFsetseed(" + expected + ")");
  }
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
  HANDLE thread = CreateThread(nullptr, 0, draw_one, &of_new_thread, 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  CHECK(of_new_thread == 41.0F);  // a thread starts with seed 1
  CHECK(RANF() == 6334.0F);
}
