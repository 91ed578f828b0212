// SPDX-License-Identifier: MIT
// What the built DLLs are from outside: the DLLs that they need themselves, what they tell about themselves, and that
// they may stand anywhere in 64 bits of addresses and have no data that can be executed.
#include <doctest/doctest.h>

#include <algorithm>
#include <cctype>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <windows.h>

#include "image.h"

namespace {

HMODULE load(const char *dll) {
  const HMODULE module = LoadLibraryA(dll);
  REQUIRE_MESSAGE(module != nullptr, dll);
  return module;
}

// The names of the DLLs in a DLL's import table, in lower case.
std::set<std::string> needed_dlls(const char *dll) {
  const HMODULE module = load(dll);
  std::set<std::string> names;
  const auto *row = table_of<IMAGE_IMPORT_DESCRIPTOR>(module, IMAGE_DIRECTORY_ENTRY_IMPORT);
  for (; row->Name != 0; ++row) {
    std::string name = at_offset<char>(module, row->Name);
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

TEST_CASE("both DLLs have the linker's protections") {
  constexpr unsigned wanted = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA |
                              IMAGE_DLLCHARACTERISTICS_NX_COMPAT;
  for (const char *dll : {"libqwport.dll", "libqwcorert.dll"}) {
    const IMAGE_NT_HEADERS64 &headers = headers_of(load(dll));
    CHECK((headers.OptionalHeader.DllCharacteristics & wanted) == wanted);
    CHECK((headers.FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED) == 0);
  }
}
