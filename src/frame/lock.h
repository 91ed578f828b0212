// SPDX-License-Identifier: MIT
// Locks of the process.
#pragma once

#include <windows.h>

// Its holder may take it again.
struct PortlibLock {
  PortlibLock() { InitializeCriticalSection(&section); }
  PortlibLock(const PortlibLock &) = delete;
  PortlibLock &operator=(const PortlibLock &) = delete;
  CRITICAL_SECTION section;  // never deleted: a thread may hold it when the process ends
};

// Holds a lock to the end of the block.
class LockGuard {
 public:
  explicit LockGuard(PortlibLock &lock) : section_(lock.section) { EnterCriticalSection(&section_); }
  ~LockGuard() { LeaveCriticalSection(&section_); }
  LockGuard(const LockGuard &) = delete;
  LockGuard &operator=(const LockGuard &) = delete;

 private:
  CRITICAL_SECTION &section_;
};
