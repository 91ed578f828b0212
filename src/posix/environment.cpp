// SPDX-License-Identifier: MIT
// Environment variables, as the core runtime sees them.
#include <algorithm>
#include <cstring>
#include <cwchar>
#include <memory>

#include <windows.h>

#include "core_entries.h"
#include "environment.h"
#include "heap_text.h"
#include "qwport.h"
#include "results.h"
#include "texts.h"

using namespace qwport::posix;

namespace {

// A variable's name; null with errno set for no memory and for a text that is none.
HeapText own_variable_name(const char *name, int32_t lenname, size_t name_len) {
  HeapText own = own_path(name, lenname, name_len);
  if (own == nullptr || (own[0] != '\0' && std::strchr(own.get(), '=') == nullptr)) return own;
  errno = EINVAL;
  return nullptr;
}

// Sets a variable; an empty value removes it. False with errno set.
bool set_variable(const char *name, size_t name_length, const char *value) {
  const size_t value_length = std::strlen(value);
  const HeapText assignment = portlib_allocate_text(name_length + value_length + 2);
  if (assignment == nullptr) {
    errno = ENOMEM;
    return false;
  }
  char *end = std::copy_n(name, name_length, assignment.get());
  *end++ = '=';
  std::copy_n(value, value_length + 1, end);
  return portlib_put_variable(assignment.get());
}

// Has the core runtime forget a variable, by the name that it has in the code page. False with errno set.
bool forget_variable(const wchar_t *name, size_t name_length) {
  constexpr size_t most_bytes = 3;  // of a character
  const size_t size = name_length * most_bytes + 1;
  const HeapText narrow = portlib_allocate_text(size);
  if (narrow == nullptr) {
    errno = ENOMEM;
    return false;
  }
  const int length = WideCharToMultiByte(CP_ACP, 0, name, static_cast<int>(name_length), narrow.get(),
                                         static_cast<int>(size), nullptr, nullptr);
  narrow[static_cast<size_t>(length)] = '\0';
  return set_variable(narrow.get(), static_cast<size_t>(length), "");
}

struct WideEnvironmentDeleter {
  void operator()(wchar_t *block) const { FreeEnvironmentStringsW(block); }
};

}  // namespace

void PXFGETENV(const char *name, const int32_t *lenname, char *value, int32_t *lenval, int32_t *ierror, size_t name_len,
               size_t value_len) {
  const HeapText wanted = own_variable_name(name, *lenname, name_len);
  if (wanted == nullptr) return fail_by_errno(ierror);
  const LockGuard guard(portlib_environment_lock);
  const char *found = core::for__getenv(wanted.get());
  const size_t length = found == nullptr ? 0 : std::strlen(found);
  const bool fits = put_text(value, value_len, found, length);
  *lenval = static_cast<int32_t>(length);
  if (found == nullptr) return fail(ierror, EINVAL);
  if (!fits) return fail(ierror, text_was_cut, ERANGE);
  *ierror = 0;
}

void PXFSETENV(const char *name, const int32_t *lenname, const char *new_value, const int32_t *lennew,
               const int32_t *ioverwrite, int32_t *ierror, size_t name_len, size_t new_value_len) {
  const HeapText variable = own_variable_name(name, *lenname, name_len);
  if (variable == nullptr) return fail_by_errno(ierror);
  const HeapText value = own_path(new_value, *lennew, new_value_len);
  if (value == nullptr) return fail_by_errno(ierror);
  const LockGuard guard(portlib_environment_lock);
  const bool stays = *ioverwrite == 0 && core::for__getenv(variable.get()) != nullptr;
  settle(ierror, stays || set_variable(variable.get(), std::strlen(variable.get()), value.get()));
}

// The core runtime knows names of the code page alone, so the host is told, too.
void PXFCLEARENV(int32_t *ierror) {
  const LockGuard guard(portlib_environment_lock);
  const std::unique_ptr<wchar_t, WideEnvironmentDeleter> environment(GetEnvironmentStringsW());
  if (environment == nullptr) return fail(ierror, ENOMEM);
  int32_t error = 0;
  size_t length = 0;
  for (wchar_t *variable = environment.get(); *variable != L'\0'; variable += length + 1) {
    length = std::wcslen(variable);
    const size_t name_length = std::wcscspn(variable, L"=");
    if (name_length == 0) continue;  // "=C:=C:\\dir": the host's own
    if (!forget_variable(variable, name_length)) error = errno == 0 ? EINVAL : errno;
    variable[name_length] = L'\0';
    if (SetEnvironmentVariableW(variable, nullptr)) continue;
    const DWORD host_error = GetLastError();
    if (host_error != ERROR_ENVVAR_NOT_FOUND) error = portlib_errno_of_os_error(host_error);
  }
  *ierror = 0;
  if (error != 0) fail(ierror, error);
}
