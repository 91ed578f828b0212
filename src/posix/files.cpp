// SPDX-License-Identifier: MIT
// Opening, testing, changing and removing files by path.
#include <cstdio>

#include <direct.h>
#include <io.h>
#include <sys/stat.h>
#include <sys/utime.h>

#include "handles.h"
#include "late_entry.h"
#include "qwport.h"
#include "texts.h"

using namespace qwport::posix;

namespace {

// Some C run-times end the program for any other bit.
constexpr int32_t read_access = 4;
constexpr int32_t write_access = 2;

}  // namespace

void PXFOPEN(const char *path, const int32_t *ilen, const int32_t *iopenflag, const int32_t *imode, int32_t *ifildes,
             int32_t *ierror, size_t path_len) {
  const HeapText name = own_path(path, *ilen, path_len);
  *ifildes = name == nullptr ? -1 : _open(name.get(), *iopenflag, *imode);
  settle(ierror, *ifildes != -1);
}

// Only the right to write is passed on; this is meant.
void PXFCREAT(const char *path, const int32_t *ilen, const int32_t *imode, int32_t *ifildes, int32_t *ierror,
              size_t path_len) {
  const HeapText name = own_path(path, *ilen, path_len);
  *ifildes = name == nullptr ? -1 : _creat(name.get(), *imode & _S_IWRITE);
  settle(ierror, *ifildes != -1);
}

void PXFACCESS(const char *path, const int32_t *ilen, const int32_t *iamode, int32_t *ierror, size_t path_len) {
  const HeapText name = own_path(path, *ilen, path_len);
  settle(ierror, name != nullptr && _access(name.get(), *iamode & (read_access | write_access)) == 0);
}

void PXFCHMOD(const char *path, const int32_t *ilen, const int32_t *imode, int32_t *ierror, size_t path_len) {
  const HeapText name = own_path(path, *ilen, path_len);
  settle(ierror, name != nullptr && _chmod(name.get(), *imode) == 0);
}

void PXFUNLINK(const char *path, const int32_t *ilen, int32_t *ierror, size_t path_len) {
  const HeapText name = own_path(path, *ilen, path_len);
  settle(ierror, name != nullptr && _unlink(name.get()) == 0);
}

void PXFRENAME(const char *path, const int32_t *ilen, const char *new_path, const int32_t *lennew, int32_t *ierror,
               size_t path_len, size_t new_path_len) {
  const HeapText old_name = own_path(path, *ilen, path_len);
  const HeapText new_name = old_name == nullptr ? nullptr : own_path(new_path, *lennew, new_path_len);
  settle(ierror, new_name != nullptr && std::rename(old_name.get(), new_name.get()) == 0);
}

// Hard links are looked up at the call: not every host has them.
void PXFLINK(const char *path, const int32_t *ilen, const char *new_path, const int32_t *lennew, int32_t *ierror,
             size_t path_len, size_t new_path_len) {
  const HeapText old_name = own_path(path, *ilen, path_len);
  const HeapText new_name = old_name == nullptr ? nullptr : own_path(new_path, *lennew, new_path_len);
  if (new_name == nullptr) return fail_by_errno(ierror);

  if (portlib_system_dll("kernel32.dll") == nullptr) return fail(ierror, EFAULT);
  const auto create_link = portlib_kernel_entry<decltype(CreateHardLinkA)>("CreateHardLinkA");
  if (create_link == nullptr) return fail(ierror, EPERM);
  if (!create_link(new_name.get(), old_name.get(), nullptr)) return fail_by_host(ierror);
  *ierror = 0;
}

// The path ends at its first blank, and ilen does not count; this is meant.
void PXFUTIME(const char *path, const int32_t * /*ilen*/, const int32_t *jutimbuf, int32_t *ierror, size_t path_len) {
  const UtimbufRecord *record = nullptr;
  if (find_record(*jutimbuf) != nullptr) {
    record = record_of<UtimbufRecord>(*jutimbuf, ierror);
    if (record == nullptr) return;
  }
  const HeapText name = own_name(path, path_len);
  struct __utimbuf64 times {};
  if (record != nullptr) times = {record->actime, record->modtime};
  // Without times the file gets the present.
  settle(ierror, name != nullptr && _utime64(name.get(), record == nullptr ? nullptr : &times) == 0);
}
