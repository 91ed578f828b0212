// SPDX-License-Identifier: MIT
// What a Fortran program cannot show: faults, memory that must not be touched, and texts of any length.
#include <cstdint>
#include <cstdlib>

#include "library_test.h"

CHILD_PROGRAM(divides_by_zero) { return call(JMOD, 7, 0) == 0 ? 98 : 99; }

TEST_CASE("a remainder by 0 is the processor's divide fault") {
  CHECK(run_child("divides_by_zero").output.find("c0000094") != std::string::npos);
}

TEST_CASE("a bit out of range is written in no constant") {
  static const int64_t constant = 5;  // where writing is a fault
  for (auto *routine : {BIS, BIC})
    call(routine, 32, const_cast<int32_t *>(reinterpret_cast<const int32_t *>(&constant)));
  for (auto *routine : {BISI8, BICI8}) call(routine, -1, const_cast<int64_t *>(&constant));
  CHECK(constant == 5);
}

TEST_CASE("INTC and SHORT leave 0 above their 16 bits, and any number but 0 is true") {
  CHECK((call(COMPLLOG, -1) == 0 && call(INTC, 0x12348001) == 0x8001 && call(qwport::SHORT, -1) == 65535));
}

TEST_CASE("LNBLNK is the last position that is no blank, in texts of every length") {
  CHECK(LNBLNK("a", SIZE_MAX) == 0);
  CHECK(call(LNBLNK, std::string_view("a\0\t ", 4)) == 3);
  for (size_t length = 0; length < 200; ++length) {
    std::string text(length, ' ');
    REQUIRE(call(LNBLNK, text) == 0);
    for (size_t last = 0; last < length; ++last) {
      text[last] = 'x';
      REQUIRE(call(LNBLNK, text) == static_cast<int32_t>(last) + 1);
    }
  }
}

TEST_CASE("RINDEX is the last occurrence") {
  for (const size_t length : {size_t{0x7FFFFFFF}, size_t{1} << 32, SIZE_MAX}) CHECK(RINDEX("a", "a", length, 1) == 0);
  // Against a plain search over texts of few letters.
  std::srand(1);
  for (int i = 0; i < 20'000; ++i) {
    std::string text(static_cast<size_t>(std::rand() % 80), ' '), pattern(static_cast<size_t>(std::rand() % 5), ' ');
    for (char &c : text) c = "a\0"[std::rand() % 2];
    for (char &c : pattern) c = "a\0"[std::rand() % 2];
    REQUIRE(call(RINDEX, text, pattern) == static_cast<int32_t>(text.rfind(pattern) + 1));
  }
}
