// SPDX-License-Identifier: MIT
// Signals: a table of handlers beside the C run-time's, which brings what comes from outside.
#include "signals.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <iterator>

#include <windows.h>

#include "qwcore.h"

namespace {

using namespace qwport::core;

constexpr int32_t signal_limit = 23;  // the C run-time's signals are below it
constexpr int32_t c_signals[] = {SIGINT, SIGILL, SIGFPE, SIGSEGV, SIGTERM, SIGBREAK, SIGABRT};

constexpr intptr_t default_action = 0;
constexpr intptr_t ignored = 1;

std::atomic<intptr_t> handlers[signal_limit];
SRWLOCK change_lock = SRWLOCK_INIT;  // a handler is set in two places

using CHandler = void (*)(int);
using CodeHandler = void (*)(int, int);

CHandler as_c_handler(CodeHandler handler) { return reinterpret_cast<CHandler>(reinterpret_cast<void *>(handler)); }

bool exists(int32_t signal_number) {
  return std::find(std::begin(c_signals), std::end(c_signals), signal_number) != std::end(c_signals);
}

bool is_procedure(intptr_t handler) { return handler != default_action && handler != ignored; }

void call_procedure(intptr_t handler, int32_t signal_number, int32_t code) {
  if (signal_number == floating_point_signal) {
    reinterpret_cast<void (*)(const int32_t *, const int32_t *)>(handler)(&signal_number, &code);
  } else {
    reinterpret_cast<void (*)(int32_t)>(handler)(signal_number);
  }
}

// The C run-time sets a signal to its default before it calls this, so that it is installed again first: the
// handler may leave by a jump. When it returns to an instruction at fault, that would only fault again for ever.
void deliver(int signal_number, int code) {
  const bool is_fault = signal_number == SIGSEGV || signal_number == SIGILL;
  const intptr_t handler = handlers[signal_number].load();
  std::signal(signal_number, as_c_handler(deliver));
  call_signal_handler(signal_number, code);
  if (is_fault && handlers[signal_number].load() == handler) for__signal(signal_number, default_action);
}

}  // namespace

bool qwport::core::leaves_traps_alone() { return handlers[floating_point_signal].load() == default_action; }

void qwport::core::call_signal_handler(int32_t signal_number, int32_t code) {
  const intptr_t handler = handlers[signal_number].load();
  if (is_procedure(handler)) call_procedure(handler, signal_number, code);
}

intptr_t for__signal(int32_t signal_number, intptr_t handler) {
  // Also to ignore traps: the C run-time would let the instruction trap for ever.
  const bool is_trap_handler = signal_number == floating_point_signal && handler != default_action;
  if (!exists(signal_number) || (is_trap_handler && !watch_floating_point_traps())) {
    errno = EINVAL;
    return -1;
  }
  const CHandler wanted = is_procedure(handler) ? as_c_handler(deliver) : reinterpret_cast<CHandler>(handler);
  AcquireSRWLockExclusive(&change_lock);
  const CHandler previous = std::signal(signal_number, wanted);
  const intptr_t own_previous = handlers[signal_number].exchange(handler);
  ReleaseSRWLockExclusive(&change_lock);
  // A C run-time may keep a handler for each thread: its default says nothing about the others.
  const bool is_own = previous == as_c_handler(deliver) || previous == SIG_DFL || previous == SIG_ERR;
  return is_own ? own_previous : reinterpret_cast<intptr_t>(previous);
}

// The handler is called here, because the C run-time's raise() leaves the default action, which ends the program,
// to other threads in the meantime.
int32_t for__raise(int32_t signal_number) {
  if (!exists(signal_number)) {
    errno = EINVAL;
    return -1;
  }
  constexpr int32_t raised_explicitly = 0x8C;
  const intptr_t handler = handlers[signal_number].load();
  if (handler == default_action) return std::raise(signal_number);
  if (is_procedure(handler)) call_procedure(handler, signal_number, raised_explicitly);
  return 0;
}
