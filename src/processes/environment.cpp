// SPDX-License-Identifier: MIT
// Environment variables, one by one, as the core runtime sees them.
#include <algorithm>
#include <cstring>

#include "assertion.h"
#include "core_entries.h"
#include "environment.h"
#include "qwport.h"
#include "text.h"

void GETENV(const char *name, char *value, size_t name_len, size_t value_len) {
  const LockGuard guard(portlib_environment_lock());

  // Any blank ends the name, not only trailing ones.
  const auto length = static_cast<size_t>(std::find(name, name + name_len, ' ') - name);
  const HeapText wanted = portlib_allocate_text(length + 1);
  if (wanted == nullptr) portlib_fail_assertion("input", "portability/getenv", 90);
  std::copy_n(name, length, wanted.get());
  wanted[length] = '\0';

  const char *found = core::for__getenv(wanted.get());
  portlib_place_text(value, value_len, found, found == nullptr ? 0 : std::strlen(found));
}

int32_t GETENVQQ(const char *varname, char *value, size_t varname_len, size_t value_len) {
  const LockGuard guard(portlib_environment_lock());

  const HeapText wanted = portlib_own_text(varname, varname_len);
  if (wanted == nullptr) return 0;
  const char *found = core::for__getenv(wanted.get());
  const size_t length = found == nullptr ? 0 : std::strlen(found);
  return static_cast<int32_t>(portlib_cstr_to_fstr(value, found, value_len, length));
}

int32_t SETENVQQ(const char *varvalue, size_t varvalue_len) {
  const LockGuard guard(portlib_environment_lock());
  const HeapText assignment = portlib_own_text(varvalue, varvalue_len);
  return assignment != nullptr && core::for__putenv(assignment.get()) == 0 ? 1 : 0;
}
