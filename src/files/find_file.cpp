// SPDX-License-Identifier: MIT
// Searching a file in the host's default places and in a list of directories.
#include <cerrno>

#include <windows.h>

#include "errors.h"
#include "qwport.h"
#include "text.h"

namespace {

constexpr DWORD margin = 5;
constexpr int32_t size_changed = EINTR;

// Room for an answer that was said to need so many characters; none, reported, when there is no memory.
HeapText room_for_answer(DWORD needed) {
  HeapText room = portlib_allocate_text(needed + margin);
  if (room == nullptr) portlib_report_errno(ENOMEM);
  return room;
}

// Puts the path of the file into pathbuf and gives its length; 0 if it is not found. directories may be
// null: then the host's default places are searched.
int32_t search(const char *directories, const char *file, char *pathbuf, size_t pathbuf_len) {
  const DWORD needed = SearchPathA(directories, file, nullptr, 0, nullptr, nullptr);
  if (needed == 0) return portlib_fail_by_os_error();
  const HeapText path = room_for_answer(needed);
  if (path == nullptr) return 0;
  const DWORD length = SearchPathA(directories, file, nullptr, needed + margin, path.get(), nullptr);
  if (length == 0) return portlib_fail_by_os_error();
  if (length >= needed + margin) return portlib_fail(size_changed);
  return static_cast<int32_t>(portlib_cstr_to_fstr(pathbuf, path.get(), pathbuf_len, length));
}

// The value of a variable into value, which stays null for a variable that does not exist; false for a
// failure, which is reported.
bool read_variable(const char *name, HeapText &value) {
  const DWORD needed = GetEnvironmentVariableA(name, nullptr, 0);
  if (needed == 0) return true;
  HeapText text = room_for_answer(needed);
  if (text == nullptr) return false;
  const DWORD length = GetEnvironmentVariableA(name, text.get(), needed + margin);
  if (length == 0 || length >= needed + margin) return portlib_fail(size_changed) != 0;
  value = std::move(text);
  return true;
}

}  // namespace

int32_t FINDFILEQQ(const char *filename, const char *varname, char *pathbuf, size_t filename_len, size_t varname_len,
                   size_t pathbuf_len) {
  portlib_place_text(pathbuf, pathbuf_len, nullptr, 0);
  const HeapText file = portlib_own_text(filename, filename_len);
  if (file == nullptr) return 0;
  const int32_t length = search(nullptr, file.get(), pathbuf, pathbuf_len);
  if (length != 0) return length;

  const HeapText variable = portlib_own_text(varname, varname_len);
  HeapText directories;
  if (variable == nullptr || !read_variable(variable.get(), directories)) return 0;
  return search(directories.get(), file.get(), pathbuf, pathbuf_len);
}
