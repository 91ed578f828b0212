// SPDX-License-Identifier: MIT
// Character transfer, positioning and flushing on Fortran units, which belong to the core runtime.
#include <cerrno>

#include "core_entries.h"
#include "errors.h"
#include "qwport.h"

namespace {

constexpr int32_t standard_input_unit = 5;
constexpr int32_t standard_output_unit = 6;
constexpr int32_t core_end_of_file = -2;
constexpr int32_t end_of_file = -1;

int32_t write_character(int32_t unit, char character) {
  // Characters from 128 on are passed as negative numbers.
  const int32_t result = core::__msportlib_d_writechar(unit, static_cast<signed char>(character));
  return result >= 0 ? 0 : portlib_record_errno(EINVAL);
}

int32_t record_seek(int32_t result) {
  // The one family that clears the last error: success stores 0.
  portlib_last_error.store(result, std::memory_order_relaxed);
  return result;
}

template <class Position> Position record_tell(Position position) {
  if (position < 0) {
    portlib_last_error.store(static_cast<int32_t>(-position), std::memory_order_relaxed);
  }
  return position;
}

}  // namespace

int32_t FGETC(const int32_t *unit, char *c, size_t c_len) {
  const int32_t result = core::__msportlib_d_readchar(*unit, c, c_len);
  if (result == core_end_of_file) return end_of_file;
  if (result < 0) return portlib_record_errno(EINVAL);
  *c = static_cast<char>(result);
  return 0;
}

// Unlike FGETC, any failure is -1 and nothing is recorded; this is meant.
int32_t GETC(char *c, size_t c_len) {
  const int32_t result = core::__msportlib_d_readchar(standard_input_unit, c, c_len);
  if (result < 0) return end_of_file;
  *c = static_cast<char>(result);
  return 0;
}

int32_t FPUTC(const int32_t *unit, const char *c, size_t /*c_len*/) { return write_character(*unit, *c); }

int32_t PUTC(const char *c, size_t /*c_len*/) { return write_character(standard_output_unit, *c); }

int32_t FSEEK(const int32_t *unit, const int32_t *offset, const int32_t *origin) {
  return record_seek(core::__msportlib_d_fseek(*unit, *offset, *origin));
}

int32_t FSEEKI8(const int32_t *unit, const int64_t *offset, const int32_t *origin) {
  return record_seek(core::__msportlib_d_fseek_i8(*unit, *offset, *origin));
}

int32_t FTELL(const int32_t *unit) { return record_tell(core::__msportlib_d_curpos(*unit)); }

int64_t FTELLI8(const int32_t *unit) { return record_tell(core::__msportlib_d_curpos_i8(*unit)); }

int32_t GETPOS(const int32_t *unit) { return core::__msportlib_d_curpos(*unit); }

int64_t GETPOSI8(const int32_t *unit) { return core::__msportlib_d_curpos_i8(*unit); }

int32_t FLUSH(const int32_t *unit) { return core::FLUSHQQ(unit); }
