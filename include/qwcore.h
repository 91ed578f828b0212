// SPDX-License-Identifier: MIT
// The contract between libqwport and a Fortran core runtime: the 37 entry points that libqwport looks
// up in the core runtime's module when it is loaded. libqwcorert.dll is the core runtime for programs
// compiled by GNU Fortran; any module that exports these names with this behaviour can take its place.
//
// Calling convention: C, for x86-64 Windows. Numbers marked "by address" are pointers, all others are
// values. Texts are NUL-terminated C strings unless a length follows. Unit numbers are Fortran unit
// numbers. "Negative errno" means -EBADF (-9) for a unit that is not open, -EINVAL (-22) for a request
// that makes no sense, and so on; no entry ends the program because a unit is not open.
#ifndef QWCORE_H
#define QWCORE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// ---- Ending the program -------------------------------------------------------------------------

// Writes the text and a newline to standard error, removes the handler of SIGABRT (22) and calls it if there
// was one, closes the units and ends the process with status 3. None of these three waits for a unit that another
// thread uses. Does not return.
void for_abort(const char *text, size_t length);

// STOP with an optional text (null or length 0: none): the text goes to standard error after "STOP ".
// Units are closed; the process ends with status 0. Does not return.
void for_stop(const char *text, size_t length);

// Closes the units and ends the process. status: by address, null means 0. Does not return.
void for_exit(const int32_t *status);

// ---- Signals and error handlers -----------------------------------------------------------------

// Installs a handler for a C run-time signal number (2, 4, 8, 11, 15, 21, 22).
// handler: 0 default action, 1 ignore, else the address of a procedure. A handler of signal 8 is called
// with the address of the signal number and the address of the floating-point code (both int32_t); any
// other handler with the signal number by value. A handler stays installed until it is replaced.
// Result: the previous handler value, or -1 with errno 22 for a signal number that does not exist.
intptr_t for__signal(int32_t signal_number, intptr_t handler);

// Raises a signal in the calling thread: its handler has been called when this returns. Result: 0, or non-zero for
// an unknown signal number.
int32_t for__raise(int32_t signal_number);

// Installs the procedure that is called when the core runtime reports an error:
// handler(error code, continuable, text, context, length of text), all but the length by address.
// handler 0 removes it. context: a word handed to the handler as it is. previous_handler,
// previous_context: by address, null if not wanted. Result: 1, or 0 if it could not be installed.
int32_t for__establish_user_error_handler(intptr_t handler, intptr_t context, intptr_t *previous_handler,
                                          intptr_t *previous_context);

// ---- Units --------------------------------------------------------------------------------------

// Positions a unit for the next transfer. offset: bytes. origin: 0 from the start of the file, 1 from
// the present position, 2 from the end. Result: 0, or a negative errno; after a failure the position is
// what it was.
int32_t __msportlib_d_fseek_i8(int32_t unit, int64_t offset, int32_t origin);
int32_t __msportlib_d_fseek(int32_t unit, int32_t offset, int32_t origin);

// Reads one character. buffer and length are what the caller was given and are not written to. errno stays.
// Result: 0 to 255, -2 at end of file, or any other negative value for a failure.
int32_t __msportlib_d_readchar(int32_t unit, char *buffer, size_t length);

// Writes one character, given as the sign-extended byte. Result: 0, or a negative errno, -13 (EACCES) for a unit
// opened for reading.
int32_t __msportlib_d_writechar(int32_t unit, int32_t character);

// Flushes a unit and has the operating system write its file to disk. unit: by address.
// Result: LOGICAL(4), true when it was done or there was nothing to write; false for a unit that is not
// open or a write that failed.
int32_t COMMITQQ(const int32_t *unit);

// Flushes a unit, or every unit when the address is null.
// Result: LOGICAL(4), false for a unit that is not open.
int32_t FLUSHQQ(const int32_t *unit);

// The position of a unit in bytes from the start of its file, or a negative errno. The 32-bit form
// answers -34 (ERANGE) for positions of 2 GiB and more.
int64_t __msportlib_d_curpos_i8(int32_t unit);
int32_t __msportlib_d_curpos(int32_t unit);

