// SPDX-License-Identifier: MIT
// Changing, making, removing and asking for the current directory.
#include <algorithm>
#include <cstring>
#include <limits>

#include <direct.h>

#include "qwport.h"
#include "results.h"
#include "texts.h"

using namespace qwport::posix;

void PXFCHDIR(const char *path, const int32_t *ilen, int32_t *ierror, size_t path_len) {
  const HeapText name = own_path(path, *ilen, path_len);
  settle(ierror, name != nullptr && _chdir(name.get()) == 0);
}

// The host's directories have no mode.
void PXFMKDIR(const char *path, const int32_t *ilen, const int32_t * /*imode*/, int32_t *ierror, size_t path_len) {
  const HeapText name = own_path(path, *ilen, path_len);
  settle(ierror, name != nullptr && _mkdir(name.get()) == 0);
}

void PXFRMDIR(const char *path, const int32_t *ilen, int32_t *ierror, size_t path_len) {
  const HeapText name = own_path(path, *ilen, path_len);
  settle(ierror, name != nullptr && _rmdir(name.get()) == 0);
}

void PXFGETCWD(char *buf, int32_t *ilen, int32_t *ierror, size_t buf_len) {
  constexpr size_t largest = std::numeric_limits<int>::max() - 1;
  // The C run-time takes more room than it is told to if the directory needs it.
  const HeapText directory(_getcwd(nullptr, static_cast<int>(std::min(buf_len, largest)) + 1));
  *ilen = 0;
  if (directory == nullptr) return fail_by_errno(ierror);
  const size_t length = std::strlen(directory.get());
  if (!put_text(buf, buf_len, directory.get(), length)) return fail(ierror, text_was_cut, ERANGE);
  *ilen = static_cast<int32_t>(length);
  *ierror = 0;
}
