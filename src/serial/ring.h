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
#include <string_view>

namespace qwport::serial {

struct Ring {
  char *start;
  char *last;  // the last byte, not the one behind it; behind it stands the staging area
  std::atomic<char *> write_pos;
  std::atomic<char *> read_pos;
};

// Lays an empty ring over size bytes, of which size - 1 can be used. As many bytes as are ever stored at once must
// follow them, the staging area. Only while no other thread uses the ring.
inline void ring_reset(Ring &ring, char *memory, size_t size) {
  ring.start = memory;
  ring.last = memory + (size - 1);
  ring.write_pos.store(memory, std::memory_order_relaxed);
  ring.read_pos.store(memory, std::memory_order_relaxed);
}

inline size_t ring_size(const Ring &ring) { return static_cast<size_t>(ring.last - ring.start) + 1; }

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
  return ring_size(ring) - static_cast<size_t>(write_pos - read_pos);
}

// Publishes count bytes, fewer than ring_free, that were stored at write_pos and on into the staging area.
inline void ring_commit(Ring &ring, size_t count) {
  char *position = ring_write_pos(ring);
  const auto to_end = static_cast<size_t>(ring.last - position) + 1;
  if (count > to_end) std::memcpy(ring.start, ring.last + 1, count - to_end);
  ring.write_pos.store(ring_behind(ring, position, count), std::memory_order_release);
}

// ---- For the consumer ---------------------------------------------------------------------------

inline char *ring_read_pos(const Ring &ring) { return ring.read_pos.load(std::memory_order_relaxed); }

// Where the bytes that are there by now end.
inline char *ring_end(const Ring &ring) { return ring.write_pos.load(std::memory_order_acquire); }

inline bool ring_is_empty(const Ring &ring) { return ring_read_pos(ring) == ring_end(ring); }

// The bytes that are there, up to the ring's last.
inline std::string_view ring_run(const Ring &ring) {
  const char *position = ring_read_pos(ring);
  const char *end = ring_end(ring);
  return {position, static_cast<size_t>((end < position ? ring.last + 1 : end) - position)};
}

// Takes the first bytes of a run, which must not be used from then on.
inline void ring_take(Ring &ring, size_t count) {
  ring.read_pos.store(ring_behind(ring, ring_read_pos(ring), count), std::memory_order_release);
}

inline void ring_discard(Ring &ring) { ring.read_pos.store(ring_end(ring), std::memory_order_release); }

}  // namespace qwport::serial
