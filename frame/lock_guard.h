// SPDX-License-Identifier: MIT
// Holds a lock for a block.
#pragma once

#include <windows.h>

class LockGuard {
 public:
  explicit LockGuard(SRWLOCK &lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
  ~LockGuard() { ReleaseSRWLockExclusive(&lock_); }
  LockGuard(const LockGuard &) = delete;
  LockGuard &operator=(const LockGuard &) = delete;

 private:
  SRWLOCK &lock_;
};
