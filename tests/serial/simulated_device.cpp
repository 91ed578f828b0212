// SPDX-License-Identifier: MIT
#include "simulated_device.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <map>
#include <utility>

#include "library.h"
#include "qwport.h"

namespace {

struct Failure {
  int code, successes;
  bool has_failed = false;
};

struct Device {
  std::deque<std::string> input;
  std::string written, calls;
  std::map<std::string, Failure> failures;
  size_t write_limit = SIZE_MAX;
  HANDLE handle = nullptr;
  int empty_reads = 0;
  DCB dcb{};
  COMMTIMEOUTS timeouts{};
};

Device device;
SRWLOCK device_lock = SRWLOCK_INIT;
CONDITION_VARIABLE device_changed = CONDITION_VARIABLE_INIT;

struct Locked {
  Locked() { AcquireSRWLockExclusive(&device_lock); }
  ~Locked() { ReleaseSRWLockExclusive(&device_lock); }
};

// Whether a call is to fail now; it is then recorded if it has a record.
bool fails(const char *call, const std::string &record = "") {
  const Locked lock;
  if (!record.empty()) device.calls += record + ' ';
  const auto failure = device.failures.find(call);
  if (failure == device.failures.end() || failure->second.successes-- > 0) return false;
  failure->second.has_failed = true;
  SetLastError(static_cast<DWORD>(failure->second.code));
  return true;
}

HANDLE WINAPI open(const char *name, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES *, DWORD how, DWORD flags,
                   HANDLE) {
  char record[100];
  std::snprintf(record, sizeof record, "open:%s,%lx,%lu,%lu,%lx", name, access, sharing, how, flags);
  if (fails("CreateFileA", record)) return INVALID_HANDLE_VALUE;
  return device.handle = CreateEventA(nullptr, TRUE, FALSE, nullptr);
}

BOOL WINAPI close(HANDLE handle) {
  if (handle == device.handle && fails("CloseHandle", "close")) return FALSE;
  return CloseHandle(handle);
}

// Waits some milliseconds for bytes, as a device does with its timeouts.
std::string next_bytes(size_t size) {
  const Locked lock;
  if (device.input.empty()) SleepConditionVariableSRW(&device_changed, &device_lock, 10, 0);
  if (device.input.empty()) return {};
  std::string &front = device.input.front();
  std::string bytes = front.substr(0, size);
  front.erase(0, size);
  if (front.empty()) device.input.pop_front();
  return bytes;
}

BOOL WINAPI read(HANDLE, void *target, DWORD size, DWORD *, OVERLAPPED *overlapped) {
  if (fails("ReadFile")) return FALSE;
  const std::string bytes = next_bytes(size);
  std::copy(bytes.begin(), bytes.end(), static_cast<char *>(target));
  overlapped->InternalHigh = bytes.size();
  // Some hosts say that a read timed out, some do not.
  overlapped->Internal = bytes.empty() && ++device.empty_reads % 2 == 0 ? ERROR_TIMEOUT : 0;
  SetLastError(ERROR_IO_PENDING);
  return FALSE;
}

BOOL WINAPI write(HANDLE handle, const void *bytes, DWORD size, DWORD *count, OVERLAPPED *overlapped) {
  if (overlapped == nullptr) return WriteFile(handle, bytes, size, count, nullptr);
  if (fails("WriteFile")) return FALSE;
  const Locked lock;
  overlapped->InternalHigh = std::min<size_t>(size, device.write_limit);
  overlapped->Internal = 0;
  device.written.append(static_cast<const char *>(bytes), overlapped->InternalHigh);
  return TRUE;
}

BOOL WINAPI finish(HANDLE, OVERLAPPED *overlapped, DWORD *count, BOOL) {
  if (fails("GetOverlappedResult")) return FALSE;
  *count = static_cast<DWORD>(overlapped->InternalHigh);
  SetLastError(static_cast<DWORD>(overlapped->Internal));
  return overlapped->Internal == 0;
}

BOOL WINAPI purge(HANDLE, DWORD flags) {
  if (fails("PurgeComm", "purge:" + std::to_string(flags))) return FALSE;
  const Locked lock;
  if ((flags & PURGE_RXCLEAR) != 0) device.input.clear();
  WakeAllConditionVariable(&device_changed);
  return TRUE;
}

BOOL WINAPI escape(HANDLE, DWORD code) { return !fails("EscapeCommFunction", "escape:" + std::to_string(code)); }

template <class Block> BOOL copy(const char *call, const Block &from, Block &to) {
  if (fails(call)) return FALSE;
  const Locked lock;
  to = from;
  return TRUE;
}

BOOL WINAPI get_timeouts(HANDLE, COMMTIMEOUTS *t) { return copy("GetCommTimeouts", device.timeouts, *t); }
BOOL WINAPI set_timeouts(HANDLE, COMMTIMEOUTS *t) { return copy("SetCommTimeouts", *t, device.timeouts); }
BOOL WINAPI get_state(HANDLE, DCB *dcb) { return copy("GetCommState", device.dcb, *dcb); }
BOOL WINAPI set_state(HANDLE, DCB *dcb) { return copy("SetCommState", *dcb, device.dcb); }

}  // namespace

