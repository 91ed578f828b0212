// SPDX-License-Identifier: MIT
// Connecting and releasing ports, and what is passed through to the host.
#include "format.h"
#include "handle.h"
#include "qwport.h"
#include "reader.h"
#include "transfer.h"

namespace qwport::serial {
namespace {

constexpr uint32_t default_capacity = 16384;
constexpr int32_t least_capacity = 4096;

// Opens and purges the device of a port number.
DWORD open_device(int32_t port, OwnedHandle &device) {
  char name[sizeof R"(\\.\COM)" + 10];
  portlib_format(name, sizeof name, R"(\\.\COM%d)", port);
  HANDLE handle = CreateFileA(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                              FILE_FLAG_OVERLAPPED | FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return GetLastError();
  device.reset(handle);
  return code_of(PurgeComm(handle, purge_all));
}

DWORD set_device_timeouts(const PortRecord &port) {
  return change_timeouts(port.handle, [&port](COMMTIMEOUTS &timeouts) {
    timeouts.ReadIntervalTimeout = 200;
    timeouts.ReadTotalTimeoutMultiplier = port.read_total_multiplier;
    timeouts.ReadTotalTimeoutConstant = port.read_total_constant;
    timeouts.WriteTotalTimeoutMultiplier = 2;
    timeouts.WriteTotalTimeoutConstant = 2000;
  });
}

DWORD connect_port(const int32_t *number, const int32_t *options, uint32_t capacity) {
  if (number == nullptr || *number < 0 || find_port(*number, Owner::any_thread) != nullptr)
    return ERROR_INVALID_PARAMETER;
  OwnedHandle device;
  DWORD code = open_device(*number, device);
  if (code != ERROR_SUCCESS) return code;
  PortRecord *port = add_port(*number);
  if (port == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
  port->handle = device.get();
  port->line_mode = options == nullptr ? default_line_mode : static_cast<uint32_t>(*options);
  port->ring_size = capacity + 1;
  code = set_device_timeouts(*port);
  if (code != ERROR_SUCCESS) {
    remove_port(*number);
    return code;
  }
  // From here on the port is the caller's to release, with or without a reader.
  static_cast<void>(device.release());
  return start_reader(*port);
}

uint32_t capacity_of(const int32_t *buffer_size) {
  if (buffer_size == nullptr) return default_capacity;
  return static_cast<uint32_t>(*buffer_size < least_capacity ? least_capacity : *buffer_size);
}

// Releasing takes two calls while a reader runs, the first of which only ends the reader; this is meant.
DWORD release_port(const int32_t *number) {
  PortRecord *port = find_own_port(number);
  if (port == nullptr) return ERROR_INVALID_PARAMETER;
  if (port->reader_thread != nullptr) return stop_reader(*port);
  PurgeComm(port->handle, purge_all);
  const DWORD code = code_of(CloseHandle(port->handle));
  remove_port(*number);
  return code;
}

DWORD cancel_io(const int32_t *number) {
  PortRecord *port = find_own_port(number);
  if (port == nullptr) return ERROR_INVALID_PARAMETER;
  const DWORD code = port->reader_thread == nullptr ? ERROR_SUCCESS : stop_reader(*port);
  return code != ERROR_SUCCESS ? code : code_of(PurgeComm(port->handle, purge_all));
}

DWORD get_handle(const int32_t *number, int64_t *handle) {
  const PortRecord *port = find_own_port(number);
  if (port == nullptr) return ERROR_INVALID_PARAMETER;
  store_output(handle, reinterpret_cast<intptr_t>(port->handle));
  return ERROR_SUCCESS;
}

// Passes a function number to the host, which judges it.
DWORD pass_function(BOOL(WINAPI *host_call)(HANDLE, DWORD), const int32_t *number, const int32_t *function) {
  const PortRecord *port = find_own_port(number);
  if (port == nullptr || function == nullptr) return ERROR_INVALID_PARAMETER;
  return code_of(host_call(port->handle, static_cast<DWORD>(*function)));
}

}  // namespace
}  // namespace qwport::serial

using namespace qwport::serial;

int32_t SPORT_CONNECT(const int32_t *port, const int32_t *options) {
  return port_result(connect_port(port, options, default_capacity));
}

int32_t SPORT_CONNECT_EX(const int32_t *port, const int32_t *options, const int32_t *bufferSize) {
  return port_result(connect_port(port, options, capacity_of(bufferSize)));
}

int32_t SPORT_RELEASE(const int32_t *port) { return port_result(release_port(port)); }

int32_t SPORT_GET_HANDLE(const int32_t *port, int64_t *handle) { return port_result(get_handle(port, handle)); }

int32_t SPORT_SPECIAL_FUNC(const int32_t *port, const int32_t *function) {
  return port_result(pass_function(EscapeCommFunction, port, function));
}

int32_t SPORT_PURGE(const int32_t *port, const int32_t *function) {
  return port_result(pass_function(PurgeComm, port, function));
}

int32_t SPORT_CANCEL_IO(const int32_t *port) { return port_result(cancel_io(port)); }
