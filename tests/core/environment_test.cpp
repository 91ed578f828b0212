// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <string>

#include <windows.h>

#include "qwcore.h"

namespace {

std::string host_value(const char *name) {
  char value[64] = "";
  const DWORD length = GetEnvironmentVariableA(name, value, sizeof value);
  return length == 0 ? "(none)" : std::string(value, length);
}

std::string value_of(const char *text) { return text == nullptr ? "(none)" : text; }

}  // namespace

TEST_CASE("a variable that is set is seen by the process, the C run-time and the core runtime") {
  char assignment[] = "QWPORT_SET=some value";
  CHECK(for__putenv(assignment) == 0);
  assignment[11] = 'X';  // the caller's text is its own again
  CHECK(value_of(for__getenv("QWPORT_SET")) == "some value");
  CHECK(value_of(std::getenv("QWPORT_SET")) == "some value");
  CHECK(host_value("QWPORT_SET") == "some value");

  CHECK(for__putenv("QWPORT_SET=a=b") == 0);
  CHECK(value_of(for__getenv("QWPORT_SET")) == "a=b");
  CHECK(for__putenv("QWPORT_SET=") == 0);
  CHECK(for__getenv("QWPORT_SET") == nullptr);
  CHECK(std::getenv("QWPORT_SET") == nullptr);
  CHECK(host_value("QWPORT_SET") == "(none)");
}

TEST_CASE("what the program changes by the host's own call reaches the C run-time") {
  SetEnvironmentVariableA("QWPORT_HOST", "first");
  CHECK(value_of(for__getenv("QWPORT_HOST")) == "first");
  CHECK(value_of(std::getenv("QWPORT_HOST")) == "first");
  SetEnvironmentVariableA("QWPORT_HOST", "second");
  CHECK(value_of(for__getenv("QWPORT_HOST")) == "second");
  CHECK(value_of(std::getenv("QWPORT_HOST")) == "second");
  SetEnvironmentVariableA("QWPORT_HOST", nullptr);
  CHECK(for__getenv("QWPORT_HOST") == nullptr);
  CHECK(std::getenv("QWPORT_HOST") == nullptr);
}

TEST_CASE("an empty value is a value") {
  SetEnvironmentVariableA("QWPORT_EMPTY", "");
  CHECK(value_of(for__getenv("QWPORT_EMPTY")).empty());
  SetEnvironmentVariableA("QWPORT_EMPTY", nullptr);
}

TEST_CASE("a long value is whole") {
  const std::string value(20'000, 'v');
  CHECK(for__putenv(("QWPORT_LONG=" + value).c_str()) == 0);
  CHECK(value_of(for__getenv("QWPORT_LONG")) == value);
  for__putenv("QWPORT_LONG=");
}

TEST_CASE("an assignment without a name or an equals sign is refused") {
  for (const char *assignment : {"", "QWPORT_NONE", "=value"}) {
    errno = 0;
    CHECK(for__putenv(assignment) == -1);
    CHECK(errno == EINVAL);
  }
}

TEST_CASE("the locale is the C run-time's") {
  const std::string before = for__setlocale(LC_ALL, nullptr);
  CHECK(before == std::setlocale(LC_ALL, nullptr));
  CHECK(value_of(for__setlocale(LC_ALL, "C")) == "C");
  CHECK(for__setlocale(LC_ALL, "no such locale") == nullptr);
  std::setlocale(LC_ALL, before.c_str());
}
