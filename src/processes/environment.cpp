// SPDX-License-Identifier: MIT
// Environment variables, one by one, as the core runtime sees them.
#include "environment.h"

#include <algorithm>
#include <cstring>

#include "assertion.h"
#include "core_entries.h"
#include "qwport.h"
#include "text.h"

namespace {

// Names are short: those that fit here need no memory from the heap.
constexpr size_t short_name_size = 256;

}  // namespace

void GETENV(const char *name, char *value, size_t name_len, size_t value_len) {
  // Any blank ends the name, not only trailing ones.
  const auto length = static_cast<size_t>(std::find(name, name + portlib_length(name_len), ' ') - name);
  char short_name[short_name_size];
  HeapText long_name;
  char *wanted = short_name;
  if (length >= short_name_size) {
    long_name = portlib_allocate_text(length + 1);
    if (long_name == nullptr) portlib_fail_assertion("input", "portability/getenv", 90);
    wanted = long_name.get();
  }
  std::memcpy(wanted, name, length);
  wanted[length] = '\0';

  const LockGuard guard(portlib_environment_lock);
  const char *found = core::for__getenv(wanted);
  portlib_place_text(value, value_len, found, found == nullptr ? 0 : std::strlen(found));
}

int32_t GETENVQQ(const char *varname, char *value, size_t varname_len, size_t value_len) {
  const HeapText wanted = portlib_own_text(varname, varname_len);
  if (wanted == nullptr) return 0;
  const LockGuard guard(portlib_environment_lock);
  const char *found = core::for__getenv(wanted.get());
  const size_t length = found == nullptr ? 0 : std::strlen(found);
  return static_cast<int32_t>(portlib_cstr_to_fstr(value, found, value_len, length));
}

int32_t SETENVQQ(const char *varvalue, size_t varvalue_len) {
  const HeapText assignment = portlib_own_text(varvalue, varvalue_len);
  if (assignment == nullptr) return 0;
  const LockGuard guard(portlib_environment_lock);
  return portlib_put_variable(assignment.get()) ? 1 : 0;
}
