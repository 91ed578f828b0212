// SPDX-License-Identifier: MIT
// Making, removing and changing directories.
#include <algorithm>
#include <cerrno>
#include <cstring>

#include <direct.h>
#include <windows.h>

#include "errors.h"
#include "qwport.h"
#include "text.h"

// The first two report nothing: only the C run-time's errno tells why they failed.

int32_t MAKEDIRQQ(const char *dirname, size_t dirname_len) {
  const HeapText path = portlib_own_text(dirname, dirname_len);
  return path != nullptr && _mkdir(path.get()) == 0 ? 1 : 0;
}

int32_t DELDIRQQ(const char *dirname, size_t dirname_len) {
  const HeapText path = portlib_own_text(dirname, dirname_len);
  return path != nullptr && _rmdir(path.get()) == 0 ? 1 : 0;
}

int32_t CHANGEDIRQQ(const char *dir, size_t dir_len) {
  const HeapText path = portlib_own_text(dir, dir_len);
  if (path == nullptr) return portlib_fail(ENOMEM);
  return _chdir(path.get()) == 0 ? 1 : portlib_fail(errno);
}

int32_t CHDIR(const char *dir_name, size_t dir_name_len) {
  const HeapText path = portlib_own_text(dir_name, dir_name_len);
  if (path == nullptr) return portlib_record_errno(ENOMEM);
  if (_chdir(path.get()) == 0) return 0;
  return portlib_record_errno(GetLastError() == ERROR_DIRECTORY ? ENOTDIR : ENOENT);
}

int32_t GETCWD(char *dirname, size_t dirname_len) {
  dirname_len = portlib_length(dirname_len);
  if (dirname_len < 1) return portlib_keep_error(ENOENT);
  const HeapText directory = portlib_allocate_text(dirname_len + 1);
  if (directory == nullptr) return portlib_record_errno(ENOMEM);
  if (_getcwd(directory.get(), static_cast<int>(std::min<size_t>(dirname_len, MAXINT - 1)) + 1) == nullptr) {
    const int error = errno;
    std::fill_n(dirname, dirname_len, ' ');
    return portlib_record_errno(error);
  }
  portlib_cstr_to_fstr(dirname, directory.get(), dirname_len, std::strlen(directory.get()));
  return 0;
}
