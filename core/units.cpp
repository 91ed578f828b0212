// SPDX-License-Identifier: MIT
// Characters, positions, flushing and handles of GNU Fortran's units.
#include "units.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <limits>

#include <io.h>
#include <windows.h>

#include "libgfortran.h"
#include "qwcore.h"
#include "unit_use.h"

namespace {

using namespace qwport::core;

constexpr int32_t end_of_file = -2;
constexpr int32_t not_open = -EBADF;
constexpr int32_t no_position = -ESPIPE;
constexpr int32_t nothing_written = -1;

std::atomic<int32_t> posix_io_flag{0};

// The failure of the last call as a negative errno; libgfortran does not always set errno.
int32_t failure_of(const UnitUse &use) {
  if (unit_descriptor(use.state().unit) < 0) return not_open;
  // A number that would read as end of file is told as an I/O error.
  const int32_t code = use.raised_errno() == -end_of_file ? EIO : use.raised_errno();
  return code > 0 ? -code : -EINVAL;
}

// ---- Positions ----------------------------------------------------------------------------------

// libgfortran's character transfers and seeks start behind what a formatted READ has read ahead; asking for the
// position gives that back to a file. What has no position loses it, so only a file is asked.
int64_t settle_file(int32_t unit) {
  int64_t position = -1;
  _gfortran_ftell_i8_sub(&unit, &position);
  return position;
}

// Brings a unit to where the program has got to. Result: the position, not_open or no_position.
int64_t settle_position(UnitState &state) {
  const int64_t position = state.has_position ? settle_file(state.unit) : -1;
  if (position >= 0) return position;
  const int32_t descriptor = unit_descriptor(state.unit);
  const auto handle = reinterpret_cast<HANDLE>(descriptor < 0 ? -1 : _get_osfhandle(descriptor));
  state.has_position = descriptor >= 0 && GetFileType(handle) == FILE_TYPE_DISK;
  if (!state.has_position) return descriptor < 0 ? not_open : no_position;
  return std::max(settle_file(state.unit), int64_t{no_position});
}

int64_t tell_unit(int32_t unit) {
  const UnitUse use(unit);
  return use.failure() != 0 ? use.failure() : settle_position(use.state());
}

int32_t seek_file(const UnitUse &use, int64_t offset, int32_t origin) {
  const auto wide_offset = static_cast<intptr_t>(offset);
  int status = -1;
  use.forget_errno();
  _gfortran_fseek_sub(&use.state().unit, &wide_offset, &origin, &status);
  return status == 0 ? 0 : failure_of(use);
}

int32_t seek_unit(int32_t unit, int64_t offset, int32_t origin) {
  const UnitUse use(unit);
  return use.failure() != 0 ? use.failure() : seek_unit(use, offset, origin);
}

// ---- Characters ---------------------------------------------------------------------------------

// What a READ has read ahead of a pipe or a console can only be had by another READ, which takes line ends of
// every form.
int32_t read_by_statement(int32_t unit) {
  constexpr int32_t end_of_record = -1;
  const int32_t answer = qwcore_read_character(&unit);
  if (answer == end_of_record) return '\n';
  return answer >= end_of_file ? answer : -EIO;
}

// libgfortran gives one answer for end of file and for failures. Only the latter set errno, so reading is
// tried once more with errno cleared; but not from a console, where that would wait for more input.
int32_t read_after_failure(const UnitUse &use) {
  const int32_t unit = use.state().unit;
  if (_isatty(unit_descriptor(unit)) != 0) return end_of_file;
  use.forget_errno();
  char character;
  if (_gfortran_fgetc(&unit, &character, 1) == 0) return static_cast<unsigned char>(character);
  return use.raised_errno() == 0 ? end_of_file : failure_of(use);
}

// ---- Files --------------------------------------------------------------------------------------

// The name under which the unit's file can be opened again: a console's, or what the unit was opened with.
int32_t name_of_unit(int32_t unit, intptr_t handle, char *name, int32_t room) {
  DWORD console_mode = 0;
  const bool is_console = GetConsoleMode(reinterpret_cast<HANDLE>(handle), &console_mode) != 0;
  if (!is_console) return qwcore_unit_name(&unit, name, &room);
  _gfortran_ttynam_sub(&unit, name, static_cast<size_t>(room));
  const char *end = std::find(name, name + room, ' ');
  return static_cast<int32_t>(end - name);
}

// Gives the descriptor, or a negative errno. A write that fails here shows in errno alone, as on a full disk.
int32_t flush_unit(const UnitUse &use) {
  if (use.failure() != 0) return use.failure();
  const int32_t descriptor = unit_descriptor(use.state().unit);
  if (descriptor < 0) return not_open;
  use.forget_errno();
  _gfortran_flush_i4(&use.state().unit);
  return use.raised_errno() == 0 ? descriptor : -use.raised_errno();
}

// libgfortran's own leaves those of NEWUNIT out. Each holds a descriptor, so that their numbers are as many at most.
void flush_every_unit() {
  constexpr int32_t first_new_unit = -10;
  _gfortran_flush_i4(nullptr);
  for (int32_t unit = first_new_unit; unit > first_new_unit - descriptor_limit; --unit) {
    if (may_be_asked(unit)) _gfortran_flush_i4(&unit);
  }
}

}  // namespace

