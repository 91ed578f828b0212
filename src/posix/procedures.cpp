// SPDX-License-Identifier: MIT
// Procedures by handle.
#include "posix.h"
#include "qwport.h"

void PXFGETSUBHANDLE(void (*sub)(int32_t *ival), int32_t *jhandle, int32_t *ierror) {
  *jhandle = pxf_register_procedure(sub);
  if (*jhandle == 0) return pxf_fail(ierror, pxf_no_handle, EINVAL);
  *ierror = 0;
}

void PXFCALLSUBHANDLE(const int32_t *jhandle, int32_t *ival, int32_t *ierror) {
  PxfProcedure *procedure = pxf_find_procedure(*jhandle);
  if (procedure == nullptr) return pxf_fail(ierror, pxf_no_handle, EINVAL);
  procedure(ival);
  *ierror = 0;
}
