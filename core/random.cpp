// SPDX-License-Identifier: MIT
// The shared random generator. Its whole state is the 32-bit seed, as the interface demands, so that
// a seed read with __FFgetseed and set again continues the sequence. The state is a Weyl sequence
// (a counter advanced by an odd constant, period 2^32) and each value is the counter mixed by the 32-bit
// finalizer of MurmurHash3. Drawing is one atomic addition: threads share one sequence without a lock.
#include <atomic>
#include <cstdint>

#include "qwcore.h"

namespace {

constexpr uint32_t initial_seed = 1;
constexpr uint32_t increment = 0x9E3779B9;  // 2^32 divided by the golden ratio

std::atomic<uint32_t> state{initial_seed};

constexpr uint32_t mix(uint32_t x) {
  x ^= x >> 16;
  x *= 0x85EBCA6B;
  x ^= x >> 13;
  x *= 0xC2B2AE35;
  x ^= x >> 16;
  return x;
}

// Advances the state by count draws and gives it as it stands before them.
uint32_t advance(uint32_t count) { return state.fetch_add(count * increment, std::memory_order_relaxed); }

uint32_t draw() { return mix(advance(1) + increment); }

}  // namespace

void __FFresetseed() { state.store(initial_seed, std::memory_order_relaxed); }

void __FFsetseed(int32_t seed) { state.store(static_cast<uint32_t>(seed), std::memory_order_relaxed); }

void __FFgetseed(int32_t *seed) { *seed = static_cast<int32_t>(state.load(std::memory_order_relaxed)); }

int32_t __FFirand() { return static_cast<int32_t>(draw() >> 1); }

float __FFfrand() { return static_cast<float>(draw() >> 8) * 0x1p-24F; }

double __FFdrand() {
  const uint32_t before = advance(2);
  const uint64_t high = mix(before + increment) >> 5;
  const uint64_t low = mix(before + 2 * increment) >> 6;
  return static_cast<double>((high << 26) | low) * 0x1p-53;
}
