// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <string>

#include <windows.h>

#include "qwcore.h"

namespace {

std::string text_of(const char *text) { return text == nullptr ? "(none)" : text; }

// A variable as the core runtime, the C run-time and the host give it.
std::string value_of(const char *name) {
  char value[64] = "";
  const DWORD length = GetEnvironmentVariableA(name, value, sizeof value);
  const std::string own = text_of(for__getenv(name));
  return own + '|' + text_of(std::getenv(name)) + '|' + (length == 0 ? "(none)" : value);
}

}  // namespace

TEST_CASE("a variable that is set or removed is so for the process, the C run-time and the core runtime") {
  char assignment[] = "QWPORT_SET=some value";
  CHECK(for__putenv(assignment) == 0);
  assignment[11] = 'X';  // the caller's text is its own again
  CHECK(value_of("QWPORT_SET") == "some value|some value|some value");
  CHECK((for__putenv("QWPORT_SET=a=b") == 0 && value_of("QWPORT_SET") == "a=b|a=b|a=b"));
  CHECK((for__putenv("QWPORT_SET=") == 0 && value_of("QWPORT_SET") == "(none)|(none)|(none)"));

  SetEnvironmentVariableA("QWPORT_SET", "new");  // behind the C run-time's back
  CHECK(value_of("QWPORT_SET") == "new|(none)|new");
  CHECK((for__putenv("QWPORT_SET=") == 0 && value_of("QWPORT_SET") == "(none)|(none)|(none)"));
}

TEST_CASE("an empty value is a value, and one of any length and characters is whole") {
  SetEnvironmentVariableA("QWPORT_EMPTY", "");
  CHECK(text_of(for__getenv("QWPORT_EMPTY")).empty());
  for (const std::string &value : {std::string(511, 'v'), std::string(512, 'v'), std::string(1023, 'v'),
                                   std::string(20'000, 'v'), std::string("short \xE9")}) {
    CHECK(for__putenv(("QWPORT_LONG=" + value).c_str()) == 0);
    CHECK(text_of(for__getenv("QWPORT_LONG")) == value);
  }
  for__putenv("QWPORT_LONG=");
}

TEST_CASE("an assignment without a name or an equals sign is refused") {
  for (const char *assignment : {"", "QWPORT_NONE", "=value"}) {
    errno = 0;
    CHECK((for__putenv(assignment) == -1 && errno == EINVAL));
  }
}

TEST_CASE("the locale is the C run-time's") {
  const std::string before = for__setlocale(LC_ALL, nullptr);
  CHECK(before == std::setlocale(LC_ALL, nullptr));
  CHECK(text_of(for__setlocale(LC_ALL, "C")) == "C");
  CHECK(for__setlocale(LC_ALL, "no such locale") == nullptr);
  std::setlocale(LC_ALL, before.c_str());
}
