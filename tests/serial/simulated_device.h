// SPDX-License-Identifier: MIT
// A serial device that stands behind every COM port while a SimulatedDevice lives: bytes arrive as a test offers
// them, any host call of the family fails as it says, and what the library holds of the host is counted.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <functional>
#include <regex>
#include <string>
#include <utility>

#include <windows.h>

#include "guarded_text.h"
#include "import_override.h"
#include "library.h"
#include "qwport.h"

// Calls a procedure until it gives true; false after a minute.
template <class Condition> bool eventually(Condition condition) {
  for (const ULONGLONG start = GetTickCount64(); GetTickCount64() - start < 60'000; Sleep(1))
    if (condition()) return true;
  return false;
}

inline SRWLOCK device_lock = SRWLOCK_INIT;

struct Locked {
  Locked() { AcquireSRWLockExclusive(&device_lock); }
  ~Locked() { ReleaseSRWLockExclusive(&device_lock); }
};

struct Device {
  std::deque<std::string> input;
  std::string output, printed, record, failing;
  DWORD failure = 0, end_in_time = 0;  // with which transfers end whose time is over, as hosts do in several ways
  size_t write_limit = SIZE_MAX;       // the most bytes that a write takes
  bool has_line_error = false;
  HANDLE handle = nullptr;
  std::function<void()> at_read;  // called when the library begins a read
  DCB dcb{};
  COMMTIMEOUTS timeouts{};

  // Bytes that arrive, no more of them than this in one read.
  void offer(const std::string &bytes) {
    constexpr size_t at_once = 2048;
    const Locked lock;
    for (size_t i = 0; i < bytes.size(); i += at_once) input.push_back(bytes.substr(i, at_once));
  }
  // From now on a host call fails with this code; without a name none does.
  void fail(const std::string &call = "", DWORD code = ERROR_GEN_FAILURE) {
    const Locked lock;
    failing = call, failure = code;
  }
  bool fails(const std::string &call) {
    const Locked lock;
    if (failing != call) return false;
    SetLastError(failure);
    return true;
  }
  BOOL note(const std::string &call) {
    const Locked lock;
    record += call + ' ';
    return TRUE;
  }
  // What was asked of the device, besides transfers, since the last look.
  std::string calls() {
    const Locked lock;
    return std::exchange(record, "");
  }
  std::string next_bytes(size_t size) {
    const Locked lock;
    if (input.empty()) return {};
    std::string bytes = input.front().substr(0, size);
    input.front().erase(0, size);
    if (input.front().empty()) input.pop_front();
    return bytes;
  }
};
inline Device device;
inline std::atomic<int> pending_transfers;

namespace simulated {

inline HANDLE WINAPI open(const char *name, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES *, DWORD how, DWORD flags,
                          HANDLE) {
  char call[100];
  std::snprintf(call, sizeof call, "open:%s,%lx,%lu,%lu,%lx", name, access, sharing, how, flags);
  device.note(call);
  return device.handle = CreateEventA(nullptr, TRUE, FALSE, nullptr);
}
inline BOOL WINAPI close(HANDLE handle) {
  if (handle == device.handle) device.note("close");
  return CloseHandle(handle);
}

inline BOOL begin(OVERLAPPED *overlapped, size_t count, DWORD end) {
  overlapped->InternalHigh = count;
  overlapped->Offset = end;
  overlapped->Internal = STATUS_PENDING;
  ++pending_transfers;
  SetLastError(ERROR_IO_PENDING);
  return FALSE;
}
inline BOOL WINAPI read(HANDLE, void *target, DWORD size, DWORD *, OVERLAPPED *overlapped) {
  if (device.at_read) device.at_read();
  const std::string bytes = device.next_bytes(size);
  std::copy(bytes.begin(), bytes.end(), static_cast<char *>(target));
  if (bytes.empty()) Sleep(1);  // a device waits for its timeouts
  const DWORD end = bytes.empty() ? device.end_in_time : ERROR_SUCCESS;
  return begin(overlapped, bytes.size(), device.has_line_error ? ERROR_OPERATION_ABORTED : end);
}
inline BOOL WINAPI write(HANDLE handle, const void *bytes, DWORD size, DWORD *count, OVERLAPPED *overlapped) {
  const auto *text = static_cast<const char *>(bytes);
  if (handle == GetStdHandle(STD_OUTPUT_HANDLE)) return device.printed.append(text, *count = size), TRUE;
  const size_t taken = std::min<size_t>(size, device.write_limit);
  {
    const Locked lock;
    device.output.append(text, taken);
  }
  return begin(overlapped, taken, taken < size ? device.end_in_time : ERROR_SUCCESS);
}
inline BOOL WINAPI cancel(HANDLE, OVERLAPPED *overlapped) {
  if (overlapped->Internal == STATUS_PENDING) --pending_transfers;
  overlapped->Internal = 0;
  return TRUE;
}
inline BOOL WINAPI finish(HANDLE file, OVERLAPPED *overlapped, DWORD *count, BOOL) {
  cancel(file, overlapped);
  SetLastError(overlapped->Offset);
  if (overlapped->Offset == 0) *count = static_cast<DWORD>(overlapped->InternalHigh);
  return overlapped->Offset == 0;
}
inline BOOL WINAPI clear(HANDLE, DWORD *, COMSTAT *) { return device.has_line_error = false, TRUE; }
inline BOOL WINAPI purge(HANDLE, DWORD flags) {
  const Locked lock;
  if ((flags & PURGE_RXCLEAR) != 0) device.input.clear();
  device.record += "purge:" + std::to_string(flags) + ' ';
  return TRUE;
}
inline BOOL WINAPI escape(HANDLE, DWORD function) { return device.note("escape:" + std::to_string(function)); }
inline BOOL WINAPI get_timeouts(HANDLE, COMMTIMEOUTS *timeouts) { return *timeouts = device.timeouts, TRUE; }
inline BOOL WINAPI set_timeouts(HANDLE, COMMTIMEOUTS *timeouts) { return device.timeouts = *timeouts, TRUE; }
inline BOOL WINAPI get_state(HANDLE, DCB *dcb) { return *dcb = device.dcb, TRUE; }
inline BOOL WINAPI set_state(HANDLE, DCB *dcb) { return device.dcb = *dcb, TRUE; }

// The procedure behind a name.
inline void *find_simulation(const std::string &) { return nullptr; }
template <class Function>
void *find_simulation(const std::string &wanted, const char *name, Function *simulation, auto... others) {
  return wanted == name ? reinterpret_cast<void *>(simulation) : find_simulation(wanted, others...);
}

inline bool choose(HostCall &call) {
  call.simulation =
      find_simulation(call.name, "CreateFileA", open, "CloseHandle", close, "ReadFile", read, "WriteFile", write,
                      "GetOverlappedResult", finish, "CancelIoEx", cancel, "ClearCommError", clear, "PurgeComm", purge,
                      "EscapeCommFunction", escape, "GetCommState", get_state, "SetCommState", set_state,
                      "GetCommTimeouts", get_timeouts, "SetCommTimeouts", set_timeouts);
  if (call.name == "CreateFileA") call.failure = -1;
  if (std::regex_match(call.name, std::regex("Create(File|Event)A|CreateThread|HeapAlloc|GetModuleHandleExA")))
    call.holding = Holding::gives;
  if (std::regex_match(call.name, std::regex("CloseHandle|HeapFree|FreeLibrary(AndExitThread)?")))
    call.holding = Holding::takes;
  return call.simulation != nullptr || call.holding != Holding::none;
}

}  // namespace simulated

class SimulatedDevice {
 public:
  static inline std::atomic<int> held;  // of the host, by the library

  explicit SimulatedDevice(HMODULE module = library()) : calls_(module, held, fails, simulated::choose) {
    device = {};
    held = 0;
  }

 private:
  static bool fails(const HostCall &call) { return device.fails(call.name); }
  HostCalls calls_;
};

inline void release_port(int32_t port) {
  for (int i = 0; i < 3 && SPORT_RELEASE(&port) != ERROR_INVALID_PARAMETER; ++i) continue;
}

// A connected port, released at the end; a test that cannot connect ends.
struct ConnectedPort {
  const int32_t number;

  explicit ConnectedPort(int32_t mode = 0, int32_t port = 7, int32_t capacity = 4096) : number(port) {
    if (SPORT_CONNECT_EX(&number, &mode, &capacity) != 0) std::abort();
  }
  ~ConnectedPort() { release_port(number); }
  ConnectedPort(const ConnectedPort &) = delete;
  ConnectedPort &operator=(const ConnectedPort &) = delete;
  // What a reading routine gives, "count:text", or a peeking one, "present:count"; else the code with a '!'.
  std::string read(decltype(SPORT_READ_DATA) *routine, size_t length) const {
    GuardedText buffer(length);
    int32_t count = -1;
    const int32_t code = routine(&number, buffer.data(), &count, length);
    return code != 0 ? std::to_string(code) + '!' : std::to_string(count) + ':' + buffer.str();
  }
  std::string peek(decltype(SPORT_PEEK_DATA) *routine = SPORT_PEEK_DATA) const {
    int32_t present = -1, count = -1;
    const int32_t code = routine(&number, &present, &count);
    return code != 0 ? std::to_string(code) + '!' : std::to_string(present) + ':' + std::to_string(count);
  }
  // Waits until so many bytes can be read.
  bool has(size_t count) const {
    return eventually([&] { return peek() == "1:" + std::to_string(count); });
  }
};
