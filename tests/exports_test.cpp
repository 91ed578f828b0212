// SPDX-License-Identifier: MIT
// One list of exports and one of families: the .def file, the header, the Fortran module, the DLL's export table, the
// tests and the documentation name the same routines, and sort them in the same way.
#include <windows.h>

#include "image.h"
#include "source_text.h"

namespace {

const Names core_names = {"ERRSNS", "FLUSHQQ", "COMMITQQ"};  // exported by the core runtime

std::string upper(std::string text) {
  for (char &c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

// $$MSPORTLIB$RANDOM is no name in most languages: they say MSPORTLIB_RANDOM.
std::string spoken(const std::string &name) {
  return upper(std::regex_replace(name, std::regex(R"(^\$\$(\w+)\$)"), "$1_"));
}

// The first group of every match.
Names matches(const std::string &text, const std::string &pattern) {
  Names names;
  each_match(text, pattern, [&](const std::smatch &match) { names.insert(spoken(match[1])); });
  return names;
}

// The names by family: the pattern's first group is a family, with blanks for underscores, its second one a name in it.
using Families = std::map<std::string, Names>;
Families families_in(const std::string &text, const std::string &pattern) {
  Families families;
  std::string family;
  each_match(text, pattern, [&](const std::smatch &match) {
    if (match[1].matched) family = std::regex_replace(upper(match[1]), std::regex(" "), "_");
    if (match[2].matched && !core_names.contains(match[2])) families[family].insert(spoken(match[2]));
  });
  return families;
}

Families families_in_def() {
  return families_in(source("libqwport.def"), R"(^; (\w[\w ]*)(?=:|$)|^ +"?([A-Z0-9_$]+))");
}

Names names_in(const Families &families) {
  Names all;
  for (const auto &[family, names] : families) all.insert(names.begin(), names.end());
  return all;
}

Names names_in_dll() {
  HMODULE module = LoadLibraryA("libqwport.dll");
  REQUIRE(module != nullptr);
  const auto *exports = table_of<IMAGE_EXPORT_DIRECTORY>(module, IMAGE_DIRECTORY_ENTRY_EXPORT);
  const auto *offsets = at_offset<DWORD>(module, exports->AddressOfNames);
  Names names;
  for (DWORD i = 0; i < exports->NumberOfNames; ++i) names.insert(spoken(at_offset<char>(module, offsets[i])));
  return names;
}

// What is in one set and not in the other.
std::string difference(const Names &left, const Names &right) {
  std::string text;
  for (const std::string &name : left)
    if (!right.contains(name)) text += name + ' ';
  return text;
}

void check_same(const Names &left, const Names &right) {
  CHECK(difference(left, right) == "");
  CHECK(difference(right, left) == "");
}

std::string without_underscores(const std::string &name) {
  return std::regex_replace(upper(name), std::regex("_"), "");
}

// The names of a list of parameters; a text's hidden length is none.
std::string parameter_names(const std::string &list) {
  const std::string flat = std::regex_replace(list, std::regex(R"(\(\*(\w+)\)\([^()]*\))"), " $1");  // procedures
  std::string names;
  each_match(flat, R"((\w+)(?=,|$))", [&](const std::smatch &match) {
    const std::string name = match[1];
    if (!name.ends_with("_len") && name != "void" && name != "result") names += without_underscores(name) + ' ';
  });
  return names;
}

// The second group of every match by the first.
using Pairs = std::map<std::string, std::string>;
Pairs pairs(const std::string &text, const std::string &pattern) {
  Pairs found;
  each_match(text, pattern, [&](const std::smatch &match) { found[without_underscores(match[1])] = match[2]; });
  return found;
}

}  // namespace

TEST_CASE("the DLL, the header, the module and the pages have the listed names, in the listed families") {
  const Families listed = families_in_def();
  const std::string readme = source("README.md");
  const std::pair<std::string, Families> places[] = {
      {"header", families_in(source("include/qwport.h"),
                             R"(^// -+ (\w[^:\n-]*\w)[: ].*-$|^[a-z_][a-z0-9_() ]*[ *]([A-Z][A-Z0-9_]+)\()")},
      {"README", families_in(readme.substr(readme.find("\n## Routine families")),
                             R"(^\| (\w[\w ]*\w)(?=:| \| `)|`([A-Z0-9_$]+)`)")},
      {"module", families_in(source("docs/reference.md"), R"(^## \[(?=.*\]\((\w+)\.md#\w)([A-Z0-9_$]+)\])")}};
  check_same(names_in(listed), names_in_dll());
  for (const auto &[place, families] : places) {
    CAPTURE(place);
    check_same(names_in(listed), names_in(families));
    for (const auto &[family, names] : listed)
      if (families.contains(family)) CHECK(difference(families.at(family), names) == "");
  }
}

TEST_CASE("a family is one word everywhere") {
  const Names families = matches(QWPORT_FAMILIES, R"((\w+))");
  Names listed;
  for (const auto &[family, names] : families_in_def()) listed.insert(family);
  CHECK(listed.erase("IDENTIFICATION_AND_ERROR_STATE") == 1);
  check_same(listed, families);
  for (const char *place : {"src/%", "tests/%", "docs/%.md", "fortran/qwport_%.f90", "examples/%.f90"})
    each_match(QWPORT_FAMILIES, R"(\w+)", [&](const std::smatch &family) {
      const std::string path = std::regex_replace(place, std::regex("%"), family.str());
      CHECK_MESSAGE(fs::exists(source_dir / path), path);
    });
}

TEST_CASE("arguments have the same names in the header and the module") {
  const Pairs in_module = pairs(source("docs/reference.md"), R"((?:function|subroutine) (\w+)\(([^)]*)\))");
  const Pairs in_header =
      pairs(source("include/qwport.h"), R"(^[a-z_][a-z0-9_() ]*[ *]([A-Z][A-Z0-9_]+)\(([^;]*?)\)(?: [^;]*)?;)");
  REQUIRE(in_header.size() > 10);
  for (const auto &[name, parameters] : in_header) {
    // Functions of the module give the list as their result; NEW and CHAR are words of C++.
    if (name == "NLSENUMLOCALES" || name == "NLSENUMCODEPAGES") continue;
    REQUIRE_MESSAGE(in_module.contains(name), name);
    const std::string expected =
        std::regex_replace(parameter_names(parameters), std::regex("(NEW|OLD|CHAR)(VALUE|PATH|FLAG|ACTER)"), "$1");
    CHECK_MESSAGE(parameter_names(in_module.at(name)) == expected, name);
  }
}

TEST_CASE("constants have the same values in the header and the module") {
  const Pairs in_module = pairs(source("fortran"), R"(parameter :: (\w+) = (?:int\()?([^ )\n]+))");
  int compared = 0;
  for (const auto &[name, value] : pairs(source("include/qwport.h"), R"(^ +QWPORT_(\w+) = (-?\w+))")) {
    if (!in_module.contains(name)) continue;
    const std::string digits = std::regex_replace(in_module.at(name), std::regex("z'(\\w+)'"), "0x$1");
    CHECK_MESSAGE(std::stoll(digits, nullptr, 0) == std::stoll(value, nullptr, 0), name);
    ++compared;
  }
  CHECK(compared > 20);
}

// GNU Fortran's .not. is right for 0 and 1 alone.
TEST_CASE("a logical routine answers 1 or 0, or has code of its own for programs without the module") {
  const std::string header = source("include/qwport.h");
  const Names own = matches(source("fortran/external_procedures.f90"), R"(^logical\(4\) function (\w+)\()");
  const Names names = matches(source("include/qwport.inc"), R"(^ +LOGICAL\(4\), EXTERNAL :: (\w+)$)");
  REQUIRE(names.size() > 10);
  for (const std::string &name : names) {
    if (own.contains(name) || core_names.contains(name)) continue;
    const size_t declaration = header.find("int32_t " + name + "(");
    REQUIRE_MESSAGE(declaration != std::string::npos, name);
    const size_t section = header.rfind("// ----", declaration);
    const std::string comments = header.substr(section, declaration - section);
    CHECK_MESSAGE(std::regex_search(comments, std::regex("LOGICAL, 1 or 0|LOGICAL results are 1 and 0")), name);
  }
}
