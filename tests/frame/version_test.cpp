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

TEST_CASE("the version text is title, version and build date between tabs, cut or blank-padded, without any core") {
  const std::string text = version_text(100);
  std::smatch parts;
  const std::regex form("(([^\t]+)\tVersion ([0-9.]+)\t[A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4}) +");
  REQUIRE(std::regex_match(text, parts, form));
  CHECK(parts[3] == QWPORT_VERSION);
  const auto size = static_cast<size_t>(parts[1].length());
  for (const size_t length : {size_t{0}, size_t{1}, size - 1, size, size + 1}) {
    CHECK(version_text(length) == text.substr(0, length));
  }
}
