// SPDX-License-Identifier: MIT
// A serial device that stands behind every COM port while a SimulatedDevice lives: bytes arrive as a test offers
// them, host calls fail as it says, and what the library asks of the host is recorded.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <map>
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
inline CONDITION_VARIABLE device_changed = CONDITION_VARIABLE_INIT;

struct Locked {
  Locked() { AcquireSRWLockExclusive(&device_lock); }
  ~Locked() { ReleaseSRWLockExclusive(&device_lock); }
};

struct Device {
  struct Failure {
    int code, successes, count;
  };
  std::deque<std::string> input;
  std::string output, printed, record;
  std::map<std::string, Failure> failures;
  size_t write_limit = SIZE_MAX;  // the most bytes that a write takes
  HANDLE handle = nullptr;
  int empty_reads = 0;
  DCB dcb{};
  COMMTIMEOUTS timeouts{};

  // Bytes that arrive, no more of them than this in one read.
  void offer(const std::string &bytes) {
    constexpr size_t at_once = 2048;
    const Locked lock;
    for (size_t i = 0; i < bytes.size(); i += at_once) input.push_back(bytes.substr(i, at_once));
    WakeAllConditionVariable(&device_changed);
  }
  // From now on, after so many more successes, a host call fails with this code; without a code it does not.
  void fail(const std::string &call, int code = -1, int successes = 0) {
    const Locked lock;
    failures.erase(call);
    if (code >= 0) failures[call] = {code, successes, 0};
  }
  // What was written, and the host calls but reads and writes, each with a blank behind, since the last look.
  std::string written() { return std::exchange(output, ""); }
  std::string calls() {
    const Locked lock;
    return std::exchange(record, "");
  }
  // Whether a call is to fail now; it is recorded if it has a name for that.
  bool fails(const char *call, const std::string &name = "") {
    const Locked lock;
    if (!name.empty()) record += name + ' ';
    const auto failure = failures.find(call);
    if (failure == failures.end() || failure->second.successes-- > 0) return false;
    ++failure->second.count;
    if (failure->second.code == ERROR_OPERATION_ABORTED) failure->second.successes = INT_MAX;  // once, as a purge
    SetLastError(static_cast<DWORD>(failure->second.code));
    return true;
  }
  // Waits some milliseconds for bytes, as a device does with its timeouts.
  std::string next_bytes(size_t size) {
    const Locked lock;
    if (input.empty()) SleepConditionVariableSRW(&device_changed, &device_lock, 10, 0);
    if (input.empty()) return {};
    std::string bytes = input.front().substr(0, size);
    input.front().erase(0, size);
    if (input.front().empty()) input.pop_front();
    return bytes;
  }
};
inline Device device;

