// SPDX-License-Identifier: MIT
// The bound entry points of the Fortran core runtime, and one caller per entry that stops the program
// with a message when the entry is missing.
#pragma once

#include "qwcore.h"

// Every entry in binding order. CALLED(entry, guard name): routines call it; the guard name is the text
// that the user sees, shorter than the symbol for some entries on purpose. PRESENT(entry): looked up
// only, as part of the version check.
#define PORTLIB_CORE_ENTRIES(CALLED, PRESENT)                                    \
  CALLED(for_abort, "for_abort")                                                 \
  PRESENT(for_stop)                                                              \
  CALLED(for_exit, "for_exit")                                                   \
  CALLED(for__signal, "for__signal")                                             \
  CALLED(for__raise, "for__raise")                                               \
  CALLED(for__establish_user_error_handler, "for__establish_user_error_handler") \
  CALLED(for__process_start_time, "for__process_start_time")                     \
  CALLED(__msportlib_d_fseek_i8, "_msportlib_d_fseek_i8")                        \
  CALLED(__msportlib_d_fseek, "_msportlib_d_fseek")                              \
  CALLED(__msportlib_d_readchar, "_msportlib_d_readchar")                        \
  CALLED(COMMITQQ, "COMMITQQ")                                                   \
  CALLED(FLUSHQQ, "FLUSHQQ")                                                     \
  CALLED(__msportlib_d_writechar, "_msportlib_d_writechar")                      \
  CALLED(__msportlib_d_curpos_i8, "_msportlib_d_curpos_i8")                      \
  CALLED(__msportlib_d_curpos, "_msportlib_d_curpos")                            \
  CALLED(for_nargs, "for_nargs")                                                 \
  CALLED(__msportlib_d_gethandle, "_msportlib_d_gethandle")                      \
  CALLED(for_getarg, "for_getarg")                                               \
  PRESENT(for_deallocate)                                                        \
  CALLED(for_allocate, "for_allocate")                                           \
  PRESENT(for_secnds_t)                                                          \
  CALLED(for_since_epoch_t, "for_since_epoch_t")                                 \
  CALLED(__FFresetseed, "FFresetseed")                                           \
  CALLED(__FFsetseed, "FFsetseed")                                               \
  CALLED(__FFdrand, "FFdrand")                                                   \
  CALLED(__FFirand, "FFirand")                                                   \
  CALLED(__FFfrand, "FFfrand")                                                   \
  CALLED(__FFgetseed, "FFgetseed")                                               \
  CALLED(for_errsns_load, "for_errsns_load")                                     \
  CALLED(__msportlib_d_get_POSIX_fd, "_msportlib_d_get_POSIX_fd")                \
  CALLED(__msportlib_set_posix_io_flag, "_msportlib_set_posix_io_flag")          \
  CALLED(for_fdopen, "for_fdopen")                                               \
  CALLED(for__setlocale, "for__setlocale")                                       \
  CALLED(for__getenv, "for__getenv")                                             \
  CALLED(for__putenv, "for__putenv")                                             \
  CALLED(for__issue_diagnostic, "for__issue_diagnostic")                         \
  PRESENT(for_qwcore_version)

// The slots: null until the library is loaded into a process that has a core runtime, then constant.
struct CoreEntries {
#define PORTLIB_CALLED_SLOT(entry, guard_name) decltype(&::entry) entry;
#define PORTLIB_PRESENT_SLOT(entry) decltype(&::entry) entry;
  PORTLIB_CORE_ENTRIES(PORTLIB_CALLED_SLOT, PORTLIB_PRESENT_SLOT)
#undef PORTLIB_CALLED_SLOT
#undef PORTLIB_PRESENT_SLOT
};
extern CoreEntries core_entries;

// Finds the core runtime among the modules of the process and fills the slots. Loads nothing.
void portlib_bind_core();

// Tells the user that the program was not linked against a core runtime, and ends the process with 1.
[[noreturn]] void portlib_need_core(const char *name);

// core::for_exit(status) and so on: test the slot, call the guard or the entry.
namespace core {
#define PORTLIB_CALLER(entry, guard_name)                                   \
  template <class... Arguments> inline auto entry(Arguments... arguments) { \
    if (core_entries.entry == nullptr) portlib_need_core(guard_name);       \
    return core_entries.entry(arguments...);                                \
  }
#define PORTLIB_NO_CALLER(entry)
PORTLIB_CORE_ENTRIES(PORTLIB_CALLER, PORTLIB_NO_CALLER)
#undef PORTLIB_CALLER
#undef PORTLIB_NO_CALLER
}  // namespace core
