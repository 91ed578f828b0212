// SPDX-License-Identifier: MIT
// Units that are terminals. A unit without a host handle counts as one.
#include <algorithm>
#include <cerrno>

#include <windows.h>

#include "core_entries.h"
#include "errors.h"
#include "qwport.h"
#include "text.h"

namespace {

constexpr intptr_t no_handle = 0;
constexpr intptr_t not_open = -1;

bool is_terminal(intptr_t handle) {
  return handle == no_handle || GetFileType(reinterpret_cast<HANDLE>(handle)) == FILE_TYPE_CHAR;
}

}  // namespace

int32_t ISATTY(const int32_t *lunit) {
  const intptr_t handle = core::__msportlib_d_gethandle(*lunit, nullptr, nullptr);
  if (handle == not_open) {
    portlib_report_errno(EBADF);
    return 0;
  }
  return is_terminal(handle) ? 1 : 0;
}

void TTYNAM(char *name, const int32_t *lunit, size_t name_len) {
  std::fill_n(name, name_len, ' ');
  char unit_name[256] = "";
  int32_t length = sizeof unit_name - 1;
  const intptr_t handle = core::__msportlib_d_gethandle(*lunit, unit_name, &length);
  if (handle == not_open) {
    portlib_report_errno(EBADF);
  } else if (is_terminal(handle)) {
    portlib_cstr_to_fstr(name, unit_name, name_len, static_cast<size_t>(length));
  } else {
    portlib_report_errno(ENOTTY);
  }
}
