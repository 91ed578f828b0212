// SPDX-License-Identifier: MIT
// Opening, testing, changing and removing files by path.
#include <cstdio>

#include <direct.h>
#include <io.h>
#include <sys/utime.h>

#include "posix.h"
#include "qwport.h"

void PXFOPEN(const char *path, const int32_t *ilen, const int32_t *iopenflag, const int32_t *imode, int32_t *ifildes,
             int32_t *ierror, size_t path_len) {
  const HeapText name = pxf_own_path(path, *ilen, path_len);
  *ifildes = name == nullptr ? -1 : _open(name.get(), *iopenflag, *imode);
  pxf_settle(ierror, *ifildes != -1);
}

// Only the right to write is passed on; this is meant.
void PXFCREAT(const char *path, const int32_t *ilen, const int32_t *imode, int32_t *ifildes, int32_t *ierror,
              size_t path_len) {
  const HeapText name = pxf_own_path(path, *ilen, path_len);
  *ifildes = name == nullptr ? -1 : _creat(name.get(), *imode & _S_IWRITE);
  pxf_settle(ierror, *ifildes != -1);
}

void PXFACCESS(const char *path, const int32_t *ilen, const int32_t *iamode, int32_t *ierror, size_t path_len) {
  const HeapText name = pxf_own_path(path, *ilen, path_len);
  pxf_settle(ierror, name != nullptr && _access(name.get(), *iamode) == 0);
}

void PXFCHMOD(const char *path, const int32_t *ilen, const int32_t *imode, int32_t *ierror, size_t path_len) {
  const HeapText name = pxf_own_path(path, *ilen, path_len);
  pxf_settle(ierror, name != nullptr && _chmod(name.get(), *imode) == 0);
}

void PXFUNLINK(const char *path, const int32_t *ilen, int32_t *ierror, size_t path_len) {
  const HeapText name = pxf_own_path(path, *ilen, path_len);
  pxf_settle(ierror, name != nullptr && _unlink(name.get()) == 0);
}

void PXFRENAME(const char *path, const int32_t *ilen, const char *new_path, const int32_t *lennew, int32_t *ierror,
               size_t path_len, size_t new_path_len) {
  const HeapText old_name = pxf_own_path(path, *ilen, path_len);
  const HeapText new_name = old_name == nullptr ? nullptr : pxf_own_path(new_path, *lennew, new_path_len);
  pxf_settle(ierror, new_name != nullptr && std::rename(old_name.get(), new_name.get()) == 0);
}

// Hard links are looked up at the call: not every host has them.
void PXFLINK(const char *path, const int32_t *ilen, const char *new_path, const int32_t *lennew, int32_t *ierror,
             size_t path_len, size_t new_path_len) {
  const HeapText old_name = pxf_own_path(path, *ilen, path_len);
  const HeapText new_name = old_name == nullptr ? nullptr : pxf_own_path(new_path, *lennew, new_path_len);
  if (new_name == nullptr) return pxf_settle(ierror, false);

  HMODULE kernel32 = pxf_kernel32();
  if (kernel32 == nullptr) return pxf_fail(ierror, EFAULT);
  const auto create_link = pxf_entry<decltype(CreateHardLinkA)>(kernel32, "CreateHardLinkA");
  if (create_link == nullptr) return pxf_fail(ierror, EPERM);
  if (!create_link(new_name.get(), old_name.get(), nullptr)) return pxf_fail_by_host(ierror);
  *ierror = 0;
}

// The path ends at its first blank, and ilen does not count; this is meant.
void PXFUTIME(const char *path, const int32_t * /*ilen*/, const int32_t *jutimbuf, int32_t *ierror, size_t path_len) {
  const UtimbufRecord *record = nullptr;
  if (pxf_find_record(*jutimbuf) != nullptr) {
    record = pxf_record<UtimbufRecord>(*jutimbuf, ierror);
    if (record == nullptr) return;
  }
  const HeapText name = pxf_own_name(path, path_len);
  struct __utimbuf64 times {};
  if (record != nullptr) times = {record->actime, record->modtime};
  // Without times the file gets the present.
  pxf_settle(ierror, name != nullptr && _utime64(name.get(), record == nullptr ? nullptr : &times) == 0);
}
