// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include <array>
#include <cstdio>
#include <string>

#include "child.h"
#include "qwcore.h"

namespace {

std::array<int32_t, 5> query() {
  std::array<int32_t, 5> values{};
  ERRSNS(&values[0], &values[1], &values[2], &values[3], &values[4]);
  return values;
}

// Takes errors of the code that its context names.
int32_t take_one_code(const int32_t *code, const int32_t *continuable, const char *text, const intptr_t *context,
                      size_t length) {
  std::printf("handler %d %d %.*s\n", *code, *continuable, static_cast<int>(length), text);
  std::fflush(stdout);
  return *code == *context ? -1 : 0;
}

}  // namespace

TEST_CASE("the error status is the last failure's, once") {
  for_errsns_load(1, 2, 3, 4, 5);
  for_errsns_load(10, 20, 30, 40, 50);
  CHECK(query() == std::array<int32_t, 5>{10, 20, 30, 40, 50});
  CHECK(query() == std::array<int32_t, 5>{});
  for_errsns_load(0, 22, 0, 0, 0);
  int32_t system_error = 0;
  ERRSNS(nullptr, &system_error, nullptr, nullptr, nullptr);
  CHECK(system_error == 22);
}

TEST_CASE("establishing a user error handler gives the previous one back") {
  intptr_t previous = -1;
  intptr_t context = -1;
  CHECK(for__establish_user_error_handler(123, 17, &previous, &context) == 1);
  CHECK((previous == 0 && context == 0));
  CHECK(for__establish_user_error_handler(456, 18, &previous, &context) == 1);
  CHECK((previous == 123 && context == 17));
  CHECK(for__establish_user_error_handler(0, 0, nullptr, nullptr) == 1);
}

CHILD_PROGRAM(issues_diagnostics) {
  for__issue_diagnostic(0, 1, "first");
  for__issue_diagnostic(2, 2, "second");
  for__establish_user_error_handler(reinterpret_cast<intptr_t>(take_one_code), 4, nullptr, nullptr);
  for__issue_diagnostic(1, 3, "third");
  for__issue_diagnostic(2, 4, "fourth");
  for__issue_diagnostic(2, 5, "fifth");
  return 0;
}

TEST_CASE("diagnostics go to standard error unless the handler takes an error") {
  CHECK(run_child("issues_diagnostics").output ==
        "libqwcorert: info (1): first\n"
        "libqwcorert: error (2): second\n"
        "libqwcorert: warning (3): third\n"
        "handler 4 1 fourth\n"
        "handler 5 1 fifth\n"
        "libqwcorert: error (5): fifth\n");
}
