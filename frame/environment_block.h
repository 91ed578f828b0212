// SPDX-License-Identifier: MIT
// The host's environment: texts "NAME=VALUE" that end with a NUL each and with an empty one all together.
#pragma once

#include <memory>

#include <windows.h>

struct EnvironmentBlockDeleter {
  void operator()(char *block) const { FreeEnvironmentStringsA(block); }
};
using EnvironmentBlock = std::unique_ptr<char, EnvironmentBlockDeleter>;

// A copy of it; null for no memory.
inline EnvironmentBlock portlib_environment_block() { return EnvironmentBlock(GetEnvironmentStringsA()); }
