// SPDX-License-Identifier: MIT
// Where a Shell sort leaves the signs of zeros, which compare equal.
//
// Each pass sorts every chain of elements a gap apart, and equal ones keep their order. So after a pass a chain
// holds its negative numbers, its zeros in the order in which they stood, its positive numbers: how many are
// negative tells where the zeros stand, and nothing else of the numbers matters. All negative numbers being at
// the heads of chains, the next gap's counts follow from these: the gap is three of the next one and one more,
// so that an element in row r of chain c goes to chain c + r, modulo the next gap.
#include <bit>

#include "key_sort.h"
#include "real_keys.h"
#include "shell_sort.h"

namespace qwport::sorting {

namespace {

// The zeros among 64 elements: a bit an element.
struct ZeroBits {
  uint64_t zeros;
  uint64_t negative;
};

void put_zero(ZeroBits *bits, size_t place, uint64_t is_negative) {
  ZeroBits &word = bits[place / 64];
  word.zeros |= uint64_t{1} << place % 64;
  word.negative |= is_negative << place % 64;
}

// Calls visit with the place of each zero, in order, and whether it is negative.
template <class Visit> void visit_zeros(const ZeroBits *bits, size_t count, Visit visit) {
  for (size_t word = 0; word * 64 < count; ++word) {
    for (uint64_t zeros = bits[word].zeros; zeros != 0; zeros &= zeros - 1) {
      const auto bit = static_cast<size_t>(std::countr_zero(zeros));
      visit(word * 64 + bit, bits[word].negative >> bit & 1);
    }
  }
}

// How many negative numbers each chain of the next gap has, counted along the ranges of chains that the heads
// of this gap's chains reach: +1 where a range begins, -1 behind its end.
void count_next_heads(const size_t *heads, size_t gap, size_t *next_heads, size_t next) {
  std::fill_n(next_heads, next, 0);
  size_t whole_rounds = 0;
  for (size_t chain = 0, start = 0; chain < gap; ++chain, start = start + 1 == next ? 0 : start + 1) {
    whole_rounds += heads[chain] / next;
    const size_t end = start + heads[chain] % next;
    ++next_heads[start];
    if (end >= next) ++next_heads[0];
    --next_heads[end < next ? end : end - next];
  }
  size_t ranges = 0;
  for (size_t chain = 0; chain < next; ++chain) {
    ranges += next_heads[chain];
    next_heads[chain] = whole_rounds + ranges;
  }
}

// One pass: each chain's zeros behind its negative numbers. places: room for a number a chain.
void move_zeros(const ZeroBits *from, ZeroBits *to, size_t count, const size_t *heads, size_t gap, size_t *places) {
  for (size_t chain = 0; chain < gap; ++chain) places[chain] = chain + heads[chain] * gap;
  std::fill_n(to, count / 64 + 1, ZeroBits{});
  size_t chain = 0;
  size_t last = 0;
  visit_zeros(from, count, [&](size_t place, uint64_t is_negative) {
    chain += place - last;
    last = place;
    if (chain >= gap) chain = chain - gap < gap ? chain - gap : chain % gap;
    put_zero(to, places[chain], is_negative);
    places[chain] += gap;
  });
}

// The zeros of an array and the numbers of negative ones a chain, of the state that is known and of the next one.
struct ZeroPasses {
  size_t count;
  size_t gap;
  HeapArray<ZeroBits> bits, moved_bits;
  HeapArray<size_t> heads, next_heads, places;

  explicit ZeroPasses(size_t elements)
      : count(elements), gap(static_cast<size_t>(first_gap(static_cast<int64_t>(elements)))) {
    bits = portlib_allocate_array<ZeroBits>(count / 64 + 1);
    moved_bits = allocate_elements<ZeroBits>(count / 64 + 1);
    heads = portlib_allocate_array<size_t>(gap);
    next_heads = allocate_elements<size_t>(gap);
    places = allocate_elements<size_t>(gap);
  }
  [[nodiscard]] bool has_memory() const { return bits && moved_bits && heads && next_heads && places; }
};

void find_zeros(const uint64_t *keys, const ZeroPasses &passes) {
  for (size_t place = 0, chain = 0; place < passes.count; ++place, chain = chain + 1 == passes.gap ? 0 : chain + 1) {
    const uint64_t key = keys[place];
    const auto zero = static_cast<uint64_t>(is_zero(key));
    const auto negative = static_cast<uint64_t>(key <= minus_zero<uint64_t>);
    passes.bits[place / 64].zeros |= zero << place % 64;
    passes.bits[place / 64].negative |= (zero & negative) << place % 64;
    passes.heads[chain] += negative & ~zero;
  }
}

// To the state before the last pass, whose one chain is the array.
void make_passes(ZeroPasses &passes) {
  while (passes.gap > 1) {
    move_zeros(passes.bits.get(), passes.moved_bits.get(), passes.count, passes.heads.get(), passes.gap,
               passes.places.get());
    std::swap(passes.bits, passes.moved_bits);
    const auto next = static_cast<size_t>(next_gap(static_cast<int64_t>(passes.gap)));
    count_next_heads(passes.heads.get(), passes.gap, passes.next_heads.get(), next);
    std::swap(passes.heads, passes.next_heads);
    passes.gap = next;
  }
}

}  // namespace

bool sort_signed_zeros(uint64_t *keys, size_t count) {
  ZeroPasses passes(count);
  if (!passes.has_memory()) return false;
  find_zeros(keys, passes);
  make_passes(passes);
  sort_keys(keys, count);
  uint64_t *zero = keys + passes.heads[0];
  visit_zeros(passes.bits.get(), count, [&](size_t, uint64_t is_negative) {
    *zero++ = static_cast<uint64_t>(plus_zero<uint64_t> - is_negative);
  });
  return true;
}

}  // namespace qwport::sorting
