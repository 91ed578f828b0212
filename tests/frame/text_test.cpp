// SPDX-License-Identifier: MIT
// The string helpers, and the mapping of operating-system errors onto errno values.
#include "text.h"

#include <doctest/doctest.h>

#include <cerrno>
#include <map>
#include <string>
#include <utility>

#include "core_entries.h"
#include "errors.h"
#include "guarded_text.h"
#include "import_override.h"

namespace {

int32_t reported;

// What has been reported since the last look, and is in errno; nothing is recorded.
int32_t last_report() {
  core_entries.for_errsns_load = [](int32_t, int32_t error, int32_t, int32_t, int32_t) { reported = error; };
  CHECK((reported == 0 || reported == errno));
  CHECK(portlib_last_error == 0);
  return std::exchange(reported, 0);
}

std::string c_string(std::string_view characters) {
  GuardedText text(characters);
  const HeapText copy = portlib_own_text(text.data(), text.size());
  REQUIRE(copy != nullptr);
  return copy.get();
}

// Copies out to a buffer of this length: "placed|the buffer|the report".
std::string copy_out(const char *source, size_t source_length, size_t buffer_length) {
  GuardedText buffer(buffer_length);
  const size_t placed = portlib_cstr_to_fstr(buffer.data(), source, buffer.size(), source_length);
  return std::to_string(placed) + '|' + buffer.str() + '|' + std::to_string(last_report());
}

// Every error number with a mapping of its own.
const std::map<uint32_t, int32_t> single_errors = {
    {1, 22},   {2, 2},    {3, 2},    {4, 24},   {5, 13},   {6, 9},   {7, 12},   {8, 12},   {9, 12},
    {10, 7},   {11, 8},   {12, 22},  {13, 22},  {15, 2},   {16, 13}, {17, 18},  {18, 2},   {33, 13},
    {53, 2},   {65, 13},  {67, 2},   {80, 17},  {82, 13},  {83, 13}, {87, 22},  {89, 11},  {108, 13},
    {109, 9},  {112, 28}, {114, 9},  {128, 10}, {129, 10}, {130, 9}, {131, 22}, {132, 13}, {145, 41},
    {158, 13}, {161, 2},  {164, 11}, {167, 13}, {183, 17}, {206, 2}, {215, 11}, {1816, 12}};

int32_t expected_errno(uint32_t os_error) {
  const auto single = single_errors.find(os_error);
  if (single != single_errors.end()) return single->second;
  if (os_error >= 19 && os_error <= 36) return 13;
  return os_error >= 188 && os_error <= 202 ? 8 : 22;
}

}  // namespace

TEST_CASE("an input text loses its trailing blanks and nothing else, and what cannot be copied is reported") {
  last_report();
  const std::pair<std::string, std::string> rows[] = {{"ab  ", "ab"},   {"  a b ", "  a b"}, {"tab\t ", "tab\t"},
                                                      {"full", "full"}, {"    ", ""},        {"", ""}};
  for (const auto &[text, copy] : rows) CHECK(c_string(text) == copy);
  CHECK(last_report() == 0);
  CHECK((portlib_fstr_to_cstr(nullptr, 3) == nullptr && last_report() == EINVAL));
  const ImportOverride allocation(GetModuleHandleA(nullptr), "malloc", [](size_t) -> void * { return nullptr; });
  CHECK((portlib_fstr_to_cstr("ab", 2) == nullptr && last_report() == ENOMEM));
}

TEST_CASE("an output text ends at its NUL or its length, is blank-padded or cut, and a cut is reported") {
  const std::tuple<const char *, size_t, size_t, const char *> rows[] = {
      {"hello", 5, 6, "5|hello |0"}, {"hello", 5, 5, "5|hello|0"}, {"hello", 5, 4, "4|hell|22"},
      {"hello", 5, 0, "0||22"},      {"he\0lo", 5, 4, "2|he  |0"}, {"he\0lo", 5, 2, "2|he|0"},
      {"hello", 2, 4, "2|he  |0"},   {"hello", 2, 2, "2|he|22"},   {"hello", 0, 3, "0|   |0"},
      {"hello", 0, 0, "0||0"},       {nullptr, 5, 3, "0|   |0"},   {"", 0, 3, "0|   |0"},
  };
  last_report();
  for (const auto &[source, length, room, expected] : rows) CHECK(copy_out(source, length, room) == expected);
  CHECK((portlib_cstr_to_fstr(nullptr, "hello", 8, 5) == 0 && last_report() == EINVAL));
}

TEST_CASE("44 operating-system errors have a mapping of their own, two ranges share one, the rest is 22") {
  for (uint32_t os_error = 0; os_error < 20'000; ++os_error) {
    CAPTURE(os_error);
    REQUIRE(portlib_errno_of_os_error(os_error) == expected_errno(os_error));
  }
  CHECK(portlib_errno_of_os_error(0xFFFFFFFF) == 22);
}
