// SPDX-License-Identifier: MIT
// What a program asks of the core runtime: its command line and environment, memory, the error status, clocks,
// random numbers.
#include <doctest/doctest.h>

#include <array>
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <set>
#include <string>

#include <windows.h>

#include "guarded_text.h"
#include "qwcore.h"

namespace {

using Texts = std::set<std::string>;

std::string text_of(const char *text) { return text == nullptr ? "(none)" : text; }

// The variable as the core runtime, the C run-time and the host give it.
Texts values() {
  char value[64] = "(none)";
  GetEnvironmentVariableA("QWPORT_SET", value, sizeof value);
  const std::string own = text_of(for__getenv("QWPORT_SET"));
  return {own, text_of(std::getenv("QWPORT_SET")), value};
}

}  // namespace

TEST_CASE("the command line of a main program that is not in Fortran") {
  CHECK(for_nargs() == __argc);
  const int32_t program = 0;
  int64_t length = 0;
  GuardedText name(std::strlen(__argv[0]));
  for_getarg(&program, name.data(), &length, name.size());
  CHECK((name.str() == __argv[0] && length == static_cast<int64_t>(name.size())));
}

TEST_CASE("a variable that is set or removed is so for the process, the C run-time and the core runtime") {
  char assignment[] = "QWPORT_SET=some value";
  CHECK(for__putenv(assignment) == 0);
  assignment[11] = 'X';  // the caller's text is its own again
  CHECK(values() == Texts{"some value"});
  CHECK((for__putenv("QWPORT_SET=a=b") == 0 && values() == Texts{"a=b"}));
  CHECK((for__putenv("QWPORT_SET=") == 0 && values() == Texts{"(none)"}));
  SetEnvironmentVariableA("QWPORT_SET", "new");  // behind the C run-time's back
  CHECK((text_of(for__getenv("QWPORT_SET")) == "new" && std::getenv("QWPORT_SET") == nullptr));
  CHECK((for__putenv("QWPORT_SET=") == 0 && values() == Texts{"(none)"}));
}

TEST_CASE("an empty value is a value, and one of any length and characters is whole") {
  SetEnvironmentVariableA("QWPORT_EMPTY", "");
  CHECK(text_of(for__getenv("QWPORT_EMPTY")).empty());
  const std::string short_value = "short \xE9";
  for (const std::string &value : {std::string(512, 'v'), std::string(20'000, 'v'), short_value}) {
    CHECK(for__putenv(("QWPORT_LONG=" + value).c_str()) == 0);
    CHECK(text_of(for__getenv("QWPORT_LONG")) == value);
  }
}

TEST_CASE("an assignment without a name or an equals sign is refused") {
  for (const char *assignment : {"", "QWPORT_NONE", "=value"}) {
    errno = 0;
    CHECK((for__putenv(assignment) == -1 && errno == EINVAL));
  }
}

TEST_CASE("the locale is the C run-time's") {
  CHECK(text_of(for__setlocale(LC_ALL, "C")) == std::setlocale(LC_ALL, nullptr));
  CHECK(for__setlocale(LC_ALL, "no such locale") == nullptr);
}

TEST_CASE("allocated memory is the C heap's, and what cannot be had is 12") {
  void *address = nullptr;
  REQUIRE((for_allocate(1000, &address) == 0 && std::realloc(address, 2000) != nullptr));
  REQUIRE((for_allocate(0, &address) == 0 && address != nullptr));
  for (int i = 0; i < 2; ++i) CHECK((for_deallocate(&address) == 0 && address == nullptr));
  address = &address;
  CHECK((for_allocate(SIZE_MAX / 2, &address) == ENOMEM && address == nullptr));
}

TEST_CASE("the error status is the last failure's, once") {
  std::array<int32_t, 5> status{};
  for_errsns_load(1, 2, 3, 4, 5);
  for_errsns_load(10, 20, 30, 40, 50);
  for (const auto &expected : {std::array{10, 20, 30, 40, 50}, std::array{0, 0, 0, 0, 0}}) {
    ERRSNS(&status[0], &status[1], &status[2], &status[3], &status[4]);
    CHECK(status == expected);
  }
}

TEST_CASE("the process started a little before now, and the time since a start grows by what the clock counts") {
  const double start = for__process_start_time();
  const auto now = static_cast<double>(std::time(nullptr));
  CHECK((start <= now + 1 && start > now - 600 && for__process_start_time() == start));
  const double before = for_since_epoch_t(&start);
  CHECK((start + before < now + 2 && start + before > now - 1));
  Sleep(50);
  CHECK(for_since_epoch_t(&start) - before >= 0.045);
  const float midnight = 0, seconds = for_secnds_t(&midnight);
  CHECK((seconds >= 0 && seconds < 86'400 && for_secnds_t(&seconds) < 60));
}

TEST_CASE("the random sequence is the documented one, from any seed on, and that of a reset is 1") {
  int32_t seed = 0;
  __FFsetseed(0);
  // Computed outside this code, with arbitrary-precision integers.
  CHECK((__FFirand() == 1231361927 && __FFirand() == 510358009));
  __FFgetseed(&seed);
  CHECK(__FFirand() == 227163878);
  __FFsetseed(seed);
  CHECK(__FFirand() == 227163878);
  __FFsetseed(0);
  CHECK((__FFfrand() == 0x1.25945e0000000p-1F && __FFdrand() == 0x1.e6b71f1b147dcp-3));
  __FFresetseed();
  __FFgetseed(&seed);
  CHECK(seed == 1);
}
