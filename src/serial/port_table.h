// SPDX-License-Identifier: MIT
// The process's connected serial ports: the record of each, the table that finds it, and what every routine
// of the family does with its arguments and its result.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include <windows.h>

#include "handle.h"
#include "qwport.h"
#include "ring.h"

namespace qwport::serial {

constexpr uint32_t line_end_mask = QWPORT_SPORT_END_CRLF;
constexpr uint32_t default_line_mode =
    QWPORT_SPORT_DROP_CR | QWPORT_SPORT_DROP_LF | QWPORT_SPORT_END_CR | QWPORT_SPORT_OUT_CR;

// A reader's end while it has none; no error number of the host.
constexpr uint32_t reader_lives = 0xFFFFFFFF;

struct HeapBlockDeleter {
  void operator()(void *block) const { HeapFree(GetProcessHeap(), 0, block); }
};
using HeapBlock = std::unique_ptr<char[], HeapBlockDeleter>;

// Two threads use a record: its owner, and its reader, which touches nothing but the handle, data_event,
// read_event, the read timeouts, chunk_size, the ring and the atomic cells, and nothing once reader_end says so.
struct PortRecord {
  int32_t port;
  uint32_t line_mode;
  HANDLE handle;
  OwnedHandle reader_thread;  // a reader counts as running exactly while this is set
  OwnedHandle data_event;     // signalled when bytes were stored for an owner that waits
  OwnedHandle read_event;     // of the reader's transfers
  OwnedHandle write_event;    // of the owner's
  uint32_t read_total_multiplier;
  uint32_t read_total_constant;
  DWORD owner_thread;
  DWORD reader_thread_id;
  uint32_t chunk_size;  // bytes a device read
  uint32_t ring_size;   // the usable capacity and one
  std::atomic<uint32_t> reader_error;
  std::atomic<uint32_t> reader_end;  // reader_lives, or what ended the reader
  std::atomic<uint32_t> stop_request;
  std::atomic<uint32_t> starting;    // until the reader first lets its starter go
  std::atomic<uint32_t> is_awaited;  // by an owner that found the ring empty
  HeapBlock memory;                  // ring_size bytes of the ring and chunk_size of its staging area
  Ring ring;
  char last_line_byte;  // the last byte that SPORT_READ_LINE took without ending a line
};

// Whether a reader may use the record, be it one that even force did not end.
inline bool has_live_reader(const PortRecord &port) {
  return port.reader_end.load(std::memory_order_acquire) == reader_lives;
}

// The record of a port number, or null. A port belongs to the thread that connected it: others do not find it
// unless any thread's ports are asked for.
enum class Owner { calling_thread, any_thread };
PortRecord *find_port(int32_t port, Owner owner);

// The calling thread's port that an argument names; null for a null address too.
inline PortRecord *find_own_port(const int32_t *port) {
  return port == nullptr ? nullptr : find_port(*port, Owner::calling_thread);
}

// A new record of the calling thread; null if the number is taken, the table is full or memory is short.
PortRecord *add_port(int32_t port);

// Takes the record out of the table and frees it with all that it owns. With a live reader all that stays.
void remove_port(int32_t port);

// A routine's result: a failure is stored for IERRNO, a success leaves that alone.
int32_t port_result(DWORD code);

// Stores an output unless its address is null or cannot be written, as that of a constant which a caller passed.
template <class T, class Value> void store_output(T *output, Value value) {
  if (output != nullptr && !IsBadWritePtr(output, sizeof *output)) *output = static_cast<T>(value);
}

}  // namespace qwport::serial
