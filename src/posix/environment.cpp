// SPDX-License-Identifier: MIT
// Environment variables, as the core runtime sees them.
#include <algorithm>
#include <cstring>

#include "core_entries.h"
#include "environment.h"
#include "posix.h"
#include "qwport.h"

namespace {

// A variable's name; null with errno set for no memory and for a text that is none.
HeapText own_variable_name(const char *name, int32_t lenname, size_t name_len) {
  HeapText own = pxf_own_path(name, lenname, name_len);
  if (own == nullptr || (own[0] != '\0' && std::strchr(own.get(), '=') == nullptr)) return own;
  errno = EINVAL;
  return nullptr;
}

// Sets a variable; an empty value removes it. False with errno set.
bool set_variable(const char *name, size_t name_length, const char *value) {
  const size_t value_length = std::strlen(value);
  const HeapText assignment = portlib_allocate_text(name_length + value_length + 2);
  if (assignment == nullptr) return false;
  char *end = std::copy_n(name, name_length, assignment.get());
  *end++ = '=';
  std::copy_n(value, value_length + 1, end);
  return portlib_put_variable(assignment.get());
}

}  // namespace

void PXFGETENV(const char *name, const int32_t *lenname, char *value, int32_t *lenval, int32_t *ierror, size_t name_len,
               size_t value_len) {
  const HeapText wanted = own_variable_name(name, *lenname, name_len);
  if (wanted == nullptr) return pxf_settle(ierror, false);
  const LockGuard guard(portlib_environment_lock);
  const char *found = core::for__getenv(wanted.get());
  const size_t length = found == nullptr ? 0 : std::strlen(found);
  const bool fits = pxf_put_text(value, value_len, found, length);
  *lenval = static_cast<int32_t>(length);
  if (found == nullptr) return pxf_fail(ierror, EINVAL);
  if (!fits) return pxf_fail(ierror, pxf_truncated, ERANGE);
  *ierror = 0;
}

void PXFSETENV(const char *name, const int32_t *lenname, const char *new_value, const int32_t *lennew,
               const int32_t *ioverwrite, int32_t *ierror, size_t name_len, size_t new_value_len) {
  const HeapText variable = own_variable_name(name, *lenname, name_len);
  if (variable == nullptr) return pxf_settle(ierror, false);
  const HeapText value = pxf_own_path(new_value, *lennew, new_value_len);
  if (value == nullptr) return pxf_settle(ierror, false);
  const LockGuard guard(portlib_environment_lock);
  const bool stays = *ioverwrite == 0 && core::for__getenv(variable.get()) != nullptr;
  pxf_settle(ierror, stays || set_variable(variable.get(), std::strlen(variable.get()), value.get()));
}

void PXFCLEARENV(int32_t *ierror) {
  const EnvironmentBlock environment = portlib_environment_block();
  if (environment == nullptr) return pxf_fail(ierror, ENOMEM);
  const LockGuard guard(portlib_environment_lock);
  bool done = true;
  for (const char *variable = environment.get(); *variable != '\0'; variable += std::strlen(variable) + 1) {
    const size_t name_length = std::strcspn(variable, "=");
    const bool is_hidden = name_length == 0;  // "=C:=C:\\dir": the host's own
    done = (is_hidden || set_variable(variable, name_length, "")) && done;
  }
  pxf_settle(ierror, done);
}
