// SPDX-License-Identifier: MIT
// The documentation's programs and their output are those of the examples, which the tests build and run.
// A block that stands in a page as
//   <!-- examples/hello.f90 -->
//   ```fortran
//   ...
// must be that file, to the letter.
#include <doctest/doctest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "test_dir.h"

namespace fs = std::filesystem;

namespace {

const fs::path source_dir = QWPORT_SOURCE_DIR;

std::string contents(const fs::path &path) {
  REQUIRE_MESSAGE(fs::exists(path), path.string());
  return file_contents(path);
}

std::vector<fs::path> pages() {
  std::vector<fs::path> paths = {source_dir / "README.md"};
  for (const auto &entry : fs::directory_iterator(source_dir / "docs")) paths.push_back(entry.path());
  return paths;
}

// Compares each marked block of a page with its file; gives their number.
int check_blocks(const fs::path &page) {
  int count = 0;
  std::istringstream lines(contents(page));
  std::string line;
  while (std::getline(lines, line)) {
    if (!line.starts_with("<!-- examples/")) continue;
    const std::string name = line.substr(5, line.find(" -->") - 5);
    std::getline(lines, line);
    REQUIRE(line.starts_with("```"));
    std::string block;
    while (std::getline(lines, line) && line != "```") block += line + '\n';
    CHECK_MESSAGE(block == contents(source_dir / name), page.filename().string(), ": ", name);
    ++count;
  }
  return count;
}

// The places of a page that a link can name: its headings and the ids in it.
std::set<std::string> anchors(const fs::path &page) {
  const std::string text = contents(page);
  static const std::regex place("<a id=\"([^\"]+)\">|^#+ (.*)$", std::regex::ECMAScript | std::regex::multiline);
  std::set<std::string> names;
  for (auto match = std::sregex_iterator(text.begin(), text.end(), place); match != std::sregex_iterator(); ++match) {
    std::string heading;
    for (const char c : (*match)[2].str()) {
      if (std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-')
        heading += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      if (c == ' ') heading += '-';
    }
    names.insert((*match)[1].matched ? (*match)[1].str() : heading);
  }
  return names;
}

// The links of a page into these pages, as FILE#ANCHOR, that lead nowhere.
std::string broken_links(const fs::path &page) {
  const std::string text = contents(page);
  static const std::regex link(R"(\]\(([^)#:]*)(?:#([^)]+))?\))");
  static std::map<fs::path, std::set<std::string>> known;
  std::string broken;
  for (auto match = std::sregex_iterator(text.begin(), text.end(), link); match != std::sregex_iterator(); ++match) {
    const std::string file = (*match)[1];
    const fs::path target = file.empty() ? page : page.parent_path() / file;
    bool is_there = fs::exists(target);
    if (is_there && (*match)[2].matched) {
      if (!known.contains(target)) known[target] = anchors(target);
      is_there = known[target].contains((*match)[2]);
    }
    if (!is_there) broken += (*match)[0].str() + ' ';
  }
  return broken;
}

}  // namespace

TEST_CASE("links between the pages lead somewhere") {
  for (const fs::path &page : pages()) CHECK_MESSAGE(broken_links(page) == "", page.filename().string());
}

TEST_CASE("marked blocks of the documentation are the examples' text and output") {
  int count = 0;
  for (const fs::path &page : pages()) count += check_blocks(page);
  CHECK(count >= 4);
}
