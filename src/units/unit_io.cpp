// SPDX-License-Identifier: MIT
// Character transfer, positioning and flushing on Fortran units, which belong to the core runtime.
#include "unit_io.h"

#include <cerrno>

#include "errors.h"
#include "qwport.h"

using namespace qwport::units;

namespace {

constexpr int32_t end_of_file = -1;

int32_t record_write(int32_t unit, const char *c, size_t c_len) {
  return write_character(unit, c, c_len) >= 0 ? 0 : portlib_record_errno(EINVAL);
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
  const int32_t answer = read_character(*unit, c, c_len);
  if (answer >= 0) return 0;
  return answer == core_end_of_file ? end_of_file : portlib_record_errno(EINVAL);
}

// Unlike FGETC, any failure is -1 and nothing is recorded; this is meant.
int32_t GETC(char *c, size_t c_len) { return read_character(standard_input_unit, c, c_len) >= 0 ? 0 : end_of_file; }

int32_t FPUTC(const int32_t *unit, const char *c, size_t c_len) { return record_write(*unit, c, c_len); }

int32_t PUTC(const char *c, size_t c_len) { return record_write(standard_output_unit, c, c_len); }

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
