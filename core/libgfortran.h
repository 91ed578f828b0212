// SPDX-License-Identifier: MIT
// The entry points of GNU Fortran's run-time library that the core runtime uses: its public ones, which
// the compiler itself calls and whose form is the same in every release with libgfortran-5.dll.
#pragma once

#include <cstddef>
#include <cstdint>

// Called straight through the import table, without a jump between.
#define LIBGFORTRAN_API __declspec(dllimport)

extern "C" {

// 0, or -1 for end of file and every failure; errno tells them apart. Blanks c first.
LIBGFORTRAN_API int _gfortran_fgetc(const int *unit, char *c, size_t c_len);
LIBGFORTRAN_API int _gfortran_fputc(const int *unit, const char *c, size_t c_len);
// Offsets and positions are GNU Fortran's intptr-sized integers; status is 0 or -1.
LIBGFORTRAN_API void _gfortran_fseek_sub(const int *unit, const intptr_t *offset, const int *whence, int *status);
LIBGFORTRAN_API void _gfortran_ftell_i8_sub(const int *unit, int64_t *offset);
LIBGFORTRAN_API void _gfortran_flush_i4(const int *unit);  // null: every unit
LIBGFORTRAN_API int _gfortran_fnum_i4(const int *unit);    // the descriptor, or -1

LIBGFORTRAN_API void _gfortran_ttynam_sub(const int *unit, char *name, size_t name_len);  // blank-padded

LIBGFORTRAN_API int _gfortran_iargc(void);  // -1 before the program's words are set
LIBGFORTRAN_API void _gfortran_set_args(int argument_count, char **arguments);
LIBGFORTRAN_API void _gfortran_get_command_argument_i4(const int *number, char *value, int *length, int *status,
                                                       size_t value_len);

[[noreturn]] LIBGFORTRAN_API void _gfortran_exit_i4(const int *status);
[[noreturn]] LIBGFORTRAN_API void _gfortran_stop_string(const char *text, size_t length, bool quiet);

LIBGFORTRAN_API float _gfortran_secnds(const float *start);
}