// The operating-system handle of a unit: 0 for a unit without one, -1 for a unit that is not open.
// name: receives the file name connected to the unit, NUL-terminated and cut to the buffer; may be null.
// name_size: by address, the buffer's size on entry and the length of the stored name on return; may be
// null together with name.
intptr_t __msportlib_d_gethandle(int32_t unit, char *name, int32_t *name_size);

// The C run-time descriptor of a unit, flushed so that the descriptor can be used next to it, or a
// negative errno.
int32_t __msportlib_d_get_POSIX_fd(int32_t unit);

// Switches POSIX I/O on or off for the process. new_flag: by address. old_flag: by address, receives
// the previous setting; may be null.
void __msportlib_set_posix_io_flag(const int32_t *new_flag, int32_t *old_flag);

// Connects an open descriptor to a unit; closing the unit closes the descriptor. The standard descriptors
// 0 to 2 stay open and the unit has a copy of them.
// access: keywords separated by commas, in any case, all optional: FORM=FORMATTED or UNFORMATTED
// (default FORMATTED), BLANK=NULL or ZERO, POSITION=ASIS or APPEND, STATUS=OLD or UNKNOWN, NEWLINE=YES
// or NO. Result: 0 or an errno value: 9 not a descriptor, 22 a keyword that is not understood, 5 the
// unit could not be opened: its number is not allowed, or the file cannot be opened a second time.
int32_t for_fdopen(int32_t descriptor, int32_t unit, const char *access, size_t length);

// ---- Command line and memory --------------------------------------------------------------------

// The number of words on the command line, the program's name included.
int32_t for_nargs(void);

// Copies word number `number` (by address; 0 is the program's name) into buffer, blank-padded or cut to
// buffer_length, and stores the word's full length, or -1 if there is no such word, into length.
void for_getarg(const int32_t *number, char *buffer, int64_t *length, size_t buffer_length);

// Allocates size bytes from the C heap, which is the heap of GNU Fortran's ALLOCATE and DEALLOCATE, and
// stores the address. Result: 0 or 12 (ENOMEM), then null is stored.
int32_t for_allocate(size_t size, void **address);

// Frees what for_allocate gave and stores null. Result: 0.
int32_t for_deallocate(void **address);

// ---- Clocks -------------------------------------------------------------------------------------

// When the process was created: seconds since 1970-01-01 00:00:00 UTC, with fraction.
double for__process_start_time(void);

// Seconds from *start (such a time) to now.
double for_since_epoch_t(const double *start);

// Seconds since local midnight minus *start.
float for_secnds_t(const float *start);

// ---- The shared random generator ----------------------------------------------------------------

void __FFresetseed(void);
void __FFsetseed(int32_t seed);
double __FFdrand(void);   // 0 <= result < 1, 53 random bits
int32_t __FFirand(void);  // 0 <= result <= 2147483647
float __FFfrand(void);    // 0 <= result < 1, 24 random bits
void __FFgetseed(int32_t *seed);

// ---- Error status, environment, locale, diagnostics ---------------------------------------------

// Keeps five values of the last failure for the error-status query: a Fortran error number, a system
// error (errno) number, a secondary status, a unit and a condition.
void for_errsns_load(int32_t fortran_error, int32_t system_error, int32_t status, int32_t unit, int32_t condition);

// The error-status query of libqwcorert, which libqwport does not bind: gives the five values of the
// last failure in the process, all by address and null if not wanted, and sets them to 0.
void ERRSNS(int32_t *fortran_error, int32_t *system_error, int32_t *status, int32_t *unit, int32_t *condition);

// The value of an environment variable of the process, or null. The text stays valid until the next call in the
// process: callers in several threads take turns.
const char *for__getenv(const char *name);

// Sets a variable from NAME=VALUE; nothing after the equals sign removes it. The text is copied.
// Result: 0, or -1 with errno set.
int32_t for__putenv(const char *assignment);

// The C run-time's setlocale: null as locale asks only. Result: the locale's name, or null.
const char *for__setlocale(int32_t category, const char *locale);

// Writes a diagnostic to standard error. severity: 0 information, 1 warning, 2 error. An error is first
// offered to the user error handler; when that answers true nothing is written.
void for__issue_diagnostic(int32_t severity, int32_t code, const char *text);

// Marks a core runtime that fits this version of the contract. Result: the core runtime's version.
const char *for_qwcore_version(void);

#ifdef __cplusplus
}
#endif

#endif
