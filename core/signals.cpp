// SPDX-License-Identifier: MIT
// Signals through the C run-time, with the floating-point code that it does not always give.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <iterator>

#include <windows.h>
#include <xmmintrin.h>

#include "qwcore.h"

namespace {

constexpr int signal_limit = 23;  // NSIG of the C run-time
constexpr int floating_point_signal = SIGFPE;

enum FloatingPointCode : int32_t {
  fpe_invalid = 0x81,
  fpe_denormal = 0x82,
  fpe_zero_divide = 0x83,
  fpe_overflow = 0x84,
  fpe_underflow = 0x85,
  fpe_inexact = 0x86,
};

std::atomic<intptr_t> handlers[signal_limit];
thread_local bool raising = false;

using CHandler = void (*)(int);
using CodeHandler = void (*)(int, int);

CHandler as_c_handler(CodeHandler handler) { return reinterpret_cast<CHandler>(reinterpret_cast<void *>(handler)); }

bool is_procedure(intptr_t handler) { return handler != 0 && handler != 1; }

void call_handler(int32_t signal_number, int32_t code) {
  const intptr_t handler = handlers[signal_number].load();
  if (!is_procedure(handler)) return;  // another thread is replacing it
  if (signal_number == floating_point_signal) {
    reinterpret_cast<void (*)(const int32_t *, const int32_t *)>(handler)(&signal_number, &code);
  } else {
    reinterpret_cast<void (*)(int32_t)>(handler)(signal_number);
  }
}

// The C run-time sets a signal to its default before it calls the handler, so it is installed again;
// but not while a faulting instruction would only fault again for ever.
void deliver(int signal_number, int code) {
  const bool is_fault = signal_number == SIGSEGV || signal_number == SIGILL || signal_number == SIGFPE;
  if (raising || !is_fault) std::signal(signal_number, as_c_handler(deliver));
  call_handler(signal_number, code);
}

// ---- Floating-point traps -----------------------------------------------------------------------

struct TrapMapping {
  DWORD exception;
  uint32_t status_bit;  // in MXCSR and the x87 status word; the mask bits have the same order
  FloatingPointCode code;
};

constexpr TrapMapping trap_mappings[] = {
    {EXCEPTION_FLT_INVALID_OPERATION, 0x01, fpe_invalid}, {EXCEPTION_FLT_STACK_CHECK, 0x01, fpe_invalid},
    {EXCEPTION_FLT_DENORMAL_OPERAND, 0x02, fpe_denormal}, {EXCEPTION_FLT_DIVIDE_BY_ZERO, 0x04, fpe_zero_divide},
    {EXCEPTION_FLT_OVERFLOW, 0x08, fpe_overflow},         {EXCEPTION_FLT_UNDERFLOW, 0x10, fpe_underflow},
    {EXCEPTION_FLT_INEXACT_RESULT, 0x20, fpe_inexact},
};
constexpr uint32_t all_status_bits = 0x3F;
constexpr unsigned mxcsr_mask_shift = 7;
constexpr uint32_t mxcsr_default = 0x1F80;  // every trap masked, rounding to nearest

// 64-bit Windows reports a trap of an SSE instruction as one of these two whatever the cause, and Wine
// takes a denormal operand for an underflow: the flags that the instruction raises tell the cause.
constexpr DWORD multiple_faults = 0xC00002B4;
constexpr DWORD multiple_traps = 0xC00002B5;

bool is_floating_point_exception(DWORD exception) {
  if (exception == multiple_faults || exception == multiple_traps) return true;
  return std::any_of(std::begin(trap_mappings), std::end(trap_mappings),
                     [exception](const TrapMapping &mapping) { return mapping.exception == exception; });
}

// The handler's own arithmetic must not trap.
void call_floating_point_handler(FloatingPointCode code) {
  const unsigned interrupted_mxcsr = _mm_getcsr();
  _mm_setcsr(mxcsr_default);
  call_handler(floating_point_signal, code);
  _mm_setcsr(interrupted_mxcsr);
}

// ---- Traps of SSE instructions ------------------------------------------------------------------
// The flags may be older than the instruction, so it is run alone, with no flag raised and every trap masked,
// which also gives its IEEE default result.

constexpr DWORD trap_flag = 0x100;

struct SteppedInstruction {
  bool is_running;
  uint32_t mxcsr;  // as it was before
};
thread_local SteppedInstruction stepped_instruction;

bool has_unmasked_flag(uint32_t mxcsr) { return (mxcsr & ~(mxcsr >> mxcsr_mask_shift) & all_status_bits) != 0; }

void set_mxcsr(CONTEXT &context, uint32_t mxcsr) {
  context.MxCsr = mxcsr;
  context.FltSave.MxCsr = mxcsr;
}

void run_alone(CONTEXT &context) {
  stepped_instruction = {true, context.MxCsr};
  set_mxcsr(context, (context.MxCsr & ~all_status_bits) | mxcsr_default);
  context.EFlags |= trap_flag;
}

// The handler is called for the first of the raised exceptions that trap; they trap no more.
void finish_instruction(CONTEXT &context) {
  const uint32_t mxcsr = stepped_instruction.mxcsr;
  const uint32_t raised = context.MxCsr & all_status_bits;
  const uint32_t causes = raised & ~(mxcsr >> mxcsr_mask_shift);
  stepped_instruction.is_running = false;
  context.EFlags &= ~trap_flag;
  set_mxcsr(context, (mxcsr & ~all_status_bits) | (causes << mxcsr_mask_shift));
  const auto *trap = std::find_if(std::begin(trap_mappings), std::end(trap_mappings),
                                  [causes](const TrapMapping &mapping) { return (mapping.status_bit & causes) != 0; });
  if (trap != std::end(trap_mappings)) call_floating_point_handler(trap->code);
}

// ---- Traps of the x87 ---------------------------------------------------------------------------

// Lets the interrupted instruction give its IEEE default result instead of trapping again.
void mask_x87_trap(CONTEXT &context, uint32_t status_bit) {
  constexpr WORD x87_exception_state = 0x80FF;
  context.FltSave.ControlWord = static_cast<WORD>(context.FltSave.ControlWord | status_bit);
  context.FltSave.StatusWord = static_cast<WORD>(context.FltSave.StatusWord & ~x87_exception_state);
}

LONG CALLBACK on_exception(EXCEPTION_POINTERS *exception) {
  const DWORD code = exception->ExceptionRecord->ExceptionCode;
  CONTEXT &context = *exception->ContextRecord;
  if (code == EXCEPTION_SINGLE_STEP && stepped_instruction.is_running) {
    finish_instruction(context);
    return EXCEPTION_CONTINUE_EXECUTION;
  }
  if (handlers[floating_point_signal].load() == 0) return EXCEPTION_CONTINUE_SEARCH;

  if (code == EXCEPTION_INT_DIVIDE_BY_ZERO) {
    // There is no result to go on with: when the handler returns, the default action ends the program.
    call_handler(floating_point_signal, fpe_zero_divide);
    for__signal(floating_point_signal, 0);
    return EXCEPTION_CONTINUE_SEARCH;
  }
  if (!is_floating_point_exception(code)) return EXCEPTION_CONTINUE_SEARCH;
  if (has_unmasked_flag(context.MxCsr)) {
    run_alone(context);
    return EXCEPTION_CONTINUE_EXECUTION;
  }
  const auto *trap = std::find_if(std::begin(trap_mappings), std::end(trap_mappings),
                                  [code](const TrapMapping &mapping) { return mapping.exception == code; });
  if (trap == std::end(trap_mappings)) return EXCEPTION_CONTINUE_SEARCH;
  call_floating_point_handler(trap->code);
  mask_x87_trap(context, trap->status_bit);
  return EXCEPTION_CONTINUE_EXECUTION;
}

}  // namespace

intptr_t for__signal(int32_t signal_number, intptr_t handler) {
  // Also to ignore traps: the C run-time would let the instruction trap for ever.
  if (signal_number == floating_point_signal && handler != 0) {
    [[maybe_unused]] static void *const registration = AddVectoredExceptionHandler(1, on_exception);
  }
  const CHandler wanted = is_procedure(handler) ? as_c_handler(deliver) : reinterpret_cast<CHandler>(handler);
  const bool exists = 0 < signal_number && signal_number < signal_limit;
  const CHandler previous = exists ? std::signal(signal_number, wanted) : SIG_ERR;
  if (previous == SIG_ERR) {
    errno = EINVAL;
    return -1;
  }
  const intptr_t previous_own = handlers[signal_number].exchange(handler);
  return previous == as_c_handler(deliver) ? previous_own : reinterpret_cast<intptr_t>(previous);
}

int32_t for__raise(int32_t signal_number) {
  const bool outer = raising;
  raising = true;
  const int32_t result = std::raise(signal_number);
  raising = outer;
  return result;
}
