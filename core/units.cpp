// SPDX-License-Identifier: MIT
// Characters, positions, flushing and handles of GNU Fortran's units.
#include "units.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <limits>

#include <io.h>
#include <windows.h>

#include "libgfortran.h"
#include "qwcore.h"

namespace {

constexpr int32_t end_of_file = -2;
constexpr int32_t not_open = -EBADF;

std::atomic<int32_t> posix_io_flag{0};

// The caller's errno, which a call leaves as it was; within the block it starts at 0.
class ErrnoKeeper {
 public:
  ErrnoKeeper() : cell_(errno), kept_(cell_) { cell_ = 0; }
  ~ErrnoKeeper() { cell_ = kept_; }
  ErrnoKeeper(const ErrnoKeeper &) = delete;
  ErrnoKeeper &operator=(const ErrnoKeeper &) = delete;
  [[nodiscard]] int raised() const { return cell_; }

 private:
  int &cell_;
  int kept_;
};

// The failure of the last call as a negative errno; libgfortran does not always set errno.
int32_t failure_of(int32_t unit) {
  if (unit_descriptor(unit) < 0) return not_open;
  const int32_t code = errno;
  return code > 0 ? -code : -EINVAL;
}

// libgfortran's numbers for internal files, which its entry points do not survive.
bool is_internal_file(int32_t unit) { return unit == -1 || unit == -2; }

// Also gives back what a formatted READ has read ahead: libgfortran's own character transfers and seeks
// start behind it. -1 for a unit without a position.
int64_t exact_position(int32_t unit) {
  const int kept_errno = errno;
  int64_t position = -1;
  _gfortran_ftell_i8_sub(&unit, &position);
  if (position < 0) errno = kept_errno;
  return position;
}

int64_t tell_unit(int32_t unit) {
  if (is_internal_file(unit)) return not_open;
  const int64_t position = exact_position(unit);
  if (position >= 0) return position;
  return unit_descriptor(unit) < 0 ? not_open : -ESPIPE;  // a console or a pipe
}

int32_t seek_raw(int32_t unit, int64_t offset, int32_t origin) {
  const auto wide_offset = static_cast<intptr_t>(offset);
  int status = -1;
  errno = 0;
  _gfortran_fseek_sub(&unit, &wide_offset, &origin, &status);
  return status == 0 ? 0 : failure_of(unit);
}

int32_t seek_unit(int32_t unit, int64_t offset, int32_t origin) {
  const ErrnoKeeper keeper;
  const int64_t present = tell_unit(unit);
  if (present < 0) return static_cast<int32_t>(present);
  if (origin < SEEK_SET || origin > SEEK_END) return -EINVAL;

  int64_t target = offset;
  if (origin == SEEK_CUR && __builtin_add_overflow(present, offset, &target)) return -EINVAL;
  const int32_t target_origin = origin == SEEK_CUR ? int32_t{SEEK_SET} : origin;
  if (target_origin == SEEK_SET && target < 0) return -EINVAL;

  // libgfortran's seek leaves a unit that has met its end of file there; REWIND does not.
  qwcore_rewind(&unit);
  const int32_t result = seek_raw(unit, target, target_origin);
  if (result != 0) seek_raw(unit, present, SEEK_SET);
  const int64_t reached = tell_unit(unit);
  qwcore_set_stream_position(&unit, &reached);
  return result;
}

// libgfortran gives one answer for end of file and for failures. Only the latter set errno, so reading is
// tried once more with errno cleared; but not from a console, where that would wait for more input.
int32_t read_after_failure(int32_t unit) {
  const int32_t descriptor = unit_descriptor(unit);
  if (descriptor < 0) return not_open;
  if (_isatty(descriptor) != 0) return end_of_file;

  const ErrnoKeeper keeper;
  char character;
  if (_gfortran_fgetc(&unit, &character, 1) == 0) return static_cast<unsigned char>(character);
  if (keeper.raised() == 0) return end_of_file;
  // A number that would read as end of file is reported as an I/O error.
  return keeper.raised() == -end_of_file ? -EIO : -keeper.raised();
}

// The name under which the unit's file can be opened again: a console's, or what the unit was opened with.
int32_t name_of_unit(int32_t unit, intptr_t handle, char *name, int32_t room) {
  DWORD console_mode = 0;
  const bool is_console = GetConsoleMode(reinterpret_cast<HANDLE>(handle), &console_mode) != 0;
  if (!is_console) return qwcore_unit_name(&unit, name, &room);
  _gfortran_ttynam_sub(&unit, name, static_cast<size_t>(room));
  const char *end = std::find(name, name + room, ' ');
  return static_cast<int32_t>(end - name);
}

bool flush_unit(int32_t unit) {
  if (unit_descriptor(unit) < 0) return false;
  // A write that fails here shows in errno alone: a full disk, or a unit opened for reading.
  const ErrnoKeeper keeper;
  _gfortran_flush_i4(&unit);
  return keeper.raised() == 0;
}

}  // namespace

