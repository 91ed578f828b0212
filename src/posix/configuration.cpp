// SPDX-License-Identifier: MIT
// Limits of the system and of paths.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

#include "host.h"
#include "late_entry.h"
#include "qwport.h"
#include "results.h"
#include "texts.h"

using namespace qwport::posix;

namespace {

// ---- The system ---------------------------------------------------------------------------------

enum SystemName {
  clock_ticks = 2,
  open_max = 4,
  stream_max = 5,
  tzname_max = 6,
  page_size = 30,
  physical_pages = 85,
  available_pages = 86
};

// In bytes, although the names say pages, and up to 2 GiB; both are meant.
void answer_memory(DWORDLONG MEMORYSTATUSEX::*amount, int32_t *ival, int32_t *ierror) {
  MEMORYSTATUSEX memory{};
  memory.dwLength = sizeof memory;
  if (!GlobalMemoryStatusEx(&memory)) return fail_by_host(ierror);
  const bool fits = memory.*amount <= static_cast<DWORDLONG>(std::numeric_limits<int32_t>::max());
  *ival = fits ? static_cast<int32_t>(memory.*amount) : -1;
  *ierror = 0;
  if (!fits) fail(ierror, ERANGE);
}

// ---- Paths --------------------------------------------------------------------------------------

enum PathName { link_max = 0, name_max = 3, path_max = 4, pipe_buffer = 5 };

constexpr DWORD path_size = 260;
constexpr int32_t largest_name_max = 255;

// Answers the names that need no file, and refuses those that do not exist; false for the others.
bool answer_without_file(int32_t name, int32_t *ival, int32_t *ierror) {
  if (name == link_max || name == name_max) return false;
  *ierror = 0;
  if (name == path_max) {
    *ival = path_size;
  } else if (name == pipe_buffer) {
    *ival = 4096;
  } else {
    fail(ierror, EINVAL);
  }
  return true;
}

// While it lives, the host shows no box about drives that are not ready. It ends with the boxes on, whatever
// was set before; this is meant.
class CriticalErrorsOff {
 public:
  CriticalErrorsOff() { SetErrorMode(SEM_FAILCRITICALERRORS); }
  ~CriticalErrorsOff() { SetErrorMode(0); }
  CriticalErrorsOff(const CriticalErrorsOff &) = delete;
  CriticalErrorsOff &operator=(const CriticalErrorsOff &) = delete;
};

void answer_link_max(const char *path, int32_t *ival, int32_t *ierror) {
  constexpr int32_t ntfs_links = 1023;
  const auto get_volume = portlib_kernel_entry<decltype(GetVolumePathNameA)>("GetVolumePathNameA");
  char volume[path_size];
  char file_system[path_size];
  *ival = 0;
  if (get_volume == nullptr) return fail(ierror, EFAULT);
  if (!get_volume(path, volume, path_size) ||
      !GetVolumeInformationA(volume, nullptr, 0, nullptr, nullptr, nullptr, file_system, path_size)) {
    return fail_by_host(ierror);
  }
  if (std::strcmp(file_system, "NTFS") == 0) *ival = ntfs_links;
  *ierror = 0;
}

void answer_name_max(int32_t room, int32_t *ival, int32_t *ierror) {
  *ival = std::min(room, largest_name_max);
  *ierror = 0;
}

// The room beside the directory of the path, whatever its last component is.
void answer_name_max_by_path(const char *path, int32_t *ival, int32_t *ierror) {
  char full_path[path_size];
  char *last_component = nullptr;
  const DWORD length = GetFullPathNameA(path, path_size, full_path, &last_component);
  if (length == 0) return fail_by_host(ierror);
  if (length >= path_size) return fail(ierror, ENAMETOOLONG);
  const size_t last_length = last_component == nullptr ? 0 : std::strlen(last_component);
  answer_name_max(static_cast<int32_t>(last_length) - static_cast<int32_t>(length) + 259, ival, ierror);
}

}  // namespace

void PXFSYSCONF(const int32_t *name, int32_t *ival, int32_t *ierror) {
  *ierror = 0;
  switch (*name) {
    case clock_ticks:
      *ival = 1000;
      break;
    case open_max:
      *ival = 2048;
      break;
    case stream_max:
      *ival = 20;
      break;
    case tzname_max:
      *ival = 3;
      break;
    case page_size: {
      SYSTEM_INFO system{};
      GetSystemInfo(&system);
      *ival = static_cast<int32_t>(system.dwPageSize);
      break;
    }
    case physical_pages:
      return answer_memory(&MEMORYSTATUSEX::ullTotalPhys, ival, ierror);
    case available_pages:
      return answer_memory(&MEMORYSTATUSEX::ullAvailPhys, ival, ierror);
    default:
      fail(ierror, EINVAL);
  }
}

void PXFPATHCONF(const char *path, const int32_t *ilen, const int32_t *name, int32_t *ival, int32_t *ierror,
                 size_t path_len) {
  if (static_cast<size_t>(*ilen) > path_len) return fail(ierror, EINVAL);
  if (answer_without_file(*name, ival, ierror)) return;
  const HeapText file = own_path(path, *ilen, path_len);
  struct _stat64 status {};
  if (file == nullptr || _stat64(file.get(), &status) != 0) return fail_by_errno(ierror);
  const CriticalErrorsOff boxes_off;
  if (*name == link_max) return answer_link_max(file.get(), ival, ierror);
  answer_name_max_by_path(file.get(), ival, ierror);
}

// The answers are those of the current directory, wherever the file is, and one character less by name; both
// are meant.
void PXFFPATHCONF(const int32_t *ifildes, const int32_t *name, int32_t *ival, int32_t *ierror) {
  if (answer_without_file(*name, ival, ierror)) return;
  if (*ifildes < 0) return fail(ierror, EBADF);
  struct _stat64 status {};
  if (!status_of_descriptor(*ifildes, status)) return fail_by_errno(ierror);
  const CriticalErrorsOff boxes_off;
  char directory[path_size];
  const DWORD length = GetCurrentDirectoryA(path_size, directory);
  if (length == 0) return fail_by_host(ierror);
  if (length >= path_size) return fail(ierror, ENAMETOOLONG);
  if (*name == link_max) return answer_link_max(directory, ival, ierror);
  answer_name_max(258 - static_cast<int32_t>(length), ival, ierror);
}
