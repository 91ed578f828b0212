// SPDX-License-Identifier: MIT
// The status of a file by name (STAT, STATI8) and by unit (FSTAT, FSTATI8).
#include <cerrno>
#include <limits>
#include <type_traits>

#include <sys/stat.h>
#include <windows.h>

#include "core_entries.h"
#include "errors.h"
#include "file_time.h"
#include "paths.h"
#include "qwport.h"
#include "text.h"

namespace {

// Elements of the status array, from 0. The thirteenth, the number of blocks, is never written.
enum StatusElement {
  device,
  inode,
  mode,
  links,
  owner,
  group,
  raw_device,
  size,
  access_time,
  modification_time,
  change_time,
  block_size,
};

constexpr int32_t directory_mode = 040444;
constexpr int32_t bare_directory_mode = 040000;
constexpr int32_t read_only_mode = 0100444;
constexpr int32_t writable_mode = 0100666;
constexpr int32_t write_bits = 0222;
constexpr int32_t execute_bits = 0111;

// ACCESS has a list of its own; the two are kept apart on purpose.
constexpr const char *executable_extensions[] = {".exe", ".bat", ".com", ".ksh"};

bool is_executable(const char *name) { return qwport::files::has_extension(name, executable_extensions); }

// Sizes and times as the array's elements hold them: INTEGER(4) keeps the low half of a time.
template <class Element> constexpr bool is_short = std::is_same_v<Element, int32_t>;

template <class Element> void set_constants(Element *statb, Element link_count) {
  statb[device] = 0;
  statb[links] = link_count;
  statb[owner] = 1;
  statb[group] = 1;
  statb[raw_device] = 0;
  statb[block_size] = 1;
}

// The mode by name. The caller's old element counts: it is not cleared for a file that the C run-time
// calls executable, and only gains bits; this is meant.
template <class Element> Element mode_by_name(Element old_mode, int host_mode, const char *name) {
  Element result = old_mode;
  const bool is_writable = (host_mode & _S_IWRITE) != 0;
  if ((host_mode & _S_IFDIR) != 0) result = directory_mode;
  if (is_writable) result |= write_bits;
  if ((host_mode & _S_IEXEC) != 0) return result | execute_bits;
  const int32_t plain = is_writable ? writable_mode : read_only_mode;
  return is_executable(name) ? plain | execute_bits : plain;
}

template <class Element> int32_t status_by_name(const char *name, size_t name_len, Element *statb) {
  const HeapText path = portlib_own_text(name, name_len);
  if (path == nullptr) return portlib_record_errno(ENOMEM);
  struct _stat64 status {};
  if (_stat64(path.get(), &status) != 0) return portlib_record_errno(errno);

  const bool is_too_large = is_short<Element> && status.st_size > std::numeric_limits<int32_t>::max();
  const int32_t result = is_too_large ? portlib_record_errno(ERANGE) : 0;
  set_constants(statb, Element{1});
  statb[inode] = status.st_ino;
  statb[mode] = mode_by_name(statb[mode], status.st_mode, path.get());
  statb[size] = is_too_large ? Element{-1} : static_cast<Element>(status.st_size);
  statb[access_time] = static_cast<Element>(status.st_atime);
  statb[modification_time] = static_cast<Element>(status.st_mtime);
  statb[change_time] = static_cast<Element>(status.st_ctime);
  return result;
}

// Seconds since 1970 of a file time, or -1 when the host cannot convert the calendar's first day.
int64_t seconds_since_1970(const FILETIME &time) {
  constexpr uint64_t ticks_per_second = 10'000'000;
  const SYSTEMTIME first_day = {1970, 1, 1, 1, 0, 0, 0, 0};
  FILETIME start{};
  if (!SystemTimeToFileTime(&first_day, &start)) return -1;
  return static_cast<int64_t>((portlib_ticks(time) - portlib_ticks(start)) / ticks_per_second);
}

int32_t mode_of_open_file(DWORD attributes, const char *name) {
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return bare_directory_mode;
  const int32_t plain = (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? read_only_mode : writable_mode;
  return is_executable(name) ? plain | execute_bits : plain;
}

template <class Element> int32_t status_by_unit(int32_t unit, Element *statb) {
  char name[256] = "";
  int32_t name_size = sizeof name;
  const intptr_t handle = core::__msportlib_d_gethandle(unit, name, &name_size);
  if (handle == -1) return portlib_record_errno(EINVAL);
  BY_HANDLE_FILE_INFORMATION file{};
  if (!GetFileInformationByHandle(reinterpret_cast<HANDLE>(handle), &file)) return portlib_record_errno(EBADF);
  name[sizeof name - 1] = '\0';

  // INTEGER(4) takes the low word as it is, so a file of 2 to 4 GiB reads negative; STAT answers 34 from
  // 2 GiB on. The difference is meant.
  const bool is_too_large = is_short<Element> && file.nFileSizeHigh != 0;
  const int32_t result = is_too_large ? portlib_record_errno(ERANGE) : 0;
  const uint64_t file_size = (static_cast<uint64_t>(file.nFileSizeHigh) << 32) | file.nFileSizeLow;
  set_constants(statb, static_cast<Element>(file.nNumberOfLinks));
  statb[inode] = 0;
  statb[mode] = mode_of_open_file(file.dwFileAttributes, name);
  statb[size] = is_too_large ? Element{-1} : static_cast<Element>(file_size);
  statb[access_time] = static_cast<Element>(seconds_since_1970(file.ftLastAccessTime));
  statb[modification_time] = static_cast<Element>(seconds_since_1970(file.ftLastWriteTime));
  statb[change_time] = static_cast<Element>(seconds_since_1970(file.ftCreationTime));
  return result;
}

}  // namespace

int32_t STAT(const char *name, int32_t *statb, size_t name_len) { return status_by_name(name, name_len, statb); }

int32_t STATI8(const char *name, int64_t *statb, size_t name_len) { return status_by_name(name, name_len, statb); }

int32_t FSTAT(const int32_t *lunit, int32_t *statb) { return status_by_unit(*lunit, statb); }

int32_t FSTATI8(const int32_t *lunit, int64_t *statb) { return status_by_unit(*lunit, statb); }
