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

// How the listing's calls report: some errors are ENOENT, one is ENOMEM, the rest EINVAL.
int32_t fail_by_listing_error(DWORD error, std::initializer_list<DWORD> not_found_errors) {
  int32_t code = EINVAL;
  if (std::find(not_found_errors.begin(), not_found_errors.end(), error) != not_found_errors.end()) code = ENOENT;
  if (error == ERROR_NOT_ENOUGH_MEMORY) code = ENOMEM;
  return portlib_fail(code);
}

// Deletes the files that match a full path whose last part, at file_part, is the pattern; there is room for any entry's
// name in its place. Their names are full, so the current directory stays.
int32_t delete_matching(const char *path, char *file_part) {
  constexpr DWORD protected_attributes =
      FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_DIRECTORY;
  WIN32_FIND_DATAA entry{};
  HANDLE listing = FindFirstFileA(path, &entry);
  if (listing == INVALID_HANDLE_VALUE)
    return fail_by_listing_error(GetLastError(), {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_NO_MORE_FILES});
  int32_t count = 0;
  BOOL found = TRUE;
  while (found == TRUE) {
    std::memcpy(file_part, entry.cFileName, sizeof entry.cFileName);
    if ((entry.dwFileAttributes & protected_attributes) == 0 && DeleteFileA(path)) ++count;
    found = FindNextFileA(listing, &entry);
  }
  // The end of the listing is not among the first set here, so a complete run reports 22; this is meant.
  fail_by_listing_error(GetLastError(), {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_CURRENT_DIRECTORY});
  FindClose(listing);
  return count;
}

}  // namespace

int32_t DELFILESQQ(const char *files, size_t files_len) {
  constexpr size_t longest_pattern = 259;
  const HeapText name = portlib_own_text(files, files_len);
  if (name == nullptr) return 0;

  const DWORD path_size = GetFullPathNameA(name.get(), 0, nullptr, nullptr);
  if (path_size == 0) return portlib_fail_by_os_error();
  const HeapText path = portlib_allocate_text(size_t{path_size} + sizeof WIN32_FIND_DATAA::cFileName);
  if (path == nullptr) return portlib_fail(ENOMEM);
  char *file_part = nullptr;
  const DWORD length = GetFullPathNameA(name.get(), path_size, path.get(), &file_part);
  if (length == 0) return portlib_fail_by_os_error();
  if (length >= path_size) return portlib_fail(EINTR);    // the current directory has changed meanwhile
  if (file_part == nullptr) return portlib_fail(EINVAL);  // the name ends with a separator
  const size_t pattern_length = std::strlen(file_part);
  if (pattern_length > longest_pattern + 1) return portlib_fail_by_os_error();
  file_part[std::min(pattern_length, longest_pattern)] = '\0';
  return delete_matching(path.get(), file_part);
}
