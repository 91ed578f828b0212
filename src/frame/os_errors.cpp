// SPDX-License-Identifier: MIT
// Operating-system error numbers as errno values.
#include "errors.h"

#include <cerrno>

#include <windows.h>

namespace {

struct OsErrorMapping {
  uint32_t os_error;
  int32_t errno_value;
};

// The C run-time's own table stops short of several of these, so the library keeps its own and gives
// the same answers with every C run-time.
constexpr OsErrorMapping os_error_mappings[] = {
    {ERROR_INVALID_FUNCTION, EINVAL},    {ERROR_FILE_NOT_FOUND, ENOENT},
    {ERROR_PATH_NOT_FOUND, ENOENT},      {ERROR_TOO_MANY_OPEN_FILES, EMFILE},
    {ERROR_ACCESS_DENIED, EACCES},       {ERROR_INVALID_HANDLE, EBADF},
    {ERROR_ARENA_TRASHED, ENOMEM},       {ERROR_NOT_ENOUGH_MEMORY, ENOMEM},
    {ERROR_INVALID_BLOCK, ENOMEM},       {ERROR_BAD_ENVIRONMENT, E2BIG},
    {ERROR_BAD_FORMAT, ENOEXEC},         {ERROR_INVALID_ACCESS, EINVAL},
    {ERROR_INVALID_DATA, EINVAL},        {ERROR_INVALID_DRIVE, ENOENT},
    {ERROR_CURRENT_DIRECTORY, EACCES},   {ERROR_NOT_SAME_DEVICE, EXDEV},
    {ERROR_NO_MORE_FILES, ENOENT},       {ERROR_LOCK_VIOLATION, EACCES},
    {ERROR_BAD_NETPATH, ENOENT},         {ERROR_NETWORK_ACCESS_DENIED, EACCES},
    {ERROR_BAD_NET_NAME, ENOENT},        {ERROR_FILE_EXISTS, EEXIST},
    {ERROR_CANNOT_MAKE, EACCES},         {ERROR_FAIL_I24, EACCES},
    {ERROR_INVALID_PARAMETER, EINVAL},   {ERROR_NO_PROC_SLOTS, EAGAIN},
    {ERROR_DRIVE_LOCKED, EACCES},        {ERROR_BROKEN_PIPE, EBADF},
    {ERROR_DISK_FULL, ENOSPC},           {ERROR_INVALID_TARGET_HANDLE, EBADF},
    {ERROR_WAIT_NO_CHILDREN, ECHILD},    {ERROR_CHILD_NOT_COMPLETE, ECHILD},
    {ERROR_DIRECT_ACCESS_HANDLE, EBADF}, {ERROR_NEGATIVE_SEEK, EINVAL},
    {ERROR_SEEK_ON_DEVICE, EACCES},      {ERROR_DIR_NOT_EMPTY, ENOTEMPTY},
    {ERROR_NOT_LOCKED, EACCES},          {ERROR_BAD_PATHNAME, ENOENT},
    {ERROR_MAX_THRDS_REACHED, EAGAIN},   {ERROR_LOCK_FAILED, EACCES},
    {ERROR_ALREADY_EXISTS, EEXIST},      {ERROR_FILENAME_EXCED_RANGE, ENOENT},
    {ERROR_NESTING_NOT_ALLOWED, EAGAIN}, {ERROR_NOT_ENOUGH_QUOTA, ENOMEM},
};

struct OsErrorRange {
  uint32_t first;
  uint32_t last;
  int32_t errno_value;
};

constexpr OsErrorRange os_error_ranges[] = {
    {ERROR_WRITE_PROTECT, ERROR_SHARING_BUFFER_EXCEEDED, EACCES},
    {ERROR_INVALID_STARTING_CODESEG, ERROR_INFLOOP_IN_RELOC_CHAIN, ENOEXEC},
};

}  // namespace

int32_t portlib_errno_of_os_error(uint32_t os_error) {
  for (const OsErrorMapping &mapping : os_error_mappings) {
    if (mapping.os_error == os_error) return mapping.errno_value;
  }
  for (const OsErrorRange &range : os_error_ranges) {
    if (range.first <= os_error && os_error <= range.last) return range.errno_value;
  }
  return EINVAL;
}

void portlib_map_os_error() { portlib_report_errno(portlib_errno_of_os_error(GetLastError())); }

int32_t portlib_fail_by_os_error() { return portlib_fail(portlib_errno_of_os_error(GetLastError())); }

int32_t portlib_record_os_error() { return portlib_record_errno(portlib_errno_of_os_error(GetLastError())); }
