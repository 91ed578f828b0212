// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>

#include <windows.h>

using ThreadProcedure = std::function<DWORD(void *number)>;

// The sum of what a procedure gives on so many threads at once, at most eight, which get the numbers from 0.
inline DWORD on_threads(size_t count, const ThreadProcedure &procedure) {
  struct Job {
    const ThreadProcedure *procedure;
    size_t number;
    HANDLE thread;
  } jobs[8];
  const auto work = [](void *argument) -> DWORD {
    const Job &job = *static_cast<Job *>(argument);
    return (*job.procedure)(reinterpret_cast<void *>(job.number));
  };
  for (size_t i = 0; i < count; ++i) {
    jobs[i] = {&procedure, i, nullptr};
    jobs[i].thread = CreateThread(nullptr, 0, work, &jobs[i], 0, nullptr);
  }
  DWORD sum = 0, result = 0;
  for (size_t i = 0; i < count; ++i) {
    WaitForSingleObject(jobs[i].thread, INFINITE);
    GetExitCodeThread(jobs[i].thread, &result);
    CloseHandle(jobs[i].thread);
    sum += result;
  }
  return sum;
}

// What a procedure gives on a thread of its own.
inline DWORD on_other_thread(const ThreadProcedure &procedure) { return on_threads(1, procedure); }
inline DWORD on_eight_threads(const ThreadProcedure &procedure) { return on_threads(8, procedure); }
