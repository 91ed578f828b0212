// SPDX-License-Identifier: MIT
// Deleting the plain files that match a pattern.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <initializer_list>

#include <windows.h>

#include "errors.h"
#include "qwport.h"
#include "text.h"

namespace {

// Reports the host's error and gives the count of files that were deleted: none.
int32_t fail_with_os_error() {
  portlib_map_os_error();
  return 0;
}

int32_t fail_with(int32_t code) {
  portlib_report_errno(code);
  return 0;
}

// How the listing's calls report: some errors are ENOENT, one is ENOMEM, the rest EINVAL.
void report_listing_error(DWORD error, std::initializer_list<DWORD> not_found_errors) {
  int32_t code = EINVAL;
  if (std::find(not_found_errors.begin(), not_found_errors.end(), error) != not_found_errors.end()) code = ENOENT;
  if (error == ERROR_NOT_ENOUGH_MEMORY) code = ENOMEM;
  portlib_report_errno(code);
}

// Deletes matching files of the current directory.
int32_t delete_matching(const char *pattern) {
  constexpr DWORD protected_attributes =
      FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_DIRECTORY;
  WIN32_FIND_DATAA entry{};
  HANDLE listing = FindFirstFileA(pattern, &entry);
  if (listing == INVALID_HANDLE_VALUE) {
    report_listing_error(GetLastError(), {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_NO_MORE_FILES});
    return 0;
  }
  int32_t count = 0;
  BOOL found = TRUE;
  while (found == TRUE) {
    if ((entry.dwFileAttributes & protected_attributes) == 0 && DeleteFileA(entry.cFileName)) ++count;
    found = FindNextFileA(listing, &entry);
  }
  // The end of the listing is not among the first set here, so a complete run reports 22; this is meant.
  report_listing_error(GetLastError(), {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_CURRENT_DIRECTORY});
  FindClose(listing);
  return count;
}

}  // namespace

int32_t DELFILESQQ(const char *files, size_t files_len) {
  constexpr size_t longest_pattern = 260;
  const HeapText name = portlib_own_text(files, files_len);
  if (name == nullptr) return 0;

  constexpr DWORD path_margin = 6;
  const DWORD path_size = GetFullPathNameA(name.get(), 0, nullptr, nullptr);
  if (path_size == 0) return fail_with_os_error();
  const HeapText path = portlib_allocate_text(path_size + path_margin);
  if (path == nullptr) return fail_with(ENOMEM);
  char *file_part = nullptr;
  if (GetFullPathNameA(name.get(), path_size + 2, path.get(), &file_part) == 0) return fail_with_os_error();
  if (file_part == nullptr) return fail_with(EINVAL);  // the name ends with a separator
  if (std::strlen(file_part) > longest_pattern) return fail_with_os_error();

  const HeapText pattern = portlib_own_text(file_part, std::strlen(file_part));
  if (pattern == nullptr) return 0;
  *file_part = '\0';  // leaves the directory

  constexpr DWORD directory_margin = 4;
  const DWORD directory_size = GetCurrentDirectoryA(0, nullptr);
  if (directory_size == 0) return fail_with_os_error();
  const HeapText saved_directory = portlib_allocate_text(directory_size + directory_margin);
  if (saved_directory == nullptr) return fail_with(ENOMEM);
  if (GetCurrentDirectoryA(directory_size + directory_margin, saved_directory.get()) == 0) return fail_with_os_error();

  if (!SetCurrentDirectoryA(path.get())) return fail_with_os_error();
  const int32_t count = delete_matching(pattern.get());
  if (!SetCurrentDirectoryA(saved_directory.get())) portlib_map_os_error();
  return count;
}
