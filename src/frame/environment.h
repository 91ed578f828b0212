// SPDX-License-Identifier: MIT
// Environment variables, for GETENV and its like and for PXFGETENV and its like.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include <windows.h>

#include "core_entries.h"
#include "lock.h"

// Held while a variable is looked up and copied and while one is set: setting one frees what a look-up gave.
inline PortlibLock portlib_environment_lock;

// How often a routine of the library has set a variable.
inline std::atomic<uint32_t> portlib_environment_changes{0};

// Has the core runtime take an assignment "NAME=VALUE". The caller holds the lock.
inline bool portlib_put_variable(const char *assignment) {
  portlib_environment_changes.fetch_add(1, std::memory_order_relaxed);
  return core::for__putenv(assignment) == 0;
}

// The host's environment: texts "NAME=VALUE" that end with a NUL each and with an empty one all together.
struct EnvironmentBlockDeleter {
  void operator()(char *block) const { FreeEnvironmentStringsA(block); }
};
using EnvironmentBlock = std::unique_ptr<char, EnvironmentBlockDeleter>;

// A copy of it; null for no memory.
inline EnvironmentBlock portlib_environment_block() { return EnvironmentBlock(GetEnvironmentStringsA()); }
