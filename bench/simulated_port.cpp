// SPDX-License-Identifier: MIT
// A simulated serial device that is never empty or that gives a byte when it is asked to, and reading it by a
// bare loop of overlapped reads.
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>

#include <windows.h>

#include "import_override.h"

extern "C" {
void simulate_port();
void set_speed(double bytes_a_second);
void order_byte();
double seconds_since_arrival();
void bare_reads(int64_t bytes);
}

namespace {

constexpr DWORD chunk_size = 2048;
constexpr double driver_bytes = 4096;  // what the device's driver keeps while nobody reads

double seconds() {
  LARGE_INTEGER count, rate;
  QueryPerformanceCounter(&count);
  QueryPerformanceFrequency(&rate);
  return static_cast<double>(count.QuadPart) / static_cast<double>(rate.QuadPart);
}

// Speed 0: no bytes but ordered ones; negative: as fast as memory.
std::atomic<double> speed{0};
double due;
std::atomic<double> arrival;
HANDLE ordered, arrived;

// Waits until a chunk is complete.
DWORD endless_chunk(double rate) {
  if (rate < 0) return chunk_size;
  due = std::max(due, seconds() - driver_bytes / rate) + chunk_size / rate;
  while (seconds() < due) Sleep(1);
  return chunk_size;
}

BOOL WINAPI read(HANDLE, void *target, DWORD, DWORD *, OVERLAPPED *overlapped) {
  const double rate = speed.load();
  DWORD count = rate == 0 ? 0 : endless_chunk(rate);
  if (rate == 0 && WaitForSingleObject(arrived, 200) == WAIT_OBJECT_0) count = 1;
  std::memset(target, 'x', count);
  overlapped->Internal = 0;
  overlapped->InternalHigh = count;
  return TRUE;
}

DWORD WINAPI deliver(void *) {
  while (WaitForSingleObject(ordered, INFINITE) == WAIT_OBJECT_0) {
    Sleep(3);  // the reading side waits by then
    arrival.store(seconds());
    SetEvent(arrived);
  }
  return 0;
}

HANDLE WINAPI open(const char *, DWORD, DWORD, SECURITY_ATTRIBUTES *, DWORD, DWORD, HANDLE) { return arrived; }
BOOL WINAPI keep_timeouts(HANDLE, COMMTIMEOUTS *) { return TRUE; }
BOOL WINAPI keep_bytes(HANDLE, DWORD) { return TRUE; }

}  // namespace

void simulate_port() {
  HMODULE library = GetModuleHandleA("libqwport.dll");
  static const ImportOverride overrides[] = {{library, "CreateFileA", open},
                                             {library, "ReadFile", read},
                                             {library, "PurgeComm", keep_bytes},
                                             {library, "GetCommTimeouts", keep_timeouts},
                                             {library, "SetCommTimeouts", keep_timeouts}};
  ordered = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  arrived = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  CloseHandle(CreateThread(nullptr, 0, deliver, nullptr, 0, nullptr));
}

void set_speed(double bytes_a_second) { speed.store(bytes_a_second); }

void order_byte() { SetEvent(ordered); }

double seconds_since_arrival() { return seconds() - arrival.load(); }

void bare_reads(int64_t bytes) {
  char buffer[chunk_size];
  OVERLAPPED overlapped{};
  overlapped.hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  while (bytes > 0) {
    DWORD count = 0;
    if (!read(arrived, buffer, sizeof buffer, nullptr, &overlapped)) break;
    if (!GetOverlappedResult(arrived, &overlapped, &count, TRUE)) break;
    bytes -= count;
  }
  CloseHandle(overlapped.hEvent);
}
