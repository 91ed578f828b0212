// SPDX-License-Identifier: MIT
// Listing files that match a pattern, one a call.
#include <cerrno>
#include <cstring>
#include <limits>
#include <type_traits>

#include <io.h>

#include "errors.h"
#include "qwport.h"
#include "text.h"

namespace {

// The handle is then no find handle but one of the caller's or this library's marks.
bool is_finished(int64_t handle) { return handle == QWPORT_FINDINFO_LAST || handle == QWPORT_FINDINFO_ERROR; }

int64_t find_first(const char *files, size_t files_len, struct __finddata64_t &entry) {
  const HeapText pattern = portlib_own_text(files, files_len);
  const intptr_t handle = pattern == nullptr ? -1 : _findfirst64(pattern.get(), &entry);
  return handle == -1 ? int64_t{QWPORT_FINDINFO_ERROR} : handle;
}

int64_t find_next(const char *files, int64_t handle, struct __finddata64_t &entry) {
  if (files == nullptr) portlib_report_errno(EINVAL);  // as at the beginning; the listing itself needs no pattern
  // Some hosts do not survive a find handle that is none.
  if (is_finished(handle)) return QWPORT_FINDINFO_LAST;
  if (_findnext64(handle, &entry) == 0) return handle;
  _findclose(handle);
  return QWPORT_FINDINFO_LAST;
}

template <class Record> int32_t fill_record(const struct __finddata64_t &entry, Record &record) {
  using Size = decltype(record.size);
  const size_t length = portlib_cstr_to_fstr(record.name, entry.name, sizeof record.name, std::strlen(entry.name));
  record.created = static_cast<int32_t>(entry.time_create);
  record.written = static_cast<int32_t>(entry.time_write);
  record.accessed = static_cast<int32_t>(entry.time_access);
  record.attributes = static_cast<int32_t>(entry.attrib);
  if (entry.size > std::numeric_limits<Size>::max()) {
    portlib_report_errno(ERANGE);
    record.size = -1;
  } else {
    record.size = static_cast<Size>(entry.size);
  }
  return static_cast<int32_t>(length);
}

template <class Record> int32_t next_entry(const char *files, size_t files_len, Record *buffer, int64_t *handle) {
  struct __finddata64_t entry {};
  *handle = *handle == QWPORT_FINDINFO_FIRST ? find_first(files, files_len, entry) : find_next(files, *handle, entry);
  if (is_finished(*handle)) return portlib_fail(ENOENT);
  return fill_record(entry, *buffer);
}

}  // namespace

int32_t GETFILEINFOQQ(const char *files, QwportFileInfo *buffer, int64_t *handle, size_t files_len) {
  return next_entry(files, files_len, buffer, handle);
}

int32_t GETFILEINFOQQI8(const char *files, QwportFileInfoI8 *buffer, int64_t *handle, size_t files_len) {
  return next_entry(files, files_len, buffer, handle);
}
