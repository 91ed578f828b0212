// SPDX-License-Identifier: MIT
// One list of exports and one of families: the .def file, the header, the Fortran module, the DLL's export table, the
// tests and the documentation name the same routines, and sort them in the same way.
#include <doctest/doctest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include <windows.h>

#include "image.h"

namespace fs = std::filesystem;
using Names = std::set<std::string>;

namespace {

const fs::path source_dir = QWPORT_SOURCE_DIR;

std::string contents(const fs::path &path) {
  std::ifstream file(path);
  REQUIRE_MESSAGE(file.good(), path.string());
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

// $$MSPORTLIB$RANDOM is no name in most languages: they say MSPORTLIB_RANDOM.
std::string spoken(std::string name) {
  name.erase(0, name.find_first_not_of('$'));
  std::replace(name.begin(), name.end(), '$', '_');
  return name;
}

// Calls a procedure with every match.
void each_match(const std::string &text, const std::string &pattern, const auto &use) {
  const std::regex regex(pattern, std::regex::ECMAScript | std::regex::multiline);
  for (auto match = std::sregex_iterator(text.begin(), text.end(), regex); match != std::sregex_iterator(); ++match)
    use(*match);
}

// The first group of every match, in upper case.
Names matches(const std::string &text, const std::string &pattern) {
  Names names;
  each_match(text, pattern, [&](const std::smatch &match) { names.insert(spoken(upper(match[1]))); });
  return names;
}

Names names_in_def() { return matches(contents(source_dir / "libqwport.def"), R"(^ +"?([A-Z0-9_$]+))"); }

Names names_in_header() {
  return matches(contents(source_dir / "include/qwport.h"), R"(^[a-z_][a-z0-9_() ]*[ *]([A-Z][A-Z0-9_]+)\()");
}

// The interfaces of a family's modules (of all, if it is blank), by their name in the DLL where they have one: such an
// interface may stand in the procedure that calls it.
Names names_in_module(const std::string &family = "") {
  Names names;
  for (const auto &entry : fs::directory_iterator(source_dir / "fortran")) {
    const std::string file = entry.path().filename().string();
    if (!file.starts_with("qwport_" + family) || file == "qwport_core.f90") continue;
    const std::string text = contents(entry.path());
    std::string interfaces = text.substr(0, text.find("\ncontains"));
    // An abstract interface is no routine.
    const size_t begin = interfaces.find("abstract interface");
    if (begin != std::string::npos) interfaces.erase(begin, interfaces.find("end interface", begin) - begin);
    names.merge(matches(text, R"(^ +(?:pure )?(?:subroutine|function) +[^\n]*bind\(C, name='(\w+)'\))"));
    names.merge(matches(
        interfaces, R"(^ +(?:pure |elemental )?(?:subroutine|function) +(\w+?)(?:_(?:int|real)\d)*\((?![^\n]*bind))"));
    names.merge(matches(interfaces, R"(^ +procedure\(\w+\) :: (\w+)$)"));
  }
  return names;
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

// Every word of the tests' sources, in upper case, but for this file.
Names words_in_tests() {
  Names words;
  for (const auto &entry : fs::recursive_directory_iterator(source_dir / "tests")) {
    const fs::path extension = entry.path().extension();
    const bool is_source = extension == ".cpp" || extension == ".f90" || extension == ".f";
    if (is_source && entry.path().filename() != "exports_test.cpp")
      words.merge(matches(contents(entry.path()), R"(([A-Za-z_$][A-Za-z0-9_$]+))"));
  }
  return words;
}

// The routines in the table of families; the core runtime's own are exported by that.
Names names_in_readme() {
  const std::string text = contents(source_dir / "README.md");
  Names names = matches(text.substr(text.find("\n## Routine families")), R"(`([A-Z0-9_$]+)`)");
  for (const char *name : {"ERRSNS", "FLUSHQQ", "COMMITQQ"}) names.erase(name);
  return names;
}

// Every word of the pages but for the README, also of the code in them.
Names words_in_docs() {
  Names words;
  for (const auto &entry : fs::directory_iterator(source_dir / "docs"))
    words.merge(matches(contents(entry.path()), R"(([A-Z_$][A-Z0-9_$]+))"));
  return words;
}

// The names of the .def file by the first word of their section's heading, in upper case.
std::map<std::string, Names> families_in_def() {
  std::map<std::string, Names> families;
  std::istringstream lines(contents(source_dir / "libqwport.def"));
  std::string line;
  std::string family;
  bool in_exports = false;
  while (std::getline(lines, line)) {
    if (line == "EXPORTS") in_exports = true;
    if (!in_exports) continue;
    if (line.starts_with("; ")) family = upper(line.substr(2, line.find(':') - 2));
    std::replace(family.begin(), family.end(), ' ', '_');
    if (line.starts_with("    ")) families[family].merge(matches(line, R"(^ +"?([A-Z0-9_$]+))"));
  }
  return families;
}

// The list of families in the root CMakeLists.txt.
Names families() {
  std::istringstream words(QWPORT_FAMILIES);
  Names names;
  std::string word;
  while (words >> word) names.insert(upper(word));
  return names;
}

// The families among a file's headings, which the pattern's group takes up to a colon.
Names headings(const fs::path &path, const std::string &pattern) {
  Names names;
  for (std::string name : matches(contents(path), pattern)) {
    std::replace(name.begin(), name.end(), ' ', '_');
    names.insert(name);
  }
  for (const char *other : {"IDENTIFICATION_AND_ERROR_STATE", "NAMES_THAT_OTHER_HEADERS_USE", "CORE_RUNTIME"})
    names.erase(other);
  return names;
}

// The exports whose result is LOGICAL(4) to a program without the module, and that have no code of their own for it.
Names plain_logical_exports() {
  Names names = matches(contents(source_dir / "include/qwport.inc"), R"(^ +LOGICAL\(4\), EXTERNAL :: (\w+)$)");
  const std::string own = contents(source_dir / "fortran/external_procedures.f90");
  for (const std::string &name : matches(own, R"(^logical\(4\) function (\w+)\()")) names.erase(name);
  for (const char *name : {"COMMITQQ", "FLUSHQQ"}) names.erase(name);
  return names;
}

std::string without_underscores(std::string name) {
  name.erase(std::remove(name.begin(), name.end(), '_'), name.end());
  return upper(name);
}

// The names of a list of parameters, in upper case; a text's hidden length is none.
std::string parameter_names(const std::string &list) {
  std::istringstream parameters(std::regex_replace(list, std::regex(R"(\(\*(\w+)\)\([^()]*\))"), " $1"));
  std::string names;
  std::string parameter;
  while (std::getline(parameters, parameter, ',')) {
    const std::string name = parameter.substr(parameter.find_last_of(" *&\n") + 1);
    // The text that a function gives is its first parameter in C.
    if (!name.empty() && !name.ends_with("_len") && name != "void" && name != "result")
      names += without_underscores(name) + ' ';
  }
  return names;
}

// The second group of every match by the first.
std::map<std::string, std::string> pairs(const std::string &text, const std::string &pattern) {
  std::map<std::string, std::string> found;
  each_match(text, pattern, [&](const std::smatch &match) { found[without_underscores(match[1])] = match[2]; });
  return found;
}

// What is in one set and not in the other, for the message.
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

}  // namespace

TEST_CASE("the DLL, the header, the module and the README's table have the listed names and no other") {
  const std::pair<const char *, Names> lists[] = {{"DLL", names_in_dll()},
                                                  {"header", names_in_header()},
                                                  {"module", names_in_module()},
                                                  {"README", names_in_readme()}};
  for (const auto &[place, names] : lists) {
    CAPTURE(place);
    check_same(names_in_def(), names);
  }
}

TEST_CASE("a family is one word everywhere") {
  REQUIRE(families().size() > 5);
  const Names modules = matches(contents(source_dir / "fortran/qwport.f90"), R"(^  use qwport_(?!core|errors)(\w+)$)");
  const Names found[] = {
      headings(source_dir / "include/qwport.h", R"(^// -+ (\w[^:\n-]*\w)(?:: [^\n]*| )-+$)"),
      headings(source_dir / "README.md", R"(^\| (\w[\w ]*)(?:: [\w ,]*)? \| `)"),
      modules,
  };
  for (const Names &names : found) check_same(names, families());
  std::map<std::string, Names> exports = families_in_def();
  CHECK(exports.erase("IDENTIFICATION_AND_ERROR_STATE") == 1);
  CHECK(exports.size() == families().size());
  for (std::string family : families()) {
    const Names routines = exports[family];
    std::transform(family.begin(), family.end(), family.begin(), [](unsigned char c) { return std::tolower(c); });
    CAPTURE(family);
    for (const char *place : {"src/%", "tests/%", "docs/%.md", "fortran/qwport_%.f90", "examples/%.f90"})
      CHECK_MESSAGE(fs::exists(source_dir / std::regex_replace(place, std::regex("%"), family)), place);
    check_same(routines, names_in_module(family));
  }
}

TEST_CASE("arguments have the same names in the header and the module") {
  const auto in_module =
      pairs(contents(source_dir / "docs/reference.md"), R"((?:function|subroutine) (\w+)\(([^)]*)\))");
  const auto in_header = pairs(contents(source_dir / "include/qwport.h"),
                               R"(^[a-z_][a-z0-9_() ]*[ *]([A-Z][A-Z0-9_]+)\(([^;]*?)\)(?: [^;]*)?;)");
  REQUIRE(in_header.size() > 10);
  for (const auto &[name, parameters] : in_header) {
    // Functions of the module give the list as their result; NEW and CHAR are words of C++.
    if (name == "NLSENUMLOCALES" || name == "NLSENUMCODEPAGES") continue;
    const std::string expected =
        std::regex_replace(parameter_names(parameters), std::regex("(NEW|OLD|CHAR)(VALUE|PATH|FLAG|ACTER)"), "$1");
    REQUIRE_MESSAGE(in_module.contains(name), name);
    std::string actual = parameter_names(" " + std::regex_replace(in_module.at(name), std::regex(","), ", "));
    CHECK_MESSAGE(actual == expected, name);
  }
}

TEST_CASE("constants have the same values in the header and the module") {
  const auto in_header = pairs(contents(source_dir / "include/qwport.h"), R"(^ +QWPORT_(\w+) = (-?\w+))");
  std::map<std::string, std::string> in_module;
  for (const auto &entry : fs::directory_iterator(source_dir / "fortran"))
    in_module.merge(pairs(contents(entry.path()), R"(parameter :: (\w+) = (?:int\()?([^ )\n]+))"));
  int compared = 0;
  for (const auto &[name, value] : in_header) {
    if (!in_module.contains(name)) continue;
    const std::string digits = std::regex_replace(in_module.at(name), std::regex("z'(\\w+)'"), "0x$1");
    CHECK_MESSAGE(std::stoll(digits, nullptr, 0) == std::stoll(value, nullptr, 0), name);
    ++compared;
  }
  CHECK(compared > 20);
}

// GNU Fortran's .not. is right for 0 and 1 alone.
TEST_CASE("a logical routine answers 1 or 0, or has code of its own for programs without the module") {
  const std::string header = contents(source_dir / "include/qwport.h");
  const Names names = plain_logical_exports();
  REQUIRE(names.size() > 10);
  for (const std::string &name : names) {
    const size_t declaration = header.find("int32_t " + name + "(");
    REQUIRE_MESSAGE(declaration != std::string::npos, name);
    const size_t section = header.rfind("// ----", declaration);
    const std::string comments = header.substr(section, declaration - section);
    const bool promised = comments.find("LOGICAL, 1 or 0") != std::string::npos ||
                          comments.find("LOGICAL results are 1 and 0") != std::string::npos;
    CHECK_MESSAGE(promised, name);
  }
}

TEST_CASE("every listed name is called by some test, and a page tells of it") {
  REQUIRE(names_in_def().size() > 10);
  CHECK(difference(names_in_def(), words_in_tests()) == "");
  CHECK(difference(names_in_def(), words_in_docs()) == "");
}
