// SPDX-License-Identifier: MIT
// A ring of bytes between two threads without a lock. The producer alone stores bytes and moves write_pos,
// the consumer alone moves read_pos; each publishes its own position with release and sees the other's with
// acquire, so that bytes are there before the position that covers them, and are gone before the position
// that frees them. Equal positions mean empty; one byte therefore always stays unused.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>

struct Ring {
  char *start;
  char *last;  // the last byte, not the one behind it
  std::atomic<char *> write_pos;
  std::atomic<char *> read_pos;
};

// Lays an empty ring over size bytes, of which size - 1 can be used. Only while no other thread uses it.
inline void ring_reset(Ring &ring, char *memory, size_t size) {
  ring.start = memory;
  ring.last = memory + (size - 1);
  ring.write_pos.store(memory, std::memory_order_relaxed);
  ring.read_pos.store(memory, std::memory_order_relaxed);
}

// The position count bytes behind one, no more than the ring's size away.
inline char *ring_behind(const Ring &ring, char *position, size_t count) {
  const auto to_end = static_cast<size_t>(ring.last - position) + 1;
  return count < to_end ? position + count : ring.start + (count - to_end);
}

// ---- For the producer ---------------------------------------------------------------------------

inline char *ring_write_pos(const Ring &ring) { return ring.write_pos.load(std::memory_order_relaxed); }

// The bytes that are not waiting to be read, the unused one among them.
inline size_t ring_free(const Ring &ring) {
  const char *write_pos = ring_write_pos(ring);
  const char *read_pos = ring.read_pos.load(std::memory_order_acquire);
  if (write_pos < read_pos) return static_cast<size_t>(read_pos - write_pos);
  return static_cast<size_t>(ring.last - ring.start) + 1 - static_cast<size_t>(write_pos - read_pos);
}

// The bytes from write_pos to the ring's end, free or not.
inline size_t ring_contiguous_room(const Ring &ring) {
  return static_cast<size_t>(ring.last - ring_write_pos(ring)) + 1;
}

// Publishes count bytes, fewer than ring_free, that stand at write_pos.
inline void ring_commit(Ring &ring, size_t count) {
  ring.write_pos.store(ring_behind(ring, ring_write_pos(ring), count), std::memory_order_release);
}

// Copies count bytes, fewer than ring_free, to write_pos and over the ring's end, and publishes them.
inline void ring_store(Ring &ring, const char *bytes, size_t count) {
  const size_t before_end = std::min(count, ring_contiguous_room(ring));
  std::memcpy(ring_write_pos(ring), bytes, before_end);
  std::memcpy(ring.start, bytes + before_end, count - before_end);
  ring_commit(ring, count);
}

// ---- For the consumer ---------------------------------------------------------------------------

inline char *ring_read_pos(const Ring &ring) { return ring.read_pos.load(std::memory_order_relaxed); }

// Where the bytes that are there by now end.
inline char *ring_end(const Ring &ring) { return ring.write_pos.load(std::memory_order_acquire); }

inline bool ring_is_empty(const Ring &ring) { return ring_read_pos(ring) == ring_end(ring); }

// Takes the next byte of a ring that is not empty.
inline char ring_take(Ring &ring) {
  char *position = ring_read_pos(ring);
  const char byte = *position;
  ring.read_pos.store(ring_behind(ring, position, 1), std::memory_order_release);
  return byte;
}

inline void ring_discard(Ring &ring) { ring.read_pos.store(ring_end(ring), std::memory_order_release); }
