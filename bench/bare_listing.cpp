// SPDX-License-Identifier: MIT
// Listing a directory with the status of each file, by the bare C run-time.
#include <cstdint>

#include <io.h>
#include <sys/stat.h>

extern "C" int32_t bare_listing(int64_t *total_size);

// The number of files; their sizes are added up.
int32_t bare_listing(int64_t *total_size) {
  struct __finddata64_t entry {};
  const intptr_t handle = _findfirst64("*.dat", &entry);
  if (handle == -1) return 0;
  int32_t count = 0;
  do {
    struct _stat64 status {};
    if (_stat64(entry.name, &status) != 0) break;
    *total_size += status.st_size;
    ++count;
  } while (_findnext64(handle, &entry) == 0);
  _findclose(handle);
  return count;
}
