// SPDX-License-Identifier: MIT
// RAN, whose state is the caller's; the fronts of the core runtime's shared generator; and RANF, the C
// run-time's.
#include <cstdint>
#include <cstdlib>

#include <immintrin.h>

#include "assertion.h"
#include "core_entries.h"
#include "qwport.h"

// Exported as $$MSPORTLIB$RANDOM, a name that no C++ function can have.
extern "C" float portlib_random_required(const int32_t *iflag);

namespace {

// 48271 x mod 2^31 - 1, where 0 counts as the modulus. The 64-bit product folded at bit 31 gives for each
// of the 2^32 seeds the number that Schrage's decomposition gives in 32-bit arithmetic, and is faster.
int32_t next_of_ran(int32_t seed) {
  constexpr int64_t modulus = 2147483647;
  constexpr int64_t multiplier = 48271;
  const int64_t x = seed < 0 ? seed + 2 * modulus : int64_t{seed};
  const int64_t product = multiplier * x;
  const int64_t folded = (product & modulus) + (product >> 31);
  const int64_t value = folded > modulus ? folded - modulus : folded;
  return static_cast<int32_t>(value == 0 ? modulus : value);
}

// The flag of the drawing routines: 0 goes on, 1 resets, any other value is a seed.
void act_on_flag(int32_t flag) {
  if (flag == 1) core::__FFresetseed();
  if (flag != 0 && flag != 1) core::__FFsetseed(flag);
}

}  // namespace

float RAN(int32_t *seed) {
  if (seed == nullptr) portlib_fail_assertion("pseed", "portability/random", 160);
  const int32_t value = next_of_ran(*seed);
  // Seeds 0 and 1 never change, so they give the same number every time; this is meant.
  if (static_cast<uint32_t>(*seed) >= 2) *seed = value;
  return static_cast<float>(value) * 0x1p-31F;
}

double DRAND(const int32_t *iflag) {
  act_on_flag(*iflag);
  return core::__FFdrand();
}

int32_t IRAND(const int32_t *iflag) {
  // Only the form without an argument is reduced; this is meant.
  if (iflag == nullptr) return core::__FFirand() % 32768;
  return IRANDM(iflag);
}

int32_t IRANDM(const int32_t *iflag) {
  act_on_flag(*iflag);
  return core::__FFirand();
}

float RAND(const int32_t *iflag) {
  if (iflag == nullptr) return core::__FFfrand();
  return portlib_random_required(iflag);
}

float portlib_random_required(const int32_t *iflag) {
  act_on_flag(*iflag);
  return core::__FFfrand();
}

void SRAND(const int32_t *iseed) {
  core::__FFsetseed(*iseed);
  std::srand(static_cast<unsigned>(*iseed));
}

void IRANSET(const int32_t *iseed) { core::__FFsetseed(*iseed); }

// The processor's conversion gives -2147483648 for a NaN and what does not fit, where a cast is undefined.

void RANSET(const float *seed) { core::__FFsetseed(_mm_cvttss_si32(_mm_set_ss(*seed))); }

void DRANSET(const double *seed) { core::__FFsetseed(_mm_cvttsd_si32(_mm_set_sd(*seed))); }

void RANGET(int32_t *iseed) { core::__FFgetseed(iseed); }

float RANF(void) { return static_cast<float>(std::rand()); }
