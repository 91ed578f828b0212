// SPDX-License-Identifier: MIT
// Host handles and locks that are given back at the end of their block.
#pragma once

#include <memory>

#include <windows.h>

struct HandleCloser {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using OwnedHandle = std::unique_ptr<void, HandleCloser>;

class LockGuard {
 public:
  explicit LockGuard(SRWLOCK &lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
  ~LockGuard() { ReleaseSRWLockExclusive(&lock_); }
  LockGuard(const LockGuard &) = delete;
  LockGuard &operator=(const LockGuard &) = delete;

 private:
  SRWLOCK &lock_;
};
