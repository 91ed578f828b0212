// SPDX-License-Identifier: MIT
// Environment variables.
#pragma once

#include <memory>

#include <windows.h>

#include "lock.h"

// Held while a variable is looked up and copied and while one is set: setting one frees what a look-up gave.
inline PortlibLock &portlib_environment_lock() {
  static PortlibLock lock;
  return lock;
}

// The host's environment: texts "NAME=VALUE" that end with a NUL each and with an empty one all together.
struct EnvironmentBlockDeleter {
  void operator()(char *block) const { FreeEnvironmentStringsA(block); }
};
using EnvironmentBlock = std::unique_ptr<char, EnvironmentBlockDeleter>;

// A copy of it; null for no memory.
inline EnvironmentBlock portlib_environment_block() { return EnvironmentBlock(GetEnvironmentStringsA()); }
