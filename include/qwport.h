// SPDX-License-Identifier: MIT
// qwport: the portability library of Fortran programs on 64-bit Windows. This header declares every
// exported routine for C and C++ callers; Fortran programs say `use qwport`.
//
// What holds for every routine and is not repeated below:
//
// Calling convention. C, for x86-64 Windows. Every argument is passed by address: INTEGER(4) as int32_t,
// INTEGER(8) as int64_t, REAL(4) as float, REAL(8) as double, an array as the address of its first
// element. Results come back by value. An optional argument that is left out is a null address; no other
// address may be null unless it is said so.
//
// CHARACTER arguments. The address stands at the argument's place; the length, a size_t named like the
// argument with _len, stands after the last ordinary argument, in the order of the texts. A text has no
// terminator: input ends at the length and loses its trailing blanks; output is filled with blanks up
// to the length, or cut to it.
//
// LOGICAL values are INTEGER(4): 0 is false, everything else true; some routines answer true as 1 and
// some as -1. The Fortran module turns both into a proper .TRUE.
//
// Errors are C errno numbers (2 ENOENT, 9 EBADF, 12 ENOMEM, 13 EACCES, 22 EINVAL, 34 ERANGE, ...). A
// routine that says "reports" an error sets errno (read it with GETLASTERROR) and the core runtime's
// error status (read it with ERRSNS). One that says "records" it also stores it for IERRNO. A success
// clears none of them, unless it is said so.
//
// Core runtime. Routines marked "core" reach Fortran's units and the like through a Fortran core runtime
// that was in the process when this library was loaded (libqwcorert.dll for GNU Fortran). Without one
// they show a message box that says so and end the process with status 1. Reporting an error needs it
// too.
//
// Threads. Routines may be called from several threads at once unless it is said otherwise. The value
// of IERRNO is one for the process.
#ifndef QWPORT_H
#define QWPORT_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// ---- Identification and error state -------------------------------------------------------------

// The library's title, version and build date, separated by tabs.
// text: out. Result: 4, always. Needs no core runtime.
int32_t FOR_QWPORT_VERSION(char *text, size_t text_len);

// The error number that a routine recorded last; 0 if none did. FSEEK and FSEEKI8 set it to their result
// on every call, 0 included.
int32_t IERRNO(void);

// The calling thread's C errno. GETLASTERRORQQ is a second name of the same routine.
int32_t GETLASTERROR(void);
int32_t GETLASTERRORQQ(void);

// ---- Ending the program -------------------------------------------------------------------------

// Ends the program abnormally (status 3 with libqwcorert) after closing its units; "abort: " and the
// message go to standard error. message: optional, at most 240 characters are shown, up to a NUL if it
// has one; when it is left out the text is "abort: Fortran Abort Called". Core.
void ABORT(const char *message, size_t message_len);

// Ends the program after closing its units. status: the process's exit status, optional, default 0.
// Core.
void EXIT(const int32_t *status);

// ---- Fortran units ------------------------------------------------------------------------------
// unit is the number of a unit that the program opened. Transfers take the file's bytes as they are,
// line ends included. All are core routines.

// Writes what is buffered for a unit to its file. unit: null flushes all units (libqwcorert).
// Result: LOGICAL, false for a unit that is not open.
int32_t FLUSH(const int32_t *unit);

// Reads the next character of a unit into the first position of c.
// Result: 0; -1 at end of file, nothing recorded; 22 for any other failure, recorded. c changes on
// success only.
int32_t FGETC(const int32_t *unit, char *c, size_t c_len);

// FGETC on unit 5, standard input. Result: 0, or -1 for end of file and every failure, nothing recorded.
int32_t GETC(char *c, size_t c_len);

// Writes the first character of c to a unit. Result: 0, or 22 for a failure, recorded.
int32_t FPUTC(const int32_t *unit, const char *c, size_t c_len);

// FPUTC on unit 6, standard output.
int32_t PUTC(const char *c, size_t c_len);

// Positions a unit. offset: bytes; origin: 0 from the start of the file, 1 from the present position,
// 2 from the end. Result: 0, or the core runtime's error code (libqwcorert: -9 the unit is not open, -22
// no such position or origin, -29 the unit cannot be positioned); IERRNO gives it in either case. After
// a failure the position is what it was.
int32_t FSEEK(const int32_t *unit, const int32_t *offset, const int32_t *origin);
int32_t FSEEKI8(const int32_t *unit, const int64_t *offset, const int32_t *origin);

// The position of a unit: bytes from the start of its file. Result: the position, or a negative error
// code (libqwcorert: -9 the unit is not open, -29 it has no position, -34 in FTELL a position of 2 GiB
// or more), whose positive value IERRNO gives; errno is left alone.
int32_t FTELL(const int32_t *unit);
int64_t FTELLI8(const int32_t *unit);

// As FTELL and FTELLI8, but records nothing.
int32_t GETPOS(const int32_t *unit);
int64_t GETPOSI8(const int32_t *unit);

#ifdef __cplusplus
}
#endif

#endif
