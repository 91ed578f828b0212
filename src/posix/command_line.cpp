// SPDX-License-Identifier: MIT
// The words of the command line.
#include "core_entries.h"
#include "posix.h"
#include "qwport.h"

void PXFGETARG(const int32_t *m, char *buf, int32_t *ilen, int32_t *ierror, size_t buf_len) {
  int64_t length = -1;
  core::for_getarg(m, buf, &length, buf_len);
  if (length == -1) {
    *ilen = 0;
    return pxf_fail(ierror, EINVAL);
  }
  *ilen = static_cast<int32_t>(length);
  *ierror = static_cast<size_t>(length) > buf_len ? pxf_truncated : 0;
}

int32_t IPXFARGC(void) { return core::for_nargs() - 1; }