SimulatedDevice::SimulatedDevice()
    : overrides_{{library(), "CreateFileA", open},
                 {library(), "CloseHandle", close},
                 {library(), "ReadFile", read},
                 {library(), "WriteFile", write},
                 {library(), "GetOverlappedResult", finish},
                 {library(), "PurgeComm", purge},
                 {library(), "EscapeCommFunction", escape},
                 {library(), "GetCommTimeouts", get_timeouts},
                 {library(), "SetCommTimeouts", set_timeouts},
                 {library(), "GetCommState", get_state},
                 {library(), "SetCommState", set_state},
                 {library(), "SetThreadPriority", +[](HANDLE, int) -> BOOL { return FALSE; }}} {
  device = {};
}

void SimulatedDevice::offer(const std::string &bytes, size_t at_once) {
  const Locked lock;
  for (size_t i = 0; i < bytes.size(); i += at_once) device.input.push_back(bytes.substr(i, at_once));
  WakeAllConditionVariable(&device_changed);
}

void SimulatedDevice::fail(const std::string &call, int code, int successes) {
  const Locked lock;
  device.failures.erase(call);
  if (code >= 0) device.failures[call] = {code, successes};
}

bool SimulatedDevice::has_failed(const std::string &call) {
  return eventually([&] {
    const Locked lock;
    return device.failures[call].has_failed;
  });
}

void SimulatedDevice::take_at_most(size_t bytes) { device.write_limit = bytes; }

std::string SimulatedDevice::written() { return std::exchange(device.written, ""); }

std::string SimulatedDevice::calls() {
  const Locked lock;
  return std::exchange(device.calls, "");
}

DCB &SimulatedDevice::dcb() { return device.dcb; }

COMMTIMEOUTS &SimulatedDevice::timeouts() { return device.timeouts; }

bool eventually(const std::function<bool()> &condition) {
  for (int waited = 0; waited < 5000; ++waited) {
    if (condition()) return true;
    Sleep(1);
  }
  return false;
}

ConnectedPort::ConnectedPort(int32_t mode, int32_t capacity, int32_t port) : number(port) {
  const int32_t code = SPORT_CONNECT_EX(&number, &mode, &capacity);
  if (code == 0) return;
  std::fprintf(stderr, "cannot connect port %d: %d\n", number, code);
  std::abort();
}

ConnectedPort::~ConnectedPort() {
  for (int i = 0; i < 3 && SPORT_RELEASE(&number) != ERROR_INVALID_PARAMETER; ++i) continue;
}

std::string ConnectedPort::read(Routine routine, size_t length) {
  std::string buffer(length, '#');
  int32_t count = -1;
  const int32_t code = routine(&number, buffer.data(), &count, length);
  return code != 0 ? std::to_string(code) + '!' : std::to_string(count) + ':' + buffer;
}

std::string ConnectedPort::peek(int32_t (*routine)(const int32_t *, int32_t *, int32_t *)) {
  int32_t present = -1, count = -1;
  const int32_t code = routine(&number, &present, &count);
  return code != 0 ? std::to_string(code) + '!' : std::to_string(present) + ':' + std::to_string(count);
}

bool ConnectedPort::has(int32_t count) {
  return eventually([&] { return peek(SPORT_PEEK_DATA) == "1:" + std::to_string(count); });
}
