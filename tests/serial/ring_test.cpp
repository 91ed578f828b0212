// SPDX-License-Identifier: MIT
// The ring by itself: positions, room and wrap.
#include <doctest/doctest.h>

#include <string>

#include "guarded_text.h"
#include "ring.h"

TEST_CASE("every chunk from every position keeps its bytes, its order and its room") {
  constexpr size_t size = 7;
  GuardedText memory(size);
  Ring ring{};
  const auto take_all = [&] {
    std::string bytes;
    while (!ring_is_empty(ring)) bytes += ring_take(ring);
    return bytes;
  };
  for (size_t at = 0; at < size; ++at) {
    for (size_t count = 0; count < size; ++count) {
      ring_reset(ring, memory.data(), size);
      ring_store(ring, "abcdef", at);
      CHECK(ring_free(ring) == size - at);
      take_all();
      CHECK((ring_free(ring) == size && ring_contiguous_room(ring) == size - at));
      ring_store(ring, "123456", count);
      CHECK((ring_free(ring) == size - count && ring_is_empty(ring) == (count == 0)));
      CHECK(take_all() == std::string("123456", count));
      ring_store(ring, "xy", 2);
      ring_discard(ring);
      CHECK(ring_is_empty(ring));
    }
  }
}
