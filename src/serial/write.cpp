// SPDX-License-Identifier: MIT
// Writing data and lines, from the caller's thread straight to the device.
#include "qwport.h"
#include "reader.h"
#include "text.h"
#include "transfer.h"

namespace qwport::serial {
namespace {

// A count that is present and not 0 rules whatever the text's length is.
DWORD length_to_write(const char *buffer, const int32_t *count, size_t buffer_len) {
  if (count != nullptr && *count != 0) return static_cast<DWORD>(*count);
  return static_cast<DWORD>(portlib_trimmed_length(buffer, static_cast<uint32_t>(buffer_len)));
}

DWORD write_data(const PortRecord &port, const char *bytes, DWORD length, int32_t *count) {
  const Transfer data = write_device(port.handle, port.write_event.get(), bytes, length);
  if (data.code != ERROR_SUCCESS) return data.code;
  store_output(count, data.count);
  return data.count == length ? ERROR_SUCCESS : ERROR_IO_INCOMPLETE;
}

// The line end is written even if it is empty, and not looked at if it is cut.
DWORD write_line_end(const PortRecord &port, DWORD data_length, int32_t *count) {
  char line_end[2];
  DWORD length = 0;
  if ((port.line_mode & QWPORT_SPORT_OUT_CR) != 0) line_end[length++] = '\r';
  if ((port.line_mode & QWPORT_SPORT_OUT_LF) != 0) line_end[length++] = '\n';
  const Transfer end = write_device(port.handle, port.write_event.get(), line_end, length);
  if (end.code == ERROR_SUCCESS) store_output(count, data_length + end.count);
  return end.code;
}

enum class LineEnd { none, of_port };

DWORD write(const int32_t *number, const char *buffer, int32_t *count, size_t buffer_len, LineEnd line_end) {
  PortRecord *port = find_own_port(number);
  if (port == nullptr || (count != nullptr && *count < 0)) return ERROR_INVALID_PARAMETER;
  DWORD code = need_reader(*port);
  if (code != ERROR_SUCCESS) return code;
  const DWORD length = length_to_write(buffer, count, buffer_len);
  if (length == 0) store_output(count, 0);
  if (length == 0 && line_end == LineEnd::none) return ERROR_SUCCESS;
  code = need_event(port->write_event, TRUE);
  if (code == ERROR_SUCCESS && length != 0) code = write_data(*port, buffer, length, count);
  if (code != ERROR_SUCCESS || line_end == LineEnd::none) return code;
  return write_line_end(*port, length, count);
}

}  // namespace
}  // namespace qwport::serial

using namespace qwport::serial;

int32_t SPORT_WRITE_DATA(const int32_t *port, const char *buffer, int32_t *count, size_t buffer_len) {
  return port_result(write(port, buffer, count, buffer_len, LineEnd::none));
}

int32_t SPORT_WRITE_LINE(const int32_t *port, const char *buffer, int32_t *count, size_t buffer_len) {
  return port_result(write(port, buffer, count, buffer_len, LineEnd::of_port));
}
