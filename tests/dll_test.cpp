// SPDX-License-Identifier: MIT
// What the built DLLs are from outside: the DLLs that they need themselves, what they tell about themselves, and that
// they may stand anywhere in 64 bits of addresses and have no data that can be executed.
#include <doctest/doctest.h>

#include <regex>
#include <string>
#include <vector>

#include <windows.h>

#include "image.h"

namespace {

// The name of a DLL, and a pattern for the system DLLs that it may need.
const std::pair<std::string, std::string> dlls[] = {
    {"libqwport.dll", "kernel32[.]dll|" QWPORT_C_RUNTIME_DLLS},
    {"libqwcorert.dll", "(kernel32|libgfortran-5)[.]dll|" QWPORT_C_RUNTIME_DLLS}};

// A text of a DLL's version resource.
std::string version_text(const std::string &dll, const std::string &key) {
  char path[MAX_PATH];
  GetModuleFileNameA(GetModuleHandleA(dll.c_str()), path, sizeof path);
  std::vector<char> record(GetFileVersionInfoSizeA(path, nullptr));
  REQUIRE(GetFileVersionInfoA(path, 0, static_cast<DWORD>(record.size()), record.data()));
  void *text = nullptr;
  UINT length = 0;
  const bool is_there = VerQueryValueA(record.data(), ("\\StringFileInfo\\040904B0\\" + key).c_str(), &text, &length);
  return is_there ? static_cast<const char *>(text) : "";
}

}  // namespace

TEST_CASE("the DLLs need system DLLs only, tell who they are, and have the linker's protections") {
  constexpr unsigned protections = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA |
                                   IMAGE_DLLCHARACTERISTICS_NX_COMPAT;
  for (const auto &[dll, allowed] : dlls) {
    CAPTURE(dll);
    const HMODULE module = LoadLibraryA(dll.c_str());
    REQUIRE(module != nullptr);
    const auto *row = table_of<IMAGE_IMPORT_DESCRIPTOR>(module, IMAGE_DIRECTORY_ENTRY_IMPORT);
    for (; row->Name != 0; ++row) {
      const std::string name = at_offset<char>(module, row->Name);
      CHECK_MESSAGE(std::regex_match(name, std::regex(allowed, std::regex::icase)), name);
    }

    CHECK(version_text(dll, "OriginalFilename") == dll);
    CHECK(version_text(dll, "ProductVersion") == QWPORT_VERSION);

    const IMAGE_NT_HEADERS64 &headers = headers_of(module);
    CHECK((headers.OptionalHeader.DllCharacteristics & protections) == protections);
    CHECK((headers.FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED) == 0);
  }
}
