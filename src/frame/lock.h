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

inline void portlib_take_lock(PortlibLock &lock) { EnterCriticalSection(&lock.section); }
inline void portlib_release_lock(PortlibLock &lock) { LeaveCriticalSection(&lock.section); }

// Holds a lock to the end of the block.
class LockGuard {
 public:
  explicit LockGuard(PortlibLock &lock) : lock_(lock) { portlib_take_lock(lock_); }
  ~LockGuard() { portlib_release_lock(lock_); }
  LockGuard(const LockGuard &) = delete;
  LockGuard &operator=(const LockGuard &) = delete;

 private:
  PortlibLock &lock_;
};
