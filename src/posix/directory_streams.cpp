// SPDX-License-Identifier: MIT
// Reading the entries of a directory one by one.
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include <windows.h>

#include "format.h"
#include "handles.h"
#include "qwport.h"
#include "texts.h"

using namespace qwport::posix;

namespace {

struct DirectoryStream {
  static constexpr Tag own_tag = Tag::directory_stream;
  Tag tag = own_tag;
  bool is_started = false;
  HANDLE find_handle = INVALID_HANDLE_VALUE;
  HeapText pattern;
};

// Null with errno ENOENT or ENOTDIR for a path that is no directory.
HeapText own_pattern(const char *path) {
  const DWORD attributes = GetFileAttributesA(path);
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
    errno = attributes == INVALID_FILE_ATTRIBUTES ? ENOENT : ENOTDIR;
    return nullptr;
  }
  constexpr size_t longest_suffix = 3;
  const size_t length = std::strlen(path);
  HeapText pattern = portlib_allocate_text(length + longest_suffix);
  if (pattern == nullptr) {
    errno = ENOMEM;
    return nullptr;
  }
  // Only a backslash counts as one; after a slash another one does no harm.
  const char *suffix = length > 0 && path[length - 1] == '\\' ? "*" : R"(\*)";
  portlib_format(pattern.get(), length + longest_suffix, "%s%s", path, suffix);
  return pattern;
}

bool read_first(DirectoryStream &stream, WIN32_FIND_DATAA &entry) {
  HANDLE find_handle = FindFirstFileA(stream.pattern.get(), &entry);
  if (find_handle == INVALID_HANDLE_VALUE) return false;
  if (stream.find_handle != INVALID_HANDLE_VALUE) FindClose(stream.find_handle);  // left by PXFREWINDDIR
  stream.find_handle = find_handle;
  stream.is_started = true;
  return true;
}

}  // namespace

void PXFOPENDIR(const char *path, const int32_t *ilen, int32_t *iopendirid, int32_t *ierror, size_t path_len) {
  const HeapText name = own_path(path, *ilen, path_len);
  HeapText pattern = name == nullptr ? nullptr : own_pattern(name.get());
  if (pattern == nullptr) return fail_by_errno(ierror);
  std::unique_ptr<DirectoryStream> stream(new (std::nothrow) DirectoryStream);
  if (stream == nullptr) return fail(ierror, ENOMEM);
  stream->pattern = std::move(pattern);
  const int32_t handle = register_record(stream.get());
  if (handle == 0) return fail(ierror, no_such_handle, EINVAL);
  static_cast<void>(stream.release());
  *iopendirid = handle;
  *ierror = 0;
}

void PXFREADDIR(const int32_t *idirid, const int32_t *jdirent, int32_t *ierror) {
  if (any_record(*jdirent, ierror) == nullptr) return;
  auto *stream = record_of<DirectoryStream>(*idirid, ierror);
  if (stream == nullptr) return;
  auto *dirent = record_of<DirentRecord>(*jdirent, ierror);
  if (dirent == nullptr) return;

  WIN32_FIND_DATAA entry;
  static_assert(sizeof entry.cFileName <= sizeof dirent->d_name);
  const bool found = stream->is_started ? FindNextFileA(stream->find_handle, &entry) != 0 : read_first(*stream, entry);
  if (!found) return fail_by_host(ierror);
  std::memcpy(dirent->d_name, entry.cFileName, sizeof entry.cFileName);
  *ierror = 0;
}

// Answers 0 for every handle; this is meant.
void PXFREWINDDIR(const int32_t *idirid, int32_t *ierror) {
  void *record = find_record(*idirid);
  if (record != nullptr && tag_of(record) == Tag::directory_stream) {
    static_cast<DirectoryStream *>(record)->is_started = false;
  }
  *ierror = 0;
}

// Whatever the host says, the handle and the stream are gone.
void PXFCLOSEDIR(int32_t *idirid, int32_t *ierror) {
  const std::unique_ptr<DirectoryStream> stream(
      static_cast<DirectoryStream *>(take_record(*idirid, Kind::directory_stream, EINVAL, ierror)));
  if (stream == nullptr) return;
  *idirid = 0;
  // A stream that was never read has nothing to close.
  if (stream->find_handle != INVALID_HANDLE_VALUE && !FindClose(stream->find_handle)) return fail_by_host(ierror);
  *ierror = 0;
}
