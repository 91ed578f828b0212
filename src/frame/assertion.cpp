// SPDX-License-Identifier: MIT
#include "assertion.h"

#include <cassert>
#include <cstdlib>

void portlib_fail_assertion(const char *expression, const char *source, unsigned line) {
  _assert(expression, source, line);
  std::abort();
}
