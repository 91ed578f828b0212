// SPDX-License-Identifier: MIT
// Accessors of real, logical, character and array fields, which no structure has: programs written for them
// link, and are told that there is no such field. The rest of the names stand in libqwport.def.
#include "posix.h"
#include "qwport.h"

void PXFREALGET(const int32_t * /*jhandle*/, const char * /*compname*/, void * /*value*/, int32_t *ierror,
                size_t /*compname_len*/) {
  pxf_fail(ierror, pxf_no_name, EINVAL);
}

// The one kind that looks at the handle.
void PXFAINTGET(const int32_t *jhandle, const char * /*compname*/, void * /*value*/, void * /*index*/, int32_t *ierror,
                size_t /*compname_len*/) {
  if (pxf_any_record(*jhandle, ierror) != nullptr) pxf_fail(ierror, pxf_no_name, EINVAL);
}

void PXFAREALGET(const int32_t * /*jhandle*/, const char * /*compname*/, void * /*value*/, void * /*index*/,
                 int32_t *ierror, size_t /*compname_len*/) {
  pxf_fail(ierror, pxf_no_name, EINVAL);
}

void PXFASTRGET(const int32_t * /*jhandle*/, const char * /*compname*/, void * /*value*/, void * /*index*/,
                void * /*ilen*/, int32_t *ierror, size_t /*compname_len*/) {
  pxf_fail(ierror, pxf_no_name, EINVAL);
}
