// SPDX-License-Identifier: MIT
// What the built DLLs are from outside: the DLLs that they need themselves, and what they tell about themselves.
#include <doctest/doctest.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <windows.h>

namespace {

HMODULE load(const char *dll) {
  const HMODULE module = LoadLibraryA(dll);
  REQUIRE_MESSAGE(module != nullptr, dll);
  return module;
}

// The names of the DLLs in a DLL's import table, in lower case.
std::set<std::string> needed_dlls(const char *dll) {
  const auto *base = reinterpret_cast<const char *>(load(dll));
  const auto *dos = reinterpret_cast<const IMAGE_DOS_HEADER *>(base);
  const auto *headers = reinterpret_cast<const IMAGE_NT_HEADERS64 *>(base + dos->e_lfanew);
  const auto &directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  std::set<std::string> names;
  for (const auto *row = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR *>(base + directory.VirtualAddress);
       row->Name != 0; ++row) {
    std::string name = base + row->Name;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    names.insert(name);
  }
  return names;
}

// A text of a DLL's version resource.
std::string version_text(const char *dll, const char *key) {
  char path[MAX_PATH];
  REQUIRE(GetModuleFileNameA(load(dll), path, sizeof path) != 0);
  std::vector<char> record(GetFileVersionInfoSizeA(path, nullptr));
  if (record.empty() || !GetFileVersionInfoA(path, 0, static_cast<DWORD>(record.size()), record.data())) return "";
  void *text = nullptr;
  UINT length = 0;
  const std::string block = std::string("\\StringFileInfo\\040904B0\\") + key;
  return VerQueryValueA(record.data(), block.c_str(), &text, &length) ? static_cast<const char *>(text) : "";
}

}  // namespace

TEST_CASE("the DLLs need system DLLs only, and the core runtime libgfortran") {
  struct {
    const char *dll;
    const char *allowed;
  } const rows[] = {
      {"libqwport.dll", "kernel32[.]dll"},
      {"libqwcorert.dll", "(kernel32|libgfortran-5)[.]dll"},
  };
  for (const auto &row : rows) {
    bool has_c_runtime = false;
    for (const std::string &name : needed_dlls(row.dll)) {
      const bool is_c_runtime = std::regex_match(name, std::regex(QWPORT_C_RUNTIME_DLLS));
      has_c_runtime |= is_c_runtime;
      const bool is_allowed = is_c_runtime || std::regex_match(name, std::regex(row.allowed));
      CHECK_MESSAGE(is_allowed, row.dll, " needs ", name);
    }
    CHECK_MESSAGE(has_c_runtime, row.dll);
  }
}

TEST_CASE("the DLLs tell their name, version and licence") {
  for (const char *dll : {"libqwport.dll", "libqwcorert.dll"}) {
    CHECK(version_text(dll, "OriginalFilename") == dll);
    CHECK(version_text(dll, "ProductName") == "qwport");
    CHECK(version_text(dll, "ProductVersion") == QWPORT_VERSION);
    CHECK(version_text(dll, "LegalCopyright").starts_with("MIT License. Copyright (c)"));
  }
}
