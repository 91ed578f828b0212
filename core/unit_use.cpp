// SPDX-License-Identifier: MIT
#include "unit_use.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include <windows.h>

#include "units.h"

namespace {

using namespace qwport::core;

constexpr uint32_t bucket_count = 64;
std::atomic<UnitState *> buckets[bucket_count];
SRWLOCK adding_lock = SRWLOCK_INIT;

std::atomic<DWORD> ending_thread{0};

UnitState *find_in(UnitState *state, int32_t unit) {
  while (state != nullptr && state->unit != unit) state = state->next;
  return state;
}

// Whether others than the program's first thread have ever run. Until then an exchange, a tenth of a character's time,
// is not needed.
std::atomic<bool> has_several_threads{true};

// The first thread may just have seen that it is alone: what it stored before that must show to the new thread, and
// what this stores to whatever the first looks at next.
void note_thread() {
  if (!has_several_threads.exchange(true)) FlushProcessWriteBuffers();
}

// A lock of the host costs more than a character's transfer. The holder may wait for input, so it is asked for less
// and less often; who comes later gives way to a thread that has asked for long.
void take_from_others(UnitState &state) {
  constexpr int busy_tries = 64;
  constexpr int patient_tries = 80;
  constexpr int eager_tries = 1024;
  for (int tries = 0;; ++tries) {
    const bool has_waited = tries > patient_tries;
    if ((has_waited || state.starving.load(std::memory_order_relaxed) == 0) &&
        !state.is_in_use.exchange(true, std::memory_order_acquire)) {
      if (has_waited) --state.starving;
      return;
    }
    if (tries == patient_tries) ++state.starving;
    if (tries < busy_tries) {
      YieldProcessor();
    } else {
      Sleep(tries < eager_tries ? 0 : 1);
    }
  }
}

void take(UnitState &state) {
  if (!has_several_threads.load(std::memory_order_relaxed)) {
    state.is_in_first_use.store(true, std::memory_order_relaxed);
    std::atomic_signal_fence(std::memory_order_seq_cst);
    if (!has_several_threads.load(std::memory_order_relaxed)) return;
    state.is_in_first_use.store(false, std::memory_order_relaxed);
  }
  take_from_others(state);
  while (state.is_in_first_use.load(std::memory_order_acquire)) Sleep(0);
}

// ---- The end of the program ---------------------------------------------------------------------
// The host ends all other threads before libgfortran closes its units, and one that is ended inside libgfortran may
// hold a lock that the closing waits for. So no thread is let in any more, and those inside get time to leave: one
// that is still there waits for input and holds no such lock.

void wait_for(const UnitState &state, ULONGLONG deadline) {
  while ((state.is_in_use.load() || state.is_in_first_use.load()) && GetTickCount64() < deadline) Sleep(1);
}

void end_unit_use() {
  constexpr ULONGLONG longest_wait_ms = 200;
  ending_thread.store(GetCurrentThreadId());
  const ULONGLONG deadline = GetTickCount64() + longest_wait_ms;
  for (auto &bucket : buckets) {
    for (const UnitState *state = bucket.load(); state != nullptr; state = state->next) wait_for(*state, deadline);
  }
}

void stay_out_of_the_end(UnitState &state) {
  const DWORD ending = ending_thread.load(std::memory_order_relaxed);
  if (ending == 0 || ending == GetCurrentThreadId()) return;
  UnitUse::release(state);
  for (;;) Sleep(INFINITE);
}

#ifdef _UCRT
extern "C" int _crt_atexit(void (*procedure)());
void call_at_exit(void (*procedure)()) { _crt_atexit(procedure); }
#else
// The C run-time's own: atexit() of a DLL calls its procedures when the other threads have been ended.
extern "C" _onexit_t (*__imp__onexit)(_onexit_t);
void call_at_exit(void (*procedure)()) {
  static void (*the_procedure)();
  the_procedure = procedure;
  __imp__onexit([] { return the_procedure(), 0; });
}
#endif

// This module must stay loaded for it.
void prepare_for_the_end() {
  static bool is_prepared = false;
  if (is_prepared) return;
  is_prepared = true;
  HMODULE module = nullptr;
  constexpr DWORD pin = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN;
  GetModuleHandleExA(pin, reinterpret_cast<const char *>(end_unit_use), &module);
  call_at_exit(end_unit_use);
}

// ---- States -------------------------------------------------------------------------------------

UnitState *add_state(std::atomic<UnitState *> &bucket, int32_t unit) {
  AcquireSRWLockExclusive(&adding_lock);
  prepare_for_the_end();
  UnitState *state = find_in(bucket.load(), unit);
  if (state == nullptr) {
    state = new (std::nothrow) UnitState{unit, false, false, 0, false, -1, bucket.load()};
    if (state != nullptr) bucket.store(state);
  }
  ReleaseSRWLockExclusive(&adding_lock);
  return state;
}

UnitState *state_of(int32_t unit) {
  auto &bucket = buckets[static_cast<uint32_t>(unit) % bucket_count];
  UnitState *state = find_in(bucket.load(std::memory_order_acquire), unit);
  return state != nullptr ? state : add_state(bucket, unit);
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID);

// Loaded with the program, this comes before any other thread; loaded later, there may be threads that it is not told
// of.
BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID loads_with_program) {
  if (reason == DLL_PROCESS_ATTACH) has_several_threads.store(loads_with_program == nullptr);
  if (reason == DLL_THREAD_ATTACH) note_thread();
  return TRUE;
}

bool qwport::core::may_be_asked(int32_t unit) { return unit >= 0 || qwcore_unit_is_external(&unit) != 0; }

qwport::core::UnitUse::UnitUse(int32_t unit) : errno_cell_(errno), kept_errno_(errno_cell_) {
  errno_cell_ = 0;
  if (!may_be_asked(unit)) {
    failure_ = -EBADF;
    return;
  }
  state_ = state_of(unit);
  if (state_ == nullptr) {
    failure_ = -ENOMEM;
    return;
  }
  take(*state_);
  stay_out_of_the_end(*state_);
}
