// SPDX-License-Identifier: MIT
// The process's connected serial ports: the record of each, the table that finds it, and what every routine
// of the family does with its arguments and its result.
#pragma once

#include <atomic>
#include <cstdint>

#include <windows.h>

#include "qwport.h"
#include "ring.h"

constexpr uint32_t line_end_mask = QWPORT_SPORT_END_CRLF;
constexpr uint32_t default_line_mode =
    QWPORT_SPORT_DROP_CR | QWPORT_SPORT_DROP_LF | QWPORT_SPORT_END_CR | QWPORT_SPORT_OUT_CR;

// Two threads use a record: its owner, and its reader, which touches nothing but the handle, data_event, the
// read timeouts, sizes, staging, the ring and the atomic cells.
struct PortRecord {
  int32_t port;
  uint32_t line_mode;
  HANDLE handle;
  HANDLE reader_thread;  // a reader counts as running exactly while this is not null
  HANDLE data_event;     // signalled when bytes were stored
  uint32_t read_total_multiplier;
  uint32_t read_total_constant;
  DWORD owner_thread;
  DWORD reader_thread_id;
  std::atomic<uint32_t> reader_error;
  uint32_t chunk_size;  // bytes a device read
  uint32_t ring_size;   // the usable capacity and one
  std::atomic<uint32_t> stop_request;
  std::atomic<uint32_t> starting;  // until the reader first lets its starter go
  char *staging;                   // chunk_size bytes, for reads that the ring's end would cut
  Ring ring;
  char last_line_byte;  // the last byte that SPORT_READ_LINE took without ending a line
};

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

// Takes the record out of the table and frees it, with its buffers and its event. Its reader must have ended.
void remove_port(int32_t port);

// The host's verdict as a code: call it on the result of the host call itself.
inline DWORD code_of(BOOL done) { return done ? ERROR_SUCCESS : GetLastError(); }

// A routine's result: a failure is stored for IERRNO, a success leaves that alone.
int32_t port_result(DWORD code);

// Stores an output unless its address is null or cannot be written, as that of a constant which a caller passed.
template <class T, class Value> void store_output(T *output, Value value) {
  if (output != nullptr && !IsBadWritePtr(output, sizeof *output)) *output = static_cast<T>(value);
}
