// SPDX-License-Identifier: MIT
// The standard library's minimal-standard generator, drawn as RAN draws: one number a call.
#include <cstdint>
#include <random>

extern "C" float standard_ran(std::minstd_rand *generator);

#if defined(__GNUC__)
__attribute__((noinline))
#endif
float standard_ran(std::minstd_rand *generator) {
  return static_cast<float>((*generator)()) * 0x1p-31F;
}
