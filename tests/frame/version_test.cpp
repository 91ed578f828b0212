// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include <regex>
#include <string>

#include "guarded_text.h"
#include "qwport.h"

namespace {

std::string version_text(size_t length) {
  GuardedText text(length);
  CHECK(FOR_QWPORT_VERSION(text.data(), text.size()) == 4);
  return text.str();
}

}  // namespace

TEST_CASE("the version text is title, version and build date between tabs, without any core runtime") {
  const std::string text = version_text(100);
  std::smatch parts;
  const std::regex form("([^\t]+)\tVersion ([0-9.]+)\t([A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4}) +");
  REQUIRE(std::regex_match(text, parts, form));
  CHECK(parts[2] == QWPORT_VERSION);
}

TEST_CASE("the version text is cut to a shorter variable and blank-padded to a longer one") {
  std::string text = version_text(300);
  text.erase(text.find_last_not_of(' ') + 1);
  for (const size_t length : {size_t{0}, size_t{1}, text.size() - 1, text.size()}) {
    CHECK(version_text(length) == text.substr(0, length));
  }
  CHECK(version_text(text.size() + 1) == text + ' ');
}
