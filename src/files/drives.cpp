// SPDX-License-Identifier: MIT
// Drive letters, their directories and their sizes.
#include <cerrno>
#include <limits>

#include <windows.h>

#include "errors.h"
#include "paths.h"
#include "qwport.h"
#include "text.h"

namespace {

// Of the 26 letters, whatever the locale.
char upper(char c) { return 'a' <= c && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool is_letter(char c) { return 'A' <= upper(c) && upper(c) <= 'Z'; }

bool is_separator(char c) { return c == '\\' || c == '/'; }

char first_of(const char *text, size_t length) { return length == 0 ? ' ' : *text; }

DWORD no_directory(int32_t error) { return static_cast<DWORD>(portlib_fail(error)); }

// The current directory of a drive, or of the current drive for no letter; 0 for a failure, reported.
DWORD directory_of_drive(char drive, char *directory, DWORD size) {
  DWORD length = 0;
  if (is_letter(drive)) {
    const char root[] = {upper(drive), ':', '\\', '.', '\0'};
    if (GetDriveTypeA(root) <= DRIVE_NO_ROOT_DIR) return no_directory(EACCES);
    const char relative_name[] = {upper(drive), ':', '.', '\0'};
    length = GetFullPathNameA(relative_name, size, directory, nullptr);
  } else {
    length = GetCurrentDirectoryA(size, directory);
  }
  if (length == 0) portlib_map_os_error();
  return length < size ? length : no_directory(ERANGE);  // or the size that was needed
}

// ---- Sizes --------------------------------------------------------------------------------------

// The host's name for a drive argument.
class DriveRoot {
 public:
  DriveRoot(const char *drive, size_t length) {
    const char first = first_of(drive, length);
    if (is_letter(first)) {
      letter_root_[0] = first;
      name_ = letter_root_;
    } else if (is_separator(first) && length > 1 && drive[1] == first) {
      network_name_ = portlib_own_text(drive, length);
      name_ = network_name_.get();
      is_valid_ = name_ != nullptr;
    } else if (first != ' ') {
      portlib_report_errno(EINVAL);
      is_valid_ = false;
    }
  }
  [[nodiscard]] bool is_valid() const { return is_valid_; }
  [[nodiscard]] const char *name() const { return name_; }  // null: the current drive

 private:
  char letter_root_[4] = " :\\";
  HeapText network_name_;
  const char *name_ = nullptr;
  bool is_valid_ = true;
};

template <class Size> Size size_result(uint64_t bytes) {
  if (bytes <= static_cast<uint64_t>(std::numeric_limits<Size>::max())) return static_cast<Size>(bytes);
  portlib_report_errno(ERANGE);
  return -1;
}

template <class Size> int32_t drive_size(const char *drive, size_t drive_len, Size *total, Size *avail) {
  *total = -1;
  *avail = -1;
  const DriveRoot root(drive, drive_len);
  if (!root.is_valid()) return 0;
  DWORD sectors_per_cluster = 0;
  DWORD bytes_per_sector = 0;
  DWORD free_clusters = 0;
  DWORD total_clusters = 0;
  if (!GetDiskFreeSpaceA(root.name(), &sectors_per_cluster, &bytes_per_sector, &free_clusters, &total_clusters))
    return portlib_fail(ENOENT);
  const uint64_t cluster_bytes = uint64_t{bytes_per_sector} * sectors_per_cluster;
  *total = size_result<Size>(total_clusters * cluster_bytes);
  *avail = size_result<Size>(free_clusters * cluster_bytes);
  return 1;
}

}  // namespace

void GETDRIVESQQ(char *drives, size_t drives_len) {
  constexpr size_t mask_bits = 32;
  const DWORD mask = GetLogicalDrives();
  for (size_t i = 0; i < drives_len; ++i) {
    const bool exists = i < mask_bits && (mask >> i & 1) != 0;
    drives[i] = exists ? static_cast<char>('A' + i) : ' ';
  }
}

int32_t GETDRIVEDIRQQ(char *drivedir, size_t drivedir_len) {
  qwport::files::PathRoom directory(drivedir_len);
  const DWORD length = directory_of_drive(first_of(drivedir, drivedir_len), directory.text, directory.size);
  return static_cast<int32_t>(portlib_cstr_to_fstr(drivedir, directory.text, drivedir_len, length));
}

int32_t GETDRIVESIZEQQ(const char *drive, int32_t *total, int32_t *avail, size_t drive_len) {
  return drive_size(drive, drive_len, total, avail);
}

int32_t GETDRIVESIZEQQI8(const char *drive, int64_t *total, int64_t *avail, size_t drive_len) {
  return drive_size(drive, drive_len, total, avail);
}

// Goes to the drive's root, not to the directory that it remembers; this is meant.
int32_t CHANGEDRIVEQQ(const char *drive, size_t drive_len) {
  const char letter = upper(first_of(drive, drive_len));
  if (letter < 'A' || letter > 'Z') return portlib_fail(EINVAL);
  const char root[] = {letter, ':', '\\', '\0'};
  return SetCurrentDirectoryA(root) ? 1 : portlib_fail_by_os_error();
}
