// SPDX-License-Identifier: MIT
// Environment variables and the locale, as the C run-time and so libgfortran see them.
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include <windows.h>

#include "heap_text.h"
#include "qwcore.h"

namespace {

// The value that was asked for last. Most fit into the room that is there, for one call of the host.
struct {
  char room[1024];
  HeapText long_value;
} last_value;

enum class Answer { found, absent, unknown };

// Asks the host for its own wide texts, which saves the conversions by the code page. Knows only a short name and value
// of ASCII, the same in every code page.
Answer read_ascii_variable(const char *name) {
  wchar_t wide_name[64], value[512];
  size_t size = 0;
  do {
    if (size == std::size(wide_name) || static_cast<signed char>(name[size]) < 0) return Answer::unknown;
    wide_name[size] = static_cast<wchar_t>(name[size]);
  } while (name[size++] != '\0');

  value[0] = L'\0';
  SetLastError(ERROR_SUCCESS);
  const DWORD length = GetEnvironmentVariableW(wide_name, value, static_cast<DWORD>(std::size(value)));
  if (length == 0 && GetLastError() != ERROR_SUCCESS) return Answer::absent;
  if (length >= std::size(value)) return Answer::unknown;
  for (size_t i = 0; i <= length; ++i) {
    if (value[i] > 0x7F) return Answer::unknown;
    last_value.room[i] = static_cast<char>(value[i]);
  }
  return Answer::found;
}

}  // namespace

// The process's own variables, which the C run-time's copies follow (for__putenv) but do not lead: the program can
// change them behind its back (SetEnvironmentVariable).
const char *for__getenv(const char *name) {
  const Answer answer = read_ascii_variable(name);
  if (answer != Answer::unknown) return answer == Answer::found ? last_value.room : nullptr;
  char *value = last_value.room;
  DWORD size = sizeof last_value.room;
  for (;;) {
    value[0] = '\0';
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetEnvironmentVariableA(name, value, size);
    if (length == 0 && GetLastError() != ERROR_SUCCESS) return nullptr;
    if (length < size) return value;
    last_value.long_value = portlib_allocate_text(length);
    if (last_value.long_value == nullptr) return nullptr;
    value = last_value.long_value.get();
    size = length;
  }
}

int32_t for__putenv(const char *assignment) {
  const char *equals = std::strchr(assignment, '=');
  constexpr size_t longest_assignment = 32766;  // the host's limit; some hosts cut what is longer
  if (equals == nullptr || equals == assignment || std::strlen(assignment) > longest_assignment) {
    errno = EINVAL;
    return -1;
  }
  if (equals[1] != '\0') return _putenv(assignment);

  // The C run-time need not remove a variable that it does not know of.
  const auto length = static_cast<size_t>(equals - assignment);
  const HeapText name = portlib_allocate_text(length + 1);
  if (name == nullptr) return -1;
  std::memcpy(name.get(), assignment, length);
  name[length] = '\0';
  const int result = _putenv(assignment);
  SetEnvironmentVariableA(name.get(), nullptr);
  return result;
}

const char *for__setlocale(int32_t category, const char *locale) { return std::setlocale(category, locale); }
