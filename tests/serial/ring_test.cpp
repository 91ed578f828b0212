// SPDX-License-Identifier: MIT
// The ring by itself: positions, room and wrap.
#include <doctest/doctest.h>

#include <string>

#include "ring.h"

namespace {

std::string take_all(Ring &ring) {
  std::string bytes;
  while (!ring_is_empty(ring)) bytes += ring_take(ring);
  return bytes;
}

}  // namespace

TEST_CASE("every chunk from every position keeps its bytes, its order and its room") {
  constexpr size_t size = 7;
  char memory[size + 1];
  memory[size] = '!';
  for (size_t at = 0; at < size; ++at) {
    for (size_t count = 0; count < size; ++count) {
      Ring ring{};
      ring_reset(ring, memory, size);
      ring_store(ring, "abcdefg", at < size - 1 ? at : size - 1);
      if (at == size - 1) CHECK(ring_free(ring) == 1);
      take_all(ring);
      CHECK(ring_free(ring) == size);
      CHECK(ring_contiguous_room(ring) == size - at);
      ring_store(ring, "123456", count);
      CHECK(ring_free(ring) == size - count);
      CHECK(ring_is_empty(ring) == (count == 0));
      CHECK(take_all(ring) == std::string("123456", count));
      ring_store(ring, "xy", 2);
      ring_discard(ring);
      CHECK(ring_is_empty(ring));
    }
  }
  CHECK(memory[size] == '!');
}

TEST_CASE("bytes stored in place up to the ring's end wrap its position") {
  char memory[5];
  Ring ring{};
  ring_reset(ring, memory, sizeof memory);
  ring_store(ring, "abc", 3);
  take_all(ring);
  CHECK(ring_contiguous_room(ring) == 2);
  std::memcpy(ring_write_pos(ring), "de", 2);
  ring_commit(ring, 2);
  CHECK(ring_write_pos(ring) == memory);
  CHECK(take_all(ring) == "de");
}
