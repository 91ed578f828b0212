// SPDX-License-Identifier: MIT
// The string helpers, and the reports of operating-system errors.
#include "text.h"

#include <doctest/doctest.h>

#include <cerrno>
#include <cstdlib>
#include <map>
#include <string>

#include <windows.h>

#include "core_entries.h"
#include "errors.h"
#include "guarded_text.h"
#include "import_override.h"

namespace {

constexpr int32_t earlier_error = 7;
int32_t reported;  // by the last call of for_errsns_load

// What is reported and recorded since the last look: "reported/recorded", each "-" if nothing is.
std::string reports() {
  const int32_t recorded = portlib_last_error.exchange(earlier_error), last = std::exchange(reported, 0);
  core_entries.for_errsns_load = [](int32_t, int32_t error, int32_t, int32_t, int32_t) { reported = error; };
  CHECK((last == 0 || errno == last));
  return std::to_string(last) + (recorded == earlier_error ? "" : " and IERRNO " + std::to_string(recorded));
}
