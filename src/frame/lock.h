// SPDX-License-Identifier: MIT
// Locks of the process.
#pragma once

#include <atomic>
#include <cstdint>

#include <windows.h>

// Its holder may take it again. Initialised at compile time, so that a global needs no start-up code, and never
// deleted: a thread may hold it when the process ends.
struct PortlibLock {
  SRWLOCK lock = SRWLOCK_INIT;
  std::atomic<DWORD> holder{0};  // a thread's number, which is never 0
  uint32_t times_taken = 0;
};

inline void portlib_take_lock(PortlibLock &lock) {
  const DWORD thread = GetCurrentThreadId();
  if (lock.holder.load(std::memory_order_relaxed) != thread) {
    AcquireSRWLockExclusive(&lock.lock);
    lock.holder.store(thread, std::memory_order_relaxed);
  }
  ++lock.times_taken;
}

inline void portlib_release_lock(PortlibLock &lock) {
  if (--lock.times_taken != 0) return;
  lock.holder.store(0, std::memory_order_relaxed);
  ReleaseSRWLockExclusive(&lock.lock);
}

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