namespace simulated {

inline HANDLE WINAPI open(const char *name, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES *, DWORD how, DWORD flags,
                          HANDLE) {
  char record[100];
  std::snprintf(record, sizeof record, "open:%s,%lx,%lu,%lu,%lx", name, access, sharing, how, flags);
  if (device.fails("CreateFileA", record)) return INVALID_HANDLE_VALUE;
  return device.handle = CreateEventA(nullptr, TRUE, FALSE, nullptr);
}

inline BOOL WINAPI close(HANDLE handle) {
  if (handle == device.handle && device.fails("CloseHandle", "close")) return FALSE;
  return CloseHandle(handle);
}

inline BOOL WINAPI read(HANDLE, void *target, DWORD size, DWORD *, OVERLAPPED *overlapped) {
  if (device.fails("ReadFile")) return FALSE;
  const std::string bytes = device.next_bytes(size);
  std::copy(bytes.begin(), bytes.end(), static_cast<char *>(target));
  overlapped->InternalHigh = bytes.size();
  // Some hosts say that a read timed out, some do not.
  overlapped->Internal = bytes.empty() && ++device.empty_reads % 2 == 0 ? ERROR_TIMEOUT : 0;
  SetLastError(ERROR_IO_PENDING);
  return FALSE;
}

inline BOOL WINAPI write(HANDLE handle, const void *bytes, DWORD size, DWORD *count, OVERLAPPED *overlapped) {
  const auto *text = static_cast<const char *>(bytes);
  if (handle == GetStdHandle(STD_OUTPUT_HANDLE)) return device.printed.append(text, *count = size), TRUE;
  if (device.fails("WriteFile")) return FALSE;
  overlapped->InternalHigh = std::min<size_t>(size, device.write_limit);
  overlapped->Internal = 0;
  device.output.append(text, overlapped->InternalHigh);
  return TRUE;
}

inline BOOL WINAPI finish(HANDLE, OVERLAPPED *overlapped, DWORD *count, BOOL) {
  if (device.fails("GetOverlappedResult")) return FALSE;
  *count = static_cast<DWORD>(overlapped->InternalHigh);
  SetLastError(static_cast<DWORD>(overlapped->Internal));
  return overlapped->Internal == 0;
}

inline BOOL WINAPI purge(HANDLE, DWORD flags) {
  if (device.fails("PurgeComm", "purge:" + std::to_string(flags))) return FALSE;
  const Locked lock;
  if ((flags & PURGE_RXCLEAR) != 0) device.input.clear();
  return TRUE;
}

inline BOOL WINAPI escape(HANDLE, DWORD n) {
  return !device.fails("EscapeCommFunction", "escape:" + std::to_string(n));
}

template <class Block> BOOL copy(const char *call, const Block &from, Block &to) {
  return device.fails(call) ? FALSE : (to = from, TRUE);
}
inline BOOL WINAPI get_timeouts(HANDLE, COMMTIMEOUTS *t) { return copy("GetCommTimeouts", device.timeouts, *t); }
inline BOOL WINAPI set_timeouts(HANDLE, COMMTIMEOUTS *t) { return copy("SetCommTimeouts", *t, device.timeouts); }
inline BOOL WINAPI get_state(HANDLE, DCB *dcb) { return copy("GetCommState", device.dcb, *dcb); }
inline BOOL WINAPI set_state(HANDLE, DCB *dcb) { return copy("SetCommState", *dcb, device.dcb); }

}  // namespace simulated

class SimulatedDevice {
 public:
  SimulatedDevice() { device = {}; }

 private:
  ImportOverride overrides_[11] = {{library(), "CreateFileA", simulated::open},
                                   {library(), "CloseHandle", simulated::close},
                                   {library(), "ReadFile", simulated::read},
                                   {library(), "WriteFile", simulated::write},
                                   {library(), "GetOverlappedResult", simulated::finish},
                                   {library(), "PurgeComm", simulated::purge},
                                   {library(), "EscapeCommFunction", simulated::escape},
                                   {library(), "GetCommTimeouts", simulated::get_timeouts},
                                   {library(), "SetCommTimeouts", simulated::set_timeouts},
                                   {library(), "GetCommState", simulated::get_state},
                                   {library(), "SetCommState", simulated::set_state}};
};

// A connected port, released at the end; a test that cannot connect ends.
struct ConnectedPort {
  const int32_t number;

  explicit ConnectedPort(int32_t mode = 0, int32_t capacity = 4096, int32_t port = 7) : number(port) {
    if (SPORT_CONNECT_EX(&number, &mode, &capacity) != 0) std::abort();
  }
  ~ConnectedPort() {
    for (int i = 0; i < 3 && SPORT_RELEASE(&number) != ERROR_INVALID_PARAMETER; ++i) continue;
  }
  ConnectedPort(const ConnectedPort &) = delete;
  ConnectedPort &operator=(const ConnectedPort &) = delete;
  // What a reading routine gives: "count:text", or the code with a '!'.
  using Routine = int32_t (*)(const int32_t *, char *, int32_t *, size_t);
  std::string read(Routine routine, size_t length) {
    GuardedText buffer(length);
    int32_t count = -1;
    const int32_t code = routine(&number, buffer.data(), &count, length);
    return code != 0 ? std::to_string(code) + '!' : std::to_string(count) + ':' + buffer.str();
  }
  // "present:count".
  std::string peek(int32_t (*routine)(const int32_t *, int32_t *, int32_t *)) {
    int32_t present = -1, count = -1;
    const int32_t code = routine(&number, &present, &count);
    return code != 0 ? std::to_string(code) + '!' : std::to_string(present) + ':' + std::to_string(count);
  }
  // Waits until so many bytes can be read.
  bool has(int32_t count) {
    return eventually([&] { return peek(SPORT_PEEK_DATA) == "1:" + std::to_string(count); });
  }
};
