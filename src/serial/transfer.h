// SPDX-License-Identifier: MIT
// Transfers, purges and timeouts of a port's device, and all that hosts do in their own ways there.
#pragma once

#include <windows.h>

#include "handle.h"

namespace qwport::serial {

constexpr DWORD purge_all = PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR;

// The host's verdict as a code: call it on the result of the host call itself.
inline DWORD code_of(BOOL done) { return done ? ERROR_SUCCESS : GetLastError(); }

// Makes an event unless there is one already.
inline DWORD need_event(OwnedHandle &event, BOOL is_manual_reset) {
  if (event == nullptr) event.reset(CreateEventA(nullptr, is_manual_reset, FALSE, nullptr));
  return code_of(event != nullptr);
}

struct Transfer {
  DWORD code;   // 0, or the host's error
  DWORD count;  // bytes moved
};

// Windows completes a transfer whose time is over, with the bytes moved; Wine fails it with one of these.
inline bool is_timeout(DWORD code) { return code == ERROR_TIMEOUT || code == WAIT_TIMEOUT; }

// Waits for the end of a transfer. started: the result of the ReadFile or WriteFile that began it.
inline Transfer finish_transfer(HANDLE device, BOOL started, OVERLAPPED &overlapped) {
  Transfer transfer{code_of(started), 0};
  if (transfer.code == ERROR_SUCCESS || transfer.code == ERROR_IO_PENDING) {
    transfer.code = code_of(GetOverlappedResult(device, &overlapped, &transfer.count, TRUE));
    // A wait that failed is no end: the host would go on using what the caller gives up.
    if (!HasOverlappedIoCompleted(&overlapped)) CancelIoEx(device, &overlapped);
    while (!HasOverlappedIoCompleted(&overlapped)) Sleep(1);
  }
  if (is_timeout(transfer.code)) transfer = {ERROR_SUCCESS, static_cast<DWORD>(overlapped.InternalHigh)};
  return transfer;
}

// A purge aborts a read once; a device with a line error aborts every read until that is cleared. Neither is an
// error unless the clearing is.
inline Transfer read_device(HANDLE device, HANDLE event, char *bytes, DWORD length) {
  OVERLAPPED overlapped{};
  overlapped.hEvent = event;
  const BOOL started = ReadFile(device, bytes, length, nullptr, &overlapped);
  const Transfer read = finish_transfer(device, started, overlapped);
  if (read.code != ERROR_OPERATION_ABORTED) return read;
  Sleep(1);
  DWORD line_errors = 0;
  return {code_of(ClearCommError(device, &line_errors, nullptr)), 0};
}

inline Transfer write_device(HANDLE device, HANDLE event, const char *bytes, DWORD length) {
  OVERLAPPED overlapped{};
  overlapped.hEvent = event;
  const BOOL started = WriteFile(device, bytes, length, nullptr, &overlapped);
  return finish_transfer(device, started, overlapped);
}

// Changes the timeouts of a device. A failure without an error number counts as none.
template <class Change> DWORD change_timeouts(HANDLE device, Change change) {
  COMMTIMEOUTS timeouts{};
  const DWORD code = code_of(GetCommTimeouts(device, &timeouts));
  if (code != ERROR_SUCCESS) return code;
  change(timeouts);
  return code_of(SetCommTimeouts(device, &timeouts));
}

}  // namespace qwport::serial
