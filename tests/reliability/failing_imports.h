// SPDX-License-Identifier: MIT
// Every function that modules import from the host and the C run-time, made to fail one call at a time.
#pragma once

#include <vector>

#include <windows.h>

// What a call that was to fail was; null if there was no such call.
struct Injection {
  const char *function = nullptr;
  int calls = 0;  // that could have failed, that one included
};

// Puts a counter before every import of these modules, for good.
void watch_imports(const std::vector<HMODULE> &modules);

// Which calls can fail: those of a routine that a lack of memory ends get their memory.
enum class Failing { all, all_but_memory };

// From now on the calling thread's call of this number fails, counted from 1; 0 lets all succeed.
// Some C run-times leave errno alone where others set it: without_errno makes all failures such.
void arm_failure(int call_number, Failing failing, bool without_errno);
Injection disarm_failure();

// Blocks of the C heap, listings and environment copies that the modules hold.
long held_resources();
