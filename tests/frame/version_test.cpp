// SPDX-License-Identifier: MIT
#include <regex>

#include "library_test.h"

TEST_CASE("the version text is title, version and build date between tabs, cut or blank-padded, without any core") {
  const auto version_text = [](size_t length) { return outcome(FOR_QWPORT_VERSION, Room{length}); };
  const std::string text = version_text(100);
  std::smatch parts;
  const std::regex form("4\\|(([^\t]+)\tVersion ([0-9.]+)\t[A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4}) +");
  REQUIRE(std::regex_match(text, parts, form));
  CHECK(parts[3] == QWPORT_VERSION);
  const auto size = static_cast<size_t>(parts[1].length());
  for (const size_t length : {size_t{0}, size_t{1}, size - 1, size, size + 1}) {
    CHECK(version_text(length) == text.substr(0, length + 2));
  }
}
