// SPDX-License-Identifier: MIT
// The documentation's programs and their output are those of the examples, which the tests build and run.
// A block that stands in a page as
//   <!-- examples/hello.f90 -->
//   ```fortran
//   ...
// must be that file, to the letter.
#include <doctest/doctest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const fs::path source_dir = QWPORT_SOURCE_DIR;

std::string contents(const fs::path &path) {
  std::ifstream file(path, std::ios::binary);
  REQUIRE_MESSAGE(file.good(), path.string());
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
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

}  // namespace

TEST_CASE("marked blocks of the documentation are the examples' text and output") {
  int count = 0;
  for (const fs::path &page : pages()) count += check_blocks(page);
  CHECK(count >= 4);
}
