// SPDX-License-Identifier: MIT
// Renaming, removing, and the attributes and times of files.
#include <cerrno>
#include <cstdio>

#include <io.h>
#include <sys/utime.h>
#include <windows.h>

#include "errors.h"
#include "qwport.h"
#include "text.h"

namespace {

// A QQ routine's answer: a failure is reported, not recorded.
int32_t answer(bool succeeded, int32_t error) {
  if (!succeeded) portlib_report_errno(error);
  return succeeded ? 1 : 0;
}

// Renames, and replaces an existing file. One that somebody else has deleted meanwhile cannot be deleted, and is no
// obstacle.
bool rename_over(const char *from, const char *to) {
  if (std::rename(from, to) == 0) return true;
  if (errno != EEXIST) return false;
  DeleteFileA(to);
  return std::rename(from, to) == 0;
}

}  // namespace

int32_t RENAMEFILEQQ(const char *oldname, const char *newname, size_t oldname_len, size_t newname_len) {
  const HeapText old_path = portlib_own_text(oldname, oldname_len);
  const HeapText new_path = portlib_own_text(newname, newname_len);
  if (old_path == nullptr || new_path == nullptr) return answer(false, ENOMEM);
  const bool renamed = std::rename(old_path.get(), new_path.get()) == 0;
  return answer(renamed, errno);
}

int32_t RENAME(const char *from, const char *to, size_t from_len, size_t to_len) {
  const HeapText old_path = portlib_own_text(from, from_len);
  if (old_path == nullptr) return portlib_record_errno(errno);
  const HeapText new_path = portlib_own_text(to, to_len);
  if (new_path == nullptr) return portlib_record_errno(errno);
  return rename_over(old_path.get(), new_path.get()) ? 0 : portlib_record_errno(errno);
}

int32_t UNLINK(const char *name, size_t name_len) {
  const HeapText path = portlib_own_text(name, name_len);
  if (path == nullptr) return portlib_record_errno(ENOMEM);
  return std::remove(path.get()) == 0 ? 0 : portlib_record_errno(errno);
}

int32_t SETFILEACCESSQQ(const char *filename, const int32_t *access, size_t filename_len) {
  constexpr int32_t volume_label = 8;
  if ((*access & (volume_label | FILE_ATTRIBUTE_DIRECTORY)) != 0) return answer(false, EINVAL);
  const HeapText path = portlib_own_text(filename, filename_len);
  if (path == nullptr) return 0;
  return answer(SetFileAttributesA(path.get(), static_cast<DWORD>(*access)) != 0, EACCES);
}

int32_t SETFILETIMEQQ(const char *filename, const int32_t *timedate, size_t filename_len) {
  const HeapText path = portlib_own_text(filename, filename_len);
  if (path == nullptr) return 0;
  struct __utimbuf64 times {};
  times.actime = *timedate;
  times.modtime = *timedate;
  const bool set = _utime64(path.get(), *timedate == QWPORT_TIME_NOW ? nullptr : &times) == 0;
  return answer(set, errno);
}
