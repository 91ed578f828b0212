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

struct CopyOut {
  size_t placed;
  std::string buffer;
  int32_t report;
};

CopyOut copy_out(const char *source, size_t source_length, size_t buffer_length) {
  reported = 0;
  GuardedText buffer(buffer_length);
  const size_t placed = portlib_cstr_to_fstr(buffer.data(), source, buffer.size(), source_length);
  return {placed, buffer.str(), reported};
}

void check_copy_out(const CopyOut &result, size_t placed, const std::string &buffer, int32_t report) {
  CHECK(result.placed == placed);
  CHECK(result.buffer == buffer);
  CHECK(result.report == report);
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
  CHECK(c_string("ab  ") == "ab");
  CHECK(c_string("  a b ") == "  a b");
  CHECK(c_string("tab\t ") == "tab\t");
  CHECK(c_string("full") == "full");
  CHECK(c_string("    ").empty());
  CHECK(c_string("").empty());
  CHECK(reported == 0);
}

TEST_CASE("the copy of an input text has 23 bytes to spare") {
  const Reports reports;
  const ImportOverride allocation(GetModuleHandleA(nullptr), "malloc", note_size);
  c_string("ab  ");
  CHECK(noted_size == 25);
}

TEST_CASE("an input text that cannot be copied is reported") {
  const Reports reports;
  CHECK(portlib_fstr_to_cstr(nullptr, 3) == nullptr);
  CHECK(reported == EINVAL);
  CHECK(errno == EINVAL);

  const ImportOverride allocation(GetModuleHandleA(nullptr), "malloc", no_memory);
  CHECK(portlib_fstr_to_cstr("abc", 3) == nullptr);
  CHECK(reported == ENOMEM);
  CHECK(errno == ENOMEM);
}

TEST_CASE("an output text is blank-padded or cut, and a cut is reported") {
  const Reports reports;
  check_copy_out(copy_out("hello", 5, 8), 5, "hello   ", 0);
  check_copy_out(copy_out("hello", 5, 6), 5, "hello ", 0);
  check_copy_out(copy_out("hello", 5, 5), 5, "hello", 0);
  check_copy_out(copy_out("hello", 5, 4), 4, "hell", EINVAL);
  check_copy_out(copy_out("hello", 5, 3), 3, "hel", EINVAL);
  check_copy_out(copy_out("hello", 5, 0), 0, "", EINVAL);
  CHECK(errno == EINVAL);
}

TEST_CASE("an output text ends at its NUL or its length, whichever comes first") {
  const Reports reports;
  check_copy_out(copy_out("he\0lo", 5, 8), 2, "he      ", 0);
  check_copy_out(copy_out("he\0lo", 5, 2), 2, "he", 0);
  check_copy_out(copy_out("hello", 2, 4), 2, "he  ", 0);
  check_copy_out(copy_out("hello", 2, 2), 2, "he", EINVAL);
}

TEST_CASE("no output text is all blanks and no error") {
  const Reports reports;
  check_copy_out(copy_out("hello", 0, 3), 0, "   ", 0);
  check_copy_out(copy_out("hello", 0, 0), 0, "", 0);
  check_copy_out(copy_out(nullptr, 5, 3), 0, "   ", 0);
  check_copy_out(copy_out("", 0, 3), 0, "   ", 0);
}

TEST_CASE("an output text without a buffer is reported") {
  const Reports reports;
  CHECK(portlib_cstr_to_fstr(nullptr, "hello", 8, 5) == 0);
  CHECK(reported == EINVAL);
}
