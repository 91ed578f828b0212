// SPDX-License-Identifier: MIT
// The string helpers.
#include "text.h"

#include <doctest/doctest.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "core_entries.h"
#include "errors.h"
#include "guarded_text.h"
#include "import_override.h"

namespace {

int32_t reported;  // by the last call of for_errsns_load

void keep_report(int32_t, int32_t error, int32_t, int32_t, int32_t) { reported = error; }

// Watches the reports of one test.
struct Reports {
  Reports() {
    core_entries.for_errsns_load = keep_report;
    reported = 0;
    errno = 0;
    portlib_last_error = 7;
  }
  ~Reports() { CHECK(portlib_last_error == 7); }  // the helpers never record
  Reports(const Reports &) = delete;
  Reports &operator=(const Reports &) = delete;
};

std::string c_string(std::string_view characters) {
  GuardedText text(characters);
  const HeapText copy = portlib_own_text(text.data(), text.size());
  REQUIRE(copy != nullptr);
  return copy.get();
}

// Copies out to a buffer of this length: "placed|the buffer|the report".
std::string copy_out(const char *source, size_t source_length, size_t buffer_length) {
  reported = 0;
  GuardedText buffer(buffer_length);
  const size_t placed = portlib_cstr_to_fstr(buffer.data(), source, buffer.size(), source_length);
  return std::to_string(placed) + '|' + buffer.str() + '|' + std::to_string(reported);
}

void *no_memory(size_t) { return nullptr; }

size_t noted_size;
void *note_size(size_t size) {
  noted_size = size;
  return std::calloc(1, size);
}

}  // namespace

TEST_CASE("an input text loses its trailing blanks and nothing else") {
  const Reports reports;
  const std::pair<std::string, std::string> rows[] = {{"ab  ", "ab"},   {"  a b ", "  a b"}, {"tab\t ", "tab\t"},
                                                      {"full", "full"}, {"    ", ""},        {"", ""}};
  for (const auto &[text, copy] : rows) CHECK(c_string(text) == copy);
  CHECK(reported == 0);
  const ImportOverride allocation(GetModuleHandleA(nullptr), "malloc", note_size);
  c_string("ab  ");
  CHECK(noted_size == 25);  // 23 bytes to spare
}

TEST_CASE("an input text that cannot be copied is reported") {
  const Reports reports;
  CHECK(portlib_fstr_to_cstr(nullptr, 3) == nullptr);
  CHECK((reported == EINVAL && errno == EINVAL));
  const ImportOverride allocation(GetModuleHandleA(nullptr), "malloc", no_memory);
  CHECK(portlib_fstr_to_cstr("abc", 3) == nullptr);
  CHECK((reported == ENOMEM && errno == ENOMEM));
}

TEST_CASE("an output text ends at its NUL or its length, is blank-padded or cut, and a cut is reported") {
  struct Row {
    const char *source;
    size_t source_length;
    size_t buffer_length;
    std::string expected;
  };
  const Row rows[] = {
      {"hello", 5, 6, "5|hello |0"}, {"hello", 5, 5, "5|hello|0"}, {"hello", 5, 4, "4|hell|22"},
      {"hello", 5, 0, "0||22"},      {"he\0lo", 5, 4, "2|he  |0"}, {"he\0lo", 5, 2, "2|he|0"},
      {"hello", 2, 4, "2|he  |0"},   {"hello", 2, 2, "2|he|22"},   {"hello", 0, 3, "0|   |0"},
      {"hello", 0, 0, "0||0"},       {nullptr, 5, 3, "0|   |0"},   {"", 0, 3, "0|   |0"},
  };
  const Reports reports;
  for (const Row &row : rows) CHECK(copy_out(row.source, row.source_length, row.buffer_length) == row.expected);
  // No variable has such a length.
  char buffer[] = "##";
  CHECK((portlib_cstr_to_fstr(buffer, "hello", SIZE_MAX, 5) == 0 && portlib_trimmed_length("ab", SIZE_MAX) == 0));
  portlib_place_text(buffer, SIZE_MAX, "hello", 5);
  CHECK(std::string(buffer) == "##");
  CHECK(portlib_cstr_to_fstr(nullptr, "hello", 8, 5) == 0);
  CHECK((reported == EINVAL && errno == EINVAL));
}
