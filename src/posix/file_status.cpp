// SPDX-License-Identifier: MIT
// The status of a file, and what its mode tells.
#include <io.h>

#include "handles.h"
#include "host.h"
#include "qwport.h"
#include "text.h"
#include "texts.h"

using namespace qwport::posix;

namespace {

void fill_record(StatRecord &record, const struct _stat64 &status) {
  record.st_mode = status.st_mode;
  record.st_ino = status.st_ino;
  record.st_dev = status.st_dev;
  record.st_nlink = status.st_nlink;
  record.st_uid = status.st_uid;
  record.st_gid = status.st_gid;
  record.st_size = status.st_size;
  record.st_atime = status.st_atime;
  record.st_mtime = status.st_mtime;
  record.st_ctime = status.st_ctime;
}

int32_t has_type(int32_t mode, int32_t type) { return (mode & _S_IFMT) == type ? logical_true : logical_false; }

}  // namespace

// ilen does not count: the path is the text without its trailing blanks. This is meant.
void PXFSTAT(const char *path, const int32_t * /*ilen*/, const int32_t *jstat, int32_t *ierror, size_t path_len) {
  auto *record = record_of<StatRecord>(*jstat, ierror);
  if (record == nullptr) return;
  const HeapText name = own_path(path, static_cast<int32_t>(portlib_trimmed_length(path, path_len)), path_len);
  struct _stat64 status {};
  const bool done = name != nullptr && _stat64(name.get(), &status) == 0;
  settle(ierror, done);
  if (done) fill_record(*record, status);
}

void PXFFSTAT(const int32_t *ifildes, const int32_t *jstat, int32_t *ierror) {
  auto *record = record_of<StatRecord>(*jstat, ierror);
  if (record == nullptr) return;
  struct _stat64 status {};
  const bool done = status_of_descriptor(*ifildes, status);
  settle(ierror, done);
  if (done) fill_record(*record, status);
}

// Some C run-times leave errno alone when _fstat64 fails.
bool qwport::posix::status_of_descriptor(int32_t descriptor, struct _stat64 &status) {
  const int errno_before = errno;
  errno = EBADF;
  const bool done = _get_osfhandle(descriptor) != -1 && _fstat64(descriptor, &status) == 0;
  if (done) errno = errno_before;
  return done;
}

int32_t PXFISDIR(const int32_t *m) { return has_type(*m, _S_IFDIR); }

int32_t PXFISCHR(const int32_t *m) { return has_type(*m, _S_IFCHR); }

int32_t PXFISREG(const int32_t *m) { return has_type(*m, _S_IFREG); }

int32_t PXFISFIFO(const int32_t *m) { return has_type(*m, _S_IFIFO); }

// No host file is a block device.
int32_t PXFISBLK(const int32_t * /*m*/) { return logical_false; }
