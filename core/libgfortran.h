// SPDX-License-Identifier: MIT
// The entry points of GNU Fortran's run-time library that the core runtime uses: its public ones, which
// the compiler itself calls and whose form is the same in every release with libgfortran-5.dll.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

// 0, or -1 for end of file and every failure; errno tells them apart. Blanks c first.
int _gfortran_fgetc(const int *unit, char *c, size_t c_len);
int _gfortran_fputc(const int *unit, const char *c, size_t c_len);
// Offsets and positions are GNU Fortran's intptr-sized integers; status is 0 or -1.
void _gfortran_fseek_sub(const int *unit, const intptr_t *offset, const int *whence, int *status);
void _gfortran_ftell_i8_sub(const int *unit, int64_t *offset);
void _gfortran_flush_i4(const int *unit);  // null: every unit
int _gfortran_fnum_i4(const int *unit);    // the descriptor, or -1

int _gfortran_iargc(void);
void _gfortran_get_command_argument_i4(const int *number, char *value, int *length, int *status, size_t value_len);

[[noreturn]] void _gfortran_exit_i4(const int *status);
[[noreturn]] void _gfortran_stop_string(const char *text, size_t length, bool quiet);

float _gfortran_secnds(const float *start);
}
