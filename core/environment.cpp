// SPDX-License-Identifier: MIT
// Environment variables and the locale, as the C run-time and so libgfortran see them.
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>

#include <windows.h>

#include "format.h"
#include "heap_text.h"
#include "qwcore.h"

namespace {

// A value of the process's own environment. Most fit into the room that is there, for one call of the host.
struct ProcessVariable {
  char room[1024];
  HeapText long_value;
};

// The variable's value, or null.
const char *read_process_variable(const char *name, ProcessVariable &variable) {
  char *value = variable.room;
  DWORD size = sizeof variable.room;
  for (;;) {
    value[0] = '\0';
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetEnvironmentVariableA(name, value, size);
    if (length == 0 && GetLastError() != ERROR_SUCCESS) return nullptr;
    if (length < size) return value;
    variable.long_value = portlib_allocate_text(length);
    if (variable.long_value == nullptr) return nullptr;
    value = variable.long_value.get();
    size = length;
  }
}

void set_c_variable(const char *name, const char *value) {
  const size_t size = std::strlen(name) + std::strlen(value) + 2;
  const HeapText assignment = portlib_allocate_text(size);
  if (assignment == nullptr) return;
  portlib_format(assignment.get(), size, "%s=%s", name, value);
  _putenv(assignment.get());
}

}  // namespace

// The process's environment can be changed behind the C run-time's back (SetEnvironmentVariable), so the
// C run-time's view is brought up to date first.
const char *for__getenv(const char *name) {
  const char *c_value = std::getenv(name);
  ProcessVariable variable;
  const char *value = read_process_variable(name, variable);
  if (value == nullptr) {
    if (c_value != nullptr) set_c_variable(name, "");
    return nullptr;
  }
  if (value[0] == '\0') return "";  // the C run-time cannot hold an empty value
  if (c_value != nullptr && std::strcmp(c_value, value) == 0) return c_value;
  set_c_variable(name, value);
  return std::getenv(name);
}

int32_t for__putenv(const char *assignment) {
  const char *equals = std::strchr(assignment, '=');
  constexpr size_t longest_assignment = 32766;  // the host's limit; some hosts cut what is longer
  if (equals == nullptr || equals == assignment || std::strlen(assignment) > longest_assignment) {
    errno = EINVAL;
    return -1;
  }
  return _putenv(assignment);
}

const char *for__setlocale(int32_t category, const char *locale) { return std::setlocale(category, locale); }
