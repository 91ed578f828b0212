// SPDX-License-Identifier: MIT
// Floating-point traps: exceptions of the processor become calls of the floating-point signal's handler.
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <iterator>

#include <windows.h>
#include <xmmintrin.h>

#include "qwcore.h"
#include "signals.h"

namespace {

using namespace qwport::core;

// In MXCSR and the x87 status word; the mask bits have the same order. One instruction can raise several: the
// handler is called for the first.
struct Trap {
  uint32_t status_bit;
  int32_t code;
};

constexpr Trap traps[] = {{0x01, 0x81},   // invalid
                          {0x02, 0x82},   // denormal
                          {0x04, 0x83},   // division by zero
                          {0x08, 0x84},   // overflow
                          {0x10, 0x85},   // underflow
                          {0x20, 0x86}};  // inexact
constexpr int32_t zero_divide_code = 0x83;
constexpr uint32_t all_status_bits = 0x3F;
constexpr unsigned mxcsr_mask_shift = 7;
constexpr uint32_t mxcsr_default = 0x1F80;  // every trap masked, rounding to nearest

// What 64-bit Windows reports for every trap of an SSE instruction; other hosts tell one cause, not always the
// right one.
constexpr DWORD multiple_faults = 0xC00002B4;
constexpr DWORD multiple_traps = 0xC00002B5;
constexpr DWORD floating_point_exceptions[] = {multiple_faults,
                                               multiple_traps,
                                               EXCEPTION_FLT_INVALID_OPERATION,
                                               EXCEPTION_FLT_STACK_CHECK,
                                               EXCEPTION_FLT_DENORMAL_OPERAND,
                                               EXCEPTION_FLT_DIVIDE_BY_ZERO,
                                               EXCEPTION_FLT_OVERFLOW,
                                               EXCEPTION_FLT_UNDERFLOW,
                                               EXCEPTION_FLT_INEXACT_RESULT};

bool is_floating_point_exception(DWORD exception) {
  return std::find(std::begin(floating_point_exceptions), std::end(floating_point_exceptions), exception) !=
         std::end(floating_point_exceptions);
}

// The handler's own arithmetic must not trap; the interrupted program gets its state back with its context.
void call_trap_handler(uint32_t causes) {
  const auto *trap = std::find_if(std::begin(traps), std::end(traps),
                                  [causes](const Trap &row) { return (row.status_bit & causes) != 0; });
  if (trap == std::end(traps)) return;
  const unsigned interrupted_mxcsr = _mm_getcsr();
  _mm_setcsr(mxcsr_default);
  __asm__ volatile("fninit");
  call_signal_handler(floating_point_signal, trap->code);
  _mm_setcsr(interrupted_mxcsr);
}

// ---- SSE instructions ---------------------------------------------------------------------------
// The flags may be older than the instruction, so it is run alone, with no flag raised and every trap masked,
// which also gives its IEEE default result.

constexpr DWORD trap_flag = 0x100;

uint32_t unmasked_flags(uint32_t mxcsr) { return mxcsr & ~(mxcsr >> mxcsr_mask_shift) & all_status_bits; }

// Of threads that run an instruction alone. One that finds no free place meets the exception again.
struct LoneInstruction {
  std::atomic<DWORD> thread;
  uint32_t mxcsr;  // as it was before
};
LoneInstruction lone_instructions[64];

void set_mxcsr(CONTEXT &context, uint32_t mxcsr) {
  context.MxCsr = mxcsr;
  context.FltSave.MxCsr = mxcsr;
}

void run_alone(CONTEXT &context) {
  const DWORD thread = GetCurrentThreadId();
  for (LoneInstruction &place : lone_instructions) {
    DWORD free = 0;
    if (!place.thread.compare_exchange_strong(free, thread)) continue;
    place.mxcsr = context.MxCsr;
    set_mxcsr(context, (context.MxCsr & ~all_status_bits) | mxcsr_default);
    context.EFlags |= trap_flag;
    return;
  }
}

// After an instruction that was run alone: the control and flags before it, and true; else false.
bool end_running_alone(CONTEXT &context, uint32_t &mxcsr) {
  const DWORD thread = GetCurrentThreadId();
  auto *const place = std::find_if(std::begin(lone_instructions), std::end(lone_instructions),
                                   [thread](const LoneInstruction &row) { return row.thread.load() == thread; });
  if (place == std::end(lone_instructions)) return false;
  mxcsr = place->mxcsr;
  place->thread.store(0);
  context.EFlags &= ~trap_flag;
  return true;
}

// What trapped traps no more. Flags stay raised, older ones too.
void finish_instruction(CONTEXT &context, uint32_t mxcsr) {
  const uint32_t raised = context.MxCsr & all_status_bits;
  const uint32_t causes = raised & ~(mxcsr >> mxcsr_mask_shift);
  set_mxcsr(context, mxcsr | raised | (causes << mxcsr_mask_shift));
  call_trap_handler(causes);
}

// ---- The x87 ------------------------------------------------------------------------------------

// Masked, the interrupted instruction gives its IEEE default result instead of trapping again.
bool finish_x87_instruction(CONTEXT &context) {
  constexpr WORD exception_pending = 0x8080;
  XMM_SAVE_AREA32 &x87 = context.FltSave;
  const uint32_t causes = x87.StatusWord & ~x87.ControlWord & all_status_bits;
  if (causes == 0) return false;
  x87.ControlWord = static_cast<WORD>(x87.ControlWord | causes);
  x87.StatusWord = static_cast<WORD>(x87.StatusWord & ~exception_pending);
  call_trap_handler(causes);
  return true;
}

// ---- The host's exceptions ----------------------------------------------------------------------

LONG CALLBACK on_exception(EXCEPTION_POINTERS *exception) {
  const DWORD code = exception->ExceptionRecord->ExceptionCode;
  CONTEXT &context = *exception->ContextRecord;
  uint32_t mxcsr = 0;
  const bool ran_alone = end_running_alone(context, mxcsr);
  if (ran_alone && code == EXCEPTION_SINGLE_STEP) {
    finish_instruction(context, mxcsr);
    return EXCEPTION_CONTINUE_EXECUTION;
  }
  // An instruction that fails even alone is none of SSE.
  if (ran_alone) set_mxcsr(context, mxcsr);
  if (leaves_traps_alone()) return EXCEPTION_CONTINUE_SEARCH;

  if (code == EXCEPTION_INT_DIVIDE_BY_ZERO) {
    // There is no result to go on with: when the handler returns, the default action ends the program.
    call_signal_handler(floating_point_signal, zero_divide_code);
    for__signal(floating_point_signal, 0);
    return EXCEPTION_CONTINUE_SEARCH;
  }
  if (!is_floating_point_exception(code)) return EXCEPTION_CONTINUE_SEARCH;
  if (!ran_alone && unmasked_flags(context.MxCsr) != 0) {
    run_alone(context);
    return EXCEPTION_CONTINUE_EXECUTION;
  }
  return finish_x87_instruction(context) ? EXCEPTION_CONTINUE_EXECUTION : EXCEPTION_CONTINUE_SEARCH;
}

std::atomic<bool> is_watching{false};

}  // namespace

// The host calls it to the end of the process, so this module must stay loaded.
bool qwport::core::watch_floating_point_traps() {
  if (is_watching.exchange(true)) return true;
  HMODULE module = nullptr;
  constexpr DWORD pin = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN;
  GetModuleHandleExA(pin, reinterpret_cast<const char *>(on_exception), &module);
  if (AddVectoredExceptionHandler(1, on_exception) != nullptr) return true;
  is_watching.store(false);
  return false;
}