int32_t qwport::core::unit_descriptor(int32_t unit) { return _gfortran_fnum_i4(&unit); }

int32_t qwport::core::seek_unit(const UnitUse &use, int64_t offset, int32_t origin) {
  const int32_t unit = use.state().unit;
  const int64_t present = settle_position(use.state());
  if (present < 0) return static_cast<int32_t>(present);
  if (origin < SEEK_SET || origin > SEEK_END) return -EINVAL;

  int64_t target = offset;
  if (origin == SEEK_CUR && __builtin_add_overflow(present, offset, &target)) return -EINVAL;
  const int32_t target_origin = origin == SEEK_CUR ? int32_t{SEEK_SET} : origin;
  if (target_origin == SEEK_SET && target < 0) return -EINVAL;

  // libgfortran's seek leaves a unit that has met its end of file there; REWIND does not.
  qwcore_rewind(&unit);
  const int32_t result = seek_file(use, target, target_origin);
  if (result != 0) seek_file(use, present, SEEK_SET);
  const int64_t reached = settle_position(use.state());
  qwcore_set_stream_position(&unit, &reached);
  use.state().written_end = nothing_written;
  return result;
}

// Programs read and write long files with these two, so success takes the position and the transfer only.

int32_t __msportlib_d_readchar(int32_t unit, char * /*buffer*/, size_t /*length*/) {
  const UnitUse use(unit);
  if (use.failure() != 0) return use.failure();
  use.state().written_end = nothing_written;
  const int64_t position = settle_position(use.state());
  if (position == not_open) return not_open;
  if (position < 0 && qwcore_unit_is_formatted(&unit) != 0) return read_by_statement(unit);
  char character;
  if (_gfortran_fgetc(&unit, &character, 1) == 0) return static_cast<unsigned char>(character);
  return read_after_failure(use);
}

int32_t __msportlib_d_writechar(int32_t unit, int32_t character) {
  const UnitUse use(unit);
  if (use.failure() != 0) return use.failure();
  UnitState &state = use.state();
  const int64_t position = settle_position(state);
  if (position == not_open) return not_open;
  // libgfortran would take it, fail to write it out and leave the file open at CLOSE. A unit that stands behind the
  // character that was written last was asked before that one.
  const bool goes_on = position >= 0 && position == state.written_end;
  if (!goes_on && qwcore_unit_is_writable(&unit) == 0) return -EACCES;
  const auto byte = static_cast<char>(character);
  if (_gfortran_fputc(&unit, &byte, 1) != 0) return failure_of(use);
  state.written_end = position + 1;
  return 0;
}

int32_t __msportlib_d_fseek_i8(int32_t unit, int64_t offset, int32_t origin) { return seek_unit(unit, offset, origin); }

int32_t __msportlib_d_fseek(int32_t unit, int32_t offset, int32_t origin) { return seek_unit(unit, offset, origin); }

int64_t __msportlib_d_curpos_i8(int32_t unit) { return tell_unit(unit); }

int32_t __msportlib_d_curpos(int32_t unit) {
  const int64_t position = tell_unit(unit);
  return position <= std::numeric_limits<int32_t>::max() ? static_cast<int32_t>(position) : -ERANGE;
}

int32_t FLUSHQQ(const int32_t *unit) {
  if (unit != nullptr) return flush_unit(UnitUse(*unit)) >= 0;
  flush_every_unit();
  return 1;
}

int32_t COMMITQQ(const int32_t *unit) {
  const UnitUse use(*unit);
  const int32_t descriptor = flush_unit(use);
  if (descriptor < 0) return 0;
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
  const bool has_disk_blocks = GetFileType(handle) == FILE_TYPE_DISK && qwcore_unit_is_writable(unit) != 0;
  return !has_disk_blocks || _commit(descriptor) == 0;
}

intptr_t __msportlib_d_gethandle(int32_t unit, char *name, int32_t *name_size) {
  constexpr intptr_t no_console_handle = -2;

  const int32_t descriptor = may_be_asked(unit) ? unit_descriptor(unit) : -1;
  const intptr_t handle = descriptor < 0 ? -1 : _get_osfhandle(descriptor);
  if (name != nullptr && name_size != nullptr && *name_size > 0) {
    const int32_t room = *name_size - 1;
    *name_size = handle == -1 ? 0 : name_of_unit(unit, handle, name, room);
    name[*name_size] = '\0';
  }
  // The standard units of a program without a console are open but lead nowhere.
  return handle == no_console_handle ? 0 : handle;
}

// What the program wrote through the unit must stand before what it writes through the descriptor.
int32_t __msportlib_d_get_POSIX_fd(int32_t unit) { return flush_unit(UnitUse(unit)); }

// libgfortran reads and writes every file as a stream of bytes, so the flag changes nothing; it is kept
// for programs that save and restore it.
void __msportlib_set_posix_io_flag(const int32_t *new_flag, int32_t *old_flag) {
  const int32_t previous = posix_io_flag.exchange(*new_flag);
  if (old_flag != nullptr) *old_flag = previous;
}
