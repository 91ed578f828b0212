// SPDX-License-Identifier: MIT
// Full paths and their parts.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <windows.h>

#include "errors.h"
#include "qwport.h"
#include "text.h"

int32_t FULLPATHQQ(const char *name, char *pathbuf, size_t name_len, size_t pathbuf_len) {
  constexpr size_t longest_path = 259;
  const HeapText path = portlib_own_text(name, name_len);
  if (path == nullptr) return 0;
  if (pathbuf == nullptr) {
    portlib_report_errno(EINVAL);
    return 0;
  }
  std::fill_n(pathbuf, pathbuf_len, ' ');
  const size_t size = std::min(pathbuf_len, longest_path) + 1;
  const HeapText full_path = portlib_allocate_text(size);
  if (full_path == nullptr) {
    portlib_report_errno(ENOMEM);
    return 0;
  }
  const DWORD length = GetFullPathNameA(path.get(), static_cast<DWORD>(size), full_path.get(), nullptr);
  if (length == 0) portlib_map_os_error();
  // A path that does not fit: the host's answer is the size it needs, and pathbuf stays blank.
  if (length < size) portlib_cstr_to_fstr(pathbuf, full_path.get(), pathbuf_len, length);
  return static_cast<int32_t>(length);
}

int32_t SPLITPATHQQ(const char *path, char *drive, char *dir, char *name, char *ext, size_t path_len, size_t drive_len,
                    size_t dir_len, size_t name_len, size_t ext_len) {
  std::fill_n(drive, drive_len, ' ');
  std::fill_n(dir, dir_len, ' ');
  std::fill_n(name, name_len, ' ');
  std::fill_n(ext, ext_len, ' ');
  const HeapText relative_path = portlib_own_text(path, path_len);
  if (relative_path == nullptr) return 0;
  char full_path[_MAX_PATH];
  if (_fullpath(full_path, relative_path.get(), sizeof full_path) == nullptr) return 0;

  char drive_part[_MAX_DRIVE];
  char dir_part[_MAX_DIR];
  char name_part[_MAX_FNAME];
  char ext_part[_MAX_EXT];
  _splitpath(full_path, drive_part, dir_part, name_part, ext_part);
  portlib_cstr_to_fstr(drive, drive_part, drive_len, std::strlen(drive_part));
  portlib_cstr_to_fstr(dir, dir_part, dir_len, std::strlen(dir_part));
  portlib_cstr_to_fstr(name, name_part, name_len, std::strlen(name_part));
  portlib_cstr_to_fstr(ext, ext_part, ext_len, std::strlen(ext_part));
  return static_cast<int32_t>(std::strlen(dir_part));
}
