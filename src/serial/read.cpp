// SPDX-License-Identifier: MIT
// Reading data and lines out of a port's ring, and looking into it.
#include <algorithm>
#include <cstring>

#include "qwport.h"
#include "reader.h"

namespace qwport::serial {
namespace {

constexpr DWORD wait_interval_ms = 10'000;

// For some 0.1 ms an owner only gives way to others: what streams in comes within that, and costs neither side a call
// of the host then.
constexpr int quick_looks = 100;

// ---- What the line mode says of a byte ----------------------------------------------------------

bool is_stored(uint32_t line_mode, char byte) {
  if (byte == '\r') return (line_mode & QWPORT_SPORT_DROP_CR) == 0;
  if (byte == '\n') return (line_mode & QWPORT_SPORT_DROP_LF) == 0;
  return true;
}

bool ends_line(uint32_t line_mode, char byte, char previous) {
  switch (line_mode & line_end_mask) {
    case QWPORT_SPORT_END_CR:
      return byte == '\r';
    case QWPORT_SPORT_END_LF:
      return byte == '\n';
    case QWPORT_SPORT_END_CRLF:
      return byte == '\n' && previous == '\r';
    default:
      return false;
  }
}

// ---- Waiting ------------------------------------------------------------------------------------

// Finds the calling thread's port, with a healthy reader.
DWORD find_readable_port(const int32_t *number, PortRecord *&port) {
  port = find_own_port(number);
  if (port == nullptr) return ERROR_INVALID_PARAMETER;
  const DWORD code = need_reader(*port);
  return code != ERROR_SUCCESS ? code : port->reader_error.load(std::memory_order_acquire);
}

// A wait that fails is no error of the port: callers meet it as an exception, and as a code if they resume.
DWORD raise_wait_failure(DWORD code) {
  RaiseException(code, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  return code;
}

// What ended the reader of an empty ring, or 0. The end is looked at first: the last bytes come before it.
DWORD end_of_empty(const PortRecord &port) {
  const uint32_t end = port.reader_end.load(std::memory_order_acquire);
  return end == reader_lives || !ring_is_empty(port.ring) ? ERROR_SUCCESS : end;
}

// Waits, without a limit, until the ring has bytes or its reader has ended; what ended it is the code then.
DWORD wait_for_data(PortRecord &port) {
  for (int looks = 0; looks < quick_looks && ring_is_empty(port.ring); ++looks) Sleep(0);
  while (ring_is_empty(port.ring)) {
    port.is_awaited.store(1, std::memory_order_relaxed);
    std::atomic_thread_fence(std::memory_order_seq_cst);
    const DWORD end = end_of_empty(port);
    if (end != ERROR_SUCCESS) return end;
    if (!ring_is_empty(port.ring)) break;
    const HANDLE objects[] = {port.data_event.get(), port.reader_thread.get()};
    const DWORD wait = WaitForMultipleObjects(2, objects, FALSE, wait_interval_ms);
    if (wait == WAIT_FAILED) return raise_wait_failure(GetLastError());
    // A thread that somebody else ended has left no word.
    uint32_t end_left = reader_lives;
    if (wait == WAIT_OBJECT_0 + 1) port.reader_end.compare_exchange_strong(end_left, ERROR_INVALID_HANDLE);
  }
  port.is_awaited.store(0, std::memory_order_relaxed);
  return ERROR_SUCCESS;
}

// ---- Taking and counting ------------------------------------------------------------------------

// Takes what is there. Dropped bytes count against the length too, unlike in lines; this is meant.
uint32_t take_data(PortRecord &port, char *buffer, uint32_t length) {
  uint32_t stored = 0;
  for (uint32_t left = length; left > 0 && !ring_is_empty(port.ring);) {
    const std::string_view whole = ring_run(port.ring);
    const std::string_view run(whole.data(), std::min<size_t>(whole.size(), left));
    for (const char byte : run) {
      buffer[stored] = byte;
      if (is_stored(port.line_mode, byte)) ++stored;
    }
    ring_take(port.ring, run.size());
    left -= static_cast<uint32_t>(run.size());
  }
  return stored;
}

// Takes bytes until a line ends or the buffer is full. The last byte of a line that ended is not remembered, so
// that a carriage return before it still counts for the next call; this is meant.
DWORD take_line(PortRecord &port, char *buffer, uint32_t length, uint32_t &stored) {
  bool is_line = false;
  while (stored < length && !is_line) {
    const DWORD code = wait_for_data(port);
    if (code != ERROR_SUCCESS) return code;
    const std::string_view run = ring_run(port.ring);
    size_t taken = 0;
    while (taken < run.size() && stored < length && !is_line) {
      const char byte = run[taken++];
      if (is_stored(port.line_mode, byte)) buffer[stored++] = byte;
      is_line = ends_line(port.line_mode, byte, port.last_line_byte);
      if (!is_line) port.last_line_byte = byte;
    }
    ring_take(port.ring, taken);
  }
  return ERROR_SUCCESS;
}

enum class Extent { all, first_line };

uint32_t count_waiting(const PortRecord &port, Extent extent) {
  uint32_t count = 0;
  char previous = '\0';
  const char *end = ring_end(port.ring);
  for (char *position = ring_read_pos(port.ring); position != end; position = ring_behind(port.ring, position, 1)) {
    if (is_stored(port.line_mode, *position)) ++count;
    if (extent == Extent::first_line && ends_line(port.line_mode, *position, previous)) break;
    previous = *position;
  }
  return count;
}

DWORD read(const int32_t *number, char *buffer, int32_t *count, size_t buffer_len, Extent extent) {
  const auto length = static_cast<uint32_t>(buffer_len);
  PortRecord *port = nullptr;
  DWORD code = find_readable_port(number, port);
  if (code == ERROR_SUCCESS) code = wait_for_data(*port);
  if (code != ERROR_SUCCESS) return code;
  uint32_t stored = 0;
  if (extent == Extent::all) {
    stored = take_data(*port, buffer, length);
  } else {
    code = take_line(*port, buffer, length, stored);
  }
  if (code != ERROR_SUCCESS) return code;
  store_output(count, stored);
  std::memset(buffer + stored, ' ', length - stored);
  return ERROR_SUCCESS;
}

DWORD peek(const int32_t *number, int32_t *present, int32_t *count, Extent extent) {
  PortRecord *port = nullptr;
  DWORD code = find_readable_port(number, port);
  if (code == ERROR_SUCCESS) code = end_of_empty(*port);
  if (code != ERROR_SUCCESS) return code;
  const uint32_t waiting = count_waiting(*port, extent);
  store_output(present, waiting != 0 ? 1 : 0);
  store_output(count, waiting);
  return ERROR_SUCCESS;
}

}  // namespace
}  // namespace qwport::serial

using namespace qwport::serial;

int32_t SPORT_READ_DATA(const int32_t *port, char *buffer, int32_t *count, size_t buffer_len) {
  return port_result(read(port, buffer, count, buffer_len, Extent::all));
}

int32_t SPORT_READ_LINE(const int32_t *port, char *buffer, int32_t *count, size_t buffer_len) {
  return port_result(read(port, buffer, count, buffer_len, Extent::first_line));
}

int32_t SPORT_PEEK_DATA(const int32_t *port, int32_t *present, int32_t *count) {
  return port_result(peek(port, present, count, Extent::all));
}

int32_t SPORT_PEEK_LINE(const int32_t *port, int32_t *present, int32_t *count) {
  return port_result(peek(port, present, count, Extent::first_line));
}
