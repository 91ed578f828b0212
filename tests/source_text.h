// SPDX-License-Identifier: MIT
// The texts of the source tree, for the tests that hold them against each other.
#pragma once

#include <doctest/doctest.h>

#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>

#include "test_dir.h"

namespace fs = std::filesystem;
using Names = std::set<std::string>;

inline const fs::path source_dir = QWPORT_SOURCE_DIR;

// A file's contents, or those of all files in a folder.
inline std::string source(const fs::path &path) {
  const fs::path whole = source_dir / path;
  REQUIRE_MESSAGE(fs::exists(whole), path.string());
  if (!fs::is_directory(whole)) return file_contents(whole);
  std::string text;
  for (const auto &entry : fs::directory_iterator(whole)) text += file_contents(entry.path());
  return text;
}

// Calls a procedure with every match.
inline void each_match(const std::string &text, const std::string &pattern, const auto &use) {
  const std::regex regex(pattern, std::regex::ECMAScript | std::regex::multiline);
  for (auto match = std::sregex_iterator(text.begin(), text.end(), regex); match != std::sregex_iterator(); ++match)
    use(*match);
}
