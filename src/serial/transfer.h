// SPDX-License-Identifier: MIT
// Purges, overlapped transfers and timeouts of a port's device.
#pragma once

#include <windows.h>

constexpr DWORD purge_all = PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR;

struct Transfer {
  DWORD code;   // 0, or the host's error
  DWORD count;  // bytes moved
};

// Waits for the end of a transfer. started: the result of the ReadFile or WriteFile that began it.
inline Transfer finish_transfer(HANDLE device, BOOL started, OVERLAPPED &overlapped) {
  Transfer transfer{started ? ERROR_SUCCESS : GetLastError(), 0};
  if (transfer.code != ERROR_SUCCESS && transfer.code != ERROR_IO_PENDING) return transfer;
  const BOOL finished = GetOverlappedResult(device, &overlapped, &transfer.count, TRUE);
  transfer.code = finished ? ERROR_SUCCESS : GetLastError();
  return transfer;
}

// Changes the timeouts of a device. A failure without an error number counts as none.
template <class Change> DWORD change_timeouts(HANDLE device, Change change) {
  COMMTIMEOUTS timeouts{};
  const DWORD code = GetCommTimeouts(device, &timeouts) ? ERROR_SUCCESS : GetLastError();
  if (code != ERROR_SUCCESS) return code;
  change(timeouts);
  return SetCommTimeouts(device, &timeouts) ? ERROR_SUCCESS : GetLastError();
}
