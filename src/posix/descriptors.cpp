// SPDX-License-Identifier: MIT
// Reading, writing, positioning and duplicating descriptors of the C run-time, which are also those of GNU
// Fortran's units.
#include <io.h>

#include "qwport.h"
#include "results.h"

using namespace qwport::posix;

void PXFDUP(const int32_t *ifildes, int32_t *ifid, int32_t *ierror) {
  *ifid = _dup(*ifildes);
  settle(ierror, *ifid != -1);
}

void PXFDUP2(const int32_t *ifildes, const int32_t *ifildes2, int32_t *ierror) {
  settle(ierror, _dup2(*ifildes, *ifildes2) != -1);
}

void PXFCLOSE(const int32_t *ifildes, int32_t *ierror) { settle(ierror, _close(*ifildes) != -1); }

// A null address reads nothing and is no error; this is meant.
void PXFREAD(const int32_t *ifildes, char *buf, const int32_t *ibyte, int32_t *ireadcount, int32_t *ierror,
             size_t /*buf_len*/) {
  *ierror = 0;
  if (ifildes == nullptr || buf == nullptr || ibyte == nullptr || ireadcount == nullptr) return;
  if (*ibyte < 0) return fail(ierror, EINVAL);
  *ireadcount = _read(*ifildes, buf, static_cast<unsigned>(*ibyte));
  settle(ierror, *ireadcount != -1);
}

void PXFWRITE(const int32_t *ifildes, const char *buf, const int32_t *ibyte, int32_t *iwritecount, int32_t *ierror,
              size_t /*buf_len*/) {
  if (*ibyte < 0) return fail(ierror, EINVAL);
  *iwritecount = _write(*ifildes, buf, static_cast<unsigned>(*ibyte));
  settle(ierror, *iwritecount != -1);
}

void PXFLSEEK(const int32_t *ifildes, const int32_t *ioffset, const int32_t *iwhence, int32_t *iposition,
              int32_t *ierror) {
  *iposition = _lseek(*ifildes, *ioffset, *iwhence);
  settle(ierror, *iposition != -1);
}

void PXFPIPE(int32_t *iread, int32_t *iwrite, int32_t *ierror) {
  constexpr unsigned buffer_size = 4096;
  constexpr int default_mode = 0;
  int descriptors[2];
  const bool done = _pipe(descriptors, buffer_size, default_mode) == 0;
  settle(ierror, done);
  if (!done) return;
  *iread = descriptors[0];
  *iwrite = descriptors[1];
}

void PXFUMASK(const int32_t *icmask, int32_t *iprevcmask, int32_t *ierror) {
  *iprevcmask = _umask(*icmask);
  *ierror = 0;
}
