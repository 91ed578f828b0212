// SPDX-License-Identifier: MIT
// Full paths and their parts.
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <windows.h>

#include "errors.h"
#include "paths.h"
#include "qwport.h"
#include "text.h"

int32_t FULLPATHQQ(const char *name, char *pathbuf, size_t name_len, size_t pathbuf_len) {
  const HeapText path = portlib_own_text(name, name_len);
  if (path == nullptr) return 0;
  if (pathbuf == nullptr) return portlib_fail(EINVAL);
  portlib_place_text(pathbuf, pathbuf_len, nullptr, 0);
  qwport::files::PathRoom full_path(pathbuf_len);
  const DWORD length = GetFullPathNameA(path.get(), full_path.size, full_path.text, nullptr);
  if (length == 0) return portlib_fail_by_os_error();
  // A path that does not fit: the host's answer is the size it needs, and pathbuf stays blank.
  if (length < full_path.size) portlib_cstr_to_fstr(pathbuf, full_path.text, pathbuf_len, length);
  return static_cast<int32_t>(length);
}

int32_t SPLITPATHQQ(const char *path, char *drive, char *dir, char *name, char *ext, size_t path_len, size_t drive_len,
                    size_t dir_len, size_t name_len, size_t ext_len) {
  portlib_place_text(drive, drive_len, nullptr, 0);
  portlib_place_text(dir, dir_len, nullptr, 0);
  portlib_place_text(name, name_len, nullptr, 0);
  portlib_place_text(ext, ext_len, nullptr, 0);
  const HeapText relative_path = portlib_own_text(path, path_len);
  if (relative_path == nullptr) return 0;
  char full_path[_MAX_PATH];
  if (_fullpath(full_path, relative_path.get(), sizeof full_path) == nullptr) return 0;

  // Any part may take the whole path. C's own limits for directory and name are 255, below what a legal path can have.
  char drive_part[_MAX_PATH];
  char dir_part[_MAX_PATH];
  char name_part[_MAX_PATH];
  char ext_part[_MAX_PATH];
  if (_splitpath_s(full_path, drive_part, sizeof drive_part, dir_part, sizeof dir_part, name_part, sizeof name_part,
                   ext_part, sizeof ext_part) != 0)
    return 0;
  portlib_cstr_to_fstr(drive, drive_part, drive_len, std::strlen(drive_part));
  portlib_cstr_to_fstr(dir, dir_part, dir_len, std::strlen(dir_part));
  portlib_cstr_to_fstr(name, name_part, name_len, std::strlen(name_part));
  portlib_cstr_to_fstr(ext, ext_part, ext_len, std::strlen(ext_part));
  return static_cast<int32_t>(std::strlen(dir_part));
}
