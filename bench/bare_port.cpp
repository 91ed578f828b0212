// SPDX-License-Identifier: MIT
// The host's own calls on a serial port, and the far end of the line that the port stands at.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include <windows.h>

extern "C" {
void open_far_end(int32_t port);
void send_from_far_end(int64_t bytes);
void bare_reads(int64_t device, int64_t bytes);
void bare_writes(int64_t device, int32_t writes);
}

namespace {

constexpr DWORD chunk_size = 2048;

HANDLE far_end, ordered;
int64_t ordered_bytes;

void check(BOOL done) {
  if (done) return;
  std::printf("a serial call failed with %lu\n", GetLastError());
  std::exit(1);
}

// One transfer, with an event that is kept; the bytes moved. A read that timed out is an empty one.
DWORD transfer(decltype(ReadFile) *call, HANDLE device, HANDLE event, void *bytes, DWORD length) {
  OVERLAPPED overlapped{};
  overlapped.hEvent = event;
  DWORD count = 0;
  check(call(device, bytes, length, nullptr, &overlapped) || GetLastError() == ERROR_IO_PENDING);
  const BOOL done = GetOverlappedResult(device, &overlapped, &count, TRUE);
  check(done || GetLastError() == ERROR_TIMEOUT || GetLastError() == WAIT_TIMEOUT);
  return count;
}

BOOL WINAPI write(HANDLE device, void *bytes, DWORD length, DWORD *count, OVERLAPPED *overlapped) {
  return WriteFile(device, bytes, length, count, overlapped);
}

HANDLE kept_event() { return CreateEventA(nullptr, TRUE, FALSE, nullptr); }

DWORD WINAPI drain(void *) {
  char bytes[chunk_size];
  for (HANDLE event = kept_event();;) transfer(ReadFile, far_end, event, bytes, sizeof bytes);
}

DWORD WINAPI send(void *) {
  static char bytes[2 * chunk_size];
  for (HANDLE event = kept_event(); WaitForSingleObject(ordered, INFINITE) == WAIT_OBJECT_0;)
    for (int64_t left = ordered_bytes; left > 0;)
      left -= transfer(write, far_end, event, bytes, static_cast<DWORD>(std::min<int64_t>(left, sizeof bytes)));
  return 0;
}

}  // namespace

// Opens a port that drops what comes and sends what is ordered.
void open_far_end(int32_t port) {
  char name[32];
  std::snprintf(name, sizeof name, R"(\\.\COM%d)", port);
  far_end = CreateFileA(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
  check(far_end != INVALID_HANDLE_VALUE);
  COMMTIMEOUTS timeouts{200, 0, 200, 2, 2000};
  check(SetCommTimeouts(far_end, &timeouts));
  ordered = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  for (LPTHREAD_START_ROUTINE side : {drain, send}) CloseHandle(CreateThread(nullptr, 0, side, nullptr, 0, nullptr));
}

// Begins to send; to be called again only when all that has arrived.
void send_from_far_end(int64_t bytes) {
  ordered_bytes = bytes;
  SetEvent(ordered);
}

void bare_reads(int64_t device, int64_t bytes) {
  char chunk[chunk_size];
  HANDLE event = kept_event();
  while (bytes > 0) bytes -= transfer(ReadFile, reinterpret_cast<HANDLE>(device), event, chunk, sizeof chunk);
  CloseHandle(event);
}

// Writes of one byte each.
void bare_writes(int64_t device, int32_t writes) {
  char byte = 'x';
  HANDLE event = kept_event();
  for (; writes > 0; --writes) transfer(write, reinterpret_cast<HANDLE>(device), event, &byte, 1);
  CloseHandle(event);
}
