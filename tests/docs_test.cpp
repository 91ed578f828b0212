// SPDX-License-Identifier: MIT
// The documentation's links lead somewhere, and its programs and their output are those of the examples, which the
// tests build and run. A block that stands in a page as
//   <!-- examples/hello.f90 -->
//   ```fortran
//   ...
// must be that file, to the letter.
#include "source_text.h"

namespace {

std::vector<fs::path> pages() {
  std::vector<fs::path> paths = {"README.md"};
  for (const auto &entry : fs::directory_iterator(source_dir / "docs"))
    paths.push_back("docs" / entry.path().filename());
  return paths;
}

// The places of a page that a link can name: the ids in it and its headings.
Names anchors(const fs::path &page) {
  Names names;
  each_match(source(page), "<a id=\"([^\"]+)\">|^#+ (.*)$", [&](const std::smatch &match) {
    std::string heading;
    for (const char c : match[2].str()) {
      if (std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-')
        heading += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      if (c == ' ') heading += '-';
    }
    names.insert(match[1].matched ? match[1].str() : heading);
  });
  return names;
}

}  // namespace

TEST_CASE("links between the pages lead somewhere") {
  std::map<fs::path, Names> known;
  for (const fs::path &page : pages()) known[page] = anchors(page);
  for (const fs::path &page : pages()) {
    each_match(source(page), R"(\]\(([^)#:]*)(?:#([^)]+))?\))", [&](const std::smatch &link) {
      const std::string file = link[1];
      const fs::path target = file.empty() ? page : (page.parent_path() / file).lexically_normal();
      const bool is_there = link[2].matched ? known[target].contains(link[2]) : fs::exists(source_dir / target);
      CHECK_MESSAGE(is_there, page.string(), ": ", link[0].str());
    });
  }
}

TEST_CASE("marked blocks of the documentation are the examples' text and output") {
  int count = 0;
  for (const fs::path &page : pages()) {
    const std::string text = source(page);
    each_match(text, R"(^<!-- (examples/\S+) -->\n```\w*\n)", [&](const std::smatch &mark) {
      const auto begin = static_cast<size_t>(mark.position() + mark.length());
      CHECK_MESSAGE(text.substr(begin, text.find("\n```", begin) + 1 - begin) == source(mark[1].str()), mark[0].str());
      ++count;
    });
  }
  CHECK(count >= 4);
}
