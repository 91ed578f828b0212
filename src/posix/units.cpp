// SPDX-License-Identifier: MIT
// Fortran units, which belong to the core runtime, and their descriptors.
#include "core_entries.h"
#include "qwport.h"
#include "results.h"
#include "units/unit_io.h"

using namespace qwport::posix;
namespace units = qwport::units;

namespace {

// 0, or the core runtime's negative error number as it is.
void settle_by_core(int32_t *ierror, int32_t answer) {
  *ierror = 0;
  if (answer < 0) fail(ierror, answer, -answer);
}

// The same, but that the end of the file is no failure.
void settle_reading(int32_t *ierror, int32_t answer) {
  if (answer != units::core_end_of_file) return settle_by_core(ierror, answer);
  *ierror = end_of_file;
}

}  // namespace

void PXFPOSIXIO(const int32_t *new_flag, int32_t *old_flag, int32_t *ierror) {
  core::__msportlib_set_posix_io_flag(new_flag, old_flag);
  *ierror = 0;
}

void PXFFILENO(const int32_t *lunit, int32_t *fd, int32_t *ierror) {
  const int32_t descriptor = core::__msportlib_d_get_POSIX_fd(*lunit);
  if (descriptor < 0) return fail(ierror, EBADF);
  *fd = descriptor;
  *ierror = 0;
}

void PXFFDOPEN(const int32_t *ifildes, const int32_t *iunit, const char *access, int32_t *ierror, size_t access_len) {
  const int32_t answer = core::for_fdopen(*ifildes, *iunit, access, access_len);
  *ierror = answer;
  if (answer != 0) portlib_report_errno(answer);
}

void PXFFFLUSH(const int32_t *lunit, int32_t *ierror) {
  if (core::COMMITQQ(lunit) == 0) return fail(ierror, EBADF);
  *ierror = 0;
}

void PXFFSEEK(const int32_t *lunit, const int32_t *ioffset, const int32_t *iwhence, int32_t *ierror) {
  if (core::__msportlib_d_fseek(*lunit, *ioffset, *iwhence) < 0) return fail(ierror, EINVAL);
  *ierror = 0;
}

void PXFFTELL(const int32_t *lunit, int32_t *ioffset, int32_t *ierror) {
  const int32_t position = core::__msportlib_d_curpos(*lunit);
  if (position < 0) return fail(ierror, EINVAL);
  *ioffset = position;
  *ierror = 0;
}

void PXFGETC(char *nextcar, int32_t *ierror, size_t nextcar_len) {
  settle_reading(ierror, units::read_character(units::standard_input_unit, nextcar, nextcar_len));
}

void PXFFGETC(const int32_t *lunit, char *character, int32_t *ierror, size_t character_len) {
  settle_reading(ierror, units::read_character(*lunit, character, character_len));
}

void PXFPUTC(const char *ch, int32_t *ierror, size_t ch_len) {
  settle_by_core(ierror, units::write_character(units::standard_output_unit, ch, ch_len));
}

void PXFFPUTC(const int32_t *lunit, const char *ch, int32_t *ierror, size_t ch_len) {
  settle_by_core(ierror, units::write_character(*lunit, ch, ch_len));
}
