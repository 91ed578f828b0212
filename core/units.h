// SPDX-License-Identifier: MIT
// What the core runtime asks of GNU Fortran's units beyond libgfortran's entry points.
#pragma once

#include <cstdint>

extern "C" {

// In unit_statements.f90, which reaches the units by Fortran's own statements.

// REWIND: forgets an end of file that a READ has met.
void qwcore_rewind(const int32_t *unit);
// READ or WRITE of nothing with POS=: has stream access go on at this position, in bytes from the start.
// Other access is left alone.
void qwcore_set_stream_position(const int32_t *unit, const int64_t *position);
// INQUIRE(NAME=): the length of the name stored into name, 0 for a unit without one.
int32_t qwcore_unit_name(const int32_t *unit, char *name, const int32_t *name_size);
// READ of one character: 0 to 255, -1 at the end of a line, which it takes, -2 at the end of the file and behind it,
// -3 for a failure.
int32_t qwcore_read_character(const int32_t *unit);
// INQUIRE(FORMATTED=)
int32_t qwcore_unit_is_formatted(const int32_t *unit);
// INQUIRE(OPENED=): non-zero for an open unit that is not an internal file of libgfortran.
int32_t qwcore_unit_is_external(const int32_t *unit);
// INQUIRE(ACTION=): non-zero unless the unit is connected for reading only.
int32_t qwcore_unit_is_writable(const int32_t *unit);

// How OPEN is to connect a unit; the values are those of unit_statements.f90.
struct OpenOptions {
  int32_t action;     // 1 read, 2 write, 3 both
  int32_t formatted;  // 0 or 1
  int32_t blank_zero;
  int32_t append;
};
// OPEN of an existing file: 0 or GNU Fortran's IOSTAT.
int32_t qwcore_open(const int32_t *unit, const char *path, const int32_t *path_length, const OpenOptions *options);
}

namespace qwport::core {

class UnitUse;

constexpr int32_t descriptor_limit = 2048;  // the C run-time's

// The C run-time descriptor of a unit, or -1 for a unit that is not open. The unit may be asked.
int32_t unit_descriptor(int32_t unit);

// 0, or a negative errno, and then the unit stands where it stood.
int32_t seek_unit(const UnitUse &use, int64_t offset, int32_t origin);

}  // namespace qwport::core