int32_t unit_descriptor(int32_t unit) { return is_internal_file(unit) ? -1 : _gfortran_fnum_i4(&unit); }

// Programs read and write long files with these two, so success takes the position and the transfer only.

int32_t __msportlib_d_readchar(int32_t unit, char * /*buffer*/, size_t /*length*/) {
  if (is_internal_file(unit)) return not_open;
  exact_position(unit);
  char character;
  if (_gfortran_fgetc(&unit, &character, 1) == 0) return static_cast<unsigned char>(character);
  return read_after_failure(unit);
}

int32_t __msportlib_d_writechar(int32_t unit, int32_t character) {
  if (is_internal_file(unit)) return not_open;
  exact_position(unit);
  const auto byte = static_cast<char>(character);
  if (_gfortran_fputc(&unit, &byte, 1) == 0) return 0;
  return failure_of(unit);
}

int32_t __msportlib_d_fseek_i8(int32_t unit, int64_t offset, int32_t origin) { return seek_unit(unit, offset, origin); }

int32_t __msportlib_d_fseek(int32_t unit, int32_t offset, int32_t origin) { return seek_unit(unit, offset, origin); }

int64_t __msportlib_d_curpos_i8(int32_t unit) { return tell_unit(unit); }

int32_t __msportlib_d_curpos(int32_t unit) {
  const int64_t position = tell_unit(unit);
  return position <= std::numeric_limits<int32_t>::max() ? static_cast<int32_t>(position) : -ERANGE;
}

int32_t FLUSHQQ(const int32_t *unit) {
  if (unit != nullptr) return flush_unit(*unit);
  _gfortran_flush_i4(nullptr);
  return 1;
}

int32_t COMMITQQ(const int32_t *unit) {
  if (!flush_unit(*unit)) return 0;
  const int32_t descriptor = unit_descriptor(*unit);
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
  const bool has_disk_blocks = GetFileType(handle) == FILE_TYPE_DISK && qwcore_unit_is_writable(unit) != 0;
  return !has_disk_blocks || _commit(descriptor) == 0;
}

intptr_t __msportlib_d_gethandle(int32_t unit, char *name, int32_t *name_size) {
  constexpr intptr_t no_console_handle = -2;

  const int32_t descriptor = unit_descriptor(unit);
  const intptr_t handle = descriptor < 0 ? -1 : _get_osfhandle(descriptor);
  if (name != nullptr && name_size != nullptr && *name_size > 0) {
    const int32_t room = *name_size - 1;
    *name_size = handle == -1 ? 0 : name_of_unit(unit, handle, name, room);
    name[*name_size] = '\0';
  }
  // The standard units of a program without a console are open but lead nowhere.
  return handle == no_console_handle ? 0 : handle;
}

int32_t __msportlib_d_get_POSIX_fd(int32_t unit) {
  // What the program wrote through the unit must stand before what it writes through the descriptor.
  return flush_unit(unit) ? unit_descriptor(unit) : not_open;
}

// libgfortran reads and writes every file as a stream of bytes, so the flag changes nothing; it is kept
// for programs that save and restore it.
void __msportlib_set_posix_io_flag(const int32_t *new_flag, int32_t *old_flag) {
  const int32_t previous = posix_io_flag.exchange(*new_flag);
  if (old_flag != nullptr) *old_flag = previous;
}
