// SPDX-License-Identifier: MIT
// Reading data and lines out of a port's ring, and looking into it.
#include <cstring>

#include "qwport.h"
#include "reader.h"

namespace {

constexpr DWORD wait_interval_ms = 10'000;

// ---- What the line mode says of a byte ----------------------------------------------------------

bool is_stored(const PortRecord &port, char byte) {
  if (byte == '\r') return (port.line_mode & QWPORT_SPORT_DROP_CR) == 0;
  if (byte == '\n') return (port.line_mode & QWPORT_SPORT_DROP_LF) == 0;
  return true;
}

bool ends_line(const PortRecord &port, char byte, char previous) {
  switch (port.line_mode & line_end_mask) {
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

// Waits, without a limit, until the ring has bytes or its reader has ended; what ended it is the code then.
DWORD wait_for_data(PortRecord &port) {
  if (!ring_is_empty(port.ring)) {
    WaitForSingleObject(port.data_event, 0);  // its signal is spent on these bytes
    return ERROR_SUCCESS;
  }
  while (true) {
    const HANDLE objects[] = {port.data_event, port.reader_thread};
    const DWORD wait = WaitForMultipleObjects(2, objects, FALSE, wait_interval_ms);
    if (wait == WAIT_FAILED) return raise_wait_failure(GetLastError());
    const DWORD code = reader_end_code(port);  // before the ring is looked at: its last bytes come first
    if (!ring_is_empty(port.ring)) return ERROR_SUCCESS;
    if (code != STILL_ACTIVE) return code;
  }
}

// ---- Taking and counting ------------------------------------------------------------------------

void finish_buffer(char *buffer, uint32_t length, uint32_t stored, int32_t *count) {
  store_output(count, stored);
  std::memset(buffer + stored, ' ', length - stored);
}

// Takes what is there. Dropped bytes count against the length too, unlike in lines; this is meant.
uint32_t take_data(PortRecord &port, char *buffer, uint32_t length) {
  uint32_t stored = 0;
  for (uint32_t taken = 0; taken < length && !ring_is_empty(port.ring); ++taken) {
    const char byte = ring_take(port.ring);
    if (is_stored(port, byte)) buffer[stored++] = byte;
  }
  return stored;
}

// Takes bytes until a line ends or the buffer is full. The last byte of a line that ended is not remembered, so
// that a carriage return before it still counts for the next call; this is meant.
DWORD take_line(PortRecord &port, char *buffer, uint32_t length, uint32_t &stored) {
  while (stored < length) {
    if (ring_is_empty(port.ring)) {
      const DWORD code = wait_for_data(port);
      if (code != ERROR_SUCCESS) return code;
    }
    const char byte = ring_take(port.ring);
    if (is_stored(port, byte)) buffer[stored++] = byte;
    if (ends_line(port, byte, port.last_line_byte)) break;
    port.last_line_byte = byte;
  }
  return ERROR_SUCCESS;
}

enum class Extent { all, first_line };

uint32_t count_waiting(const PortRecord &port, Extent extent) {
  uint32_t count = 0;
  char previous = '\0';
  const char *end = ring_end(port.ring);
  for (char *position = ring_read_pos(port.ring); position != end; position = ring_behind(port.ring, position, 1)) {
    if (is_stored(port, *position)) ++count;
    if (extent == Extent::first_line && ends_line(port, *position, previous)) break;
    previous = *position;
  }
  return count;
}

DWORD read_data(const int32_t *number, char *buffer, int32_t *count, uint32_t length) {
  PortRecord *port = nullptr;
  DWORD code = find_readable_port(number, port);
  if (code == ERROR_SUCCESS) code = wait_for_data(*port);
  if (code == ERROR_SUCCESS) finish_buffer(buffer, length, take_data(*port, buffer, length), count);
  return code;
}

DWORD read_line(const int32_t *number, char *buffer, int32_t *count, uint32_t length) {
  PortRecord *port = nullptr;
  uint32_t stored = 0;
  DWORD code = find_readable_port(number, port);
  if (code == ERROR_SUCCESS) code = wait_for_data(*port);
  if (code == ERROR_SUCCESS) code = take_line(*port, buffer, length, stored);
  if (code == ERROR_SUCCESS) finish_buffer(buffer, length, stored, count);
  return code;
}

DWORD peek(const int32_t *number, int32_t *present, int32_t *count, Extent extent) {
  PortRecord *port = nullptr;
  const DWORD code = find_readable_port(number, port);
  if (code != ERROR_SUCCESS) return code;
  const DWORD end_code = reader_end_code(*port);
  if (end_code != STILL_ACTIVE && ring_is_empty(port->ring)) return end_code;
  const uint32_t waiting = count_waiting(*port, extent);
  store_output(present, waiting != 0 ? 1 : 0);
  store_output(count, waiting);
  return ERROR_SUCCESS;
}

}  // namespace

int32_t SPORT_READ_DATA(const int32_t *port, char *buffer, int32_t *count, size_t buffer_len) {
  return port_result(read_data(port, buffer, count, static_cast<uint32_t>(buffer_len)));
}

int32_t SPORT_READ_LINE(const int32_t *port, char *buffer, int32_t *count, size_t buffer_len) {
  return port_result(read_line(port, buffer, count, static_cast<uint32_t>(buffer_len)));
}

int32_t SPORT_PEEK_DATA(const int32_t *port, int32_t *present, int32_t *count) {
  return port_result(peek(port, present, count, Extent::all));
}

int32_t SPORT_PEEK_LINE(const int32_t *port, int32_t *present, int32_t *count) {
  return port_result(peek(port, present, count, Extent::first_line));
}
