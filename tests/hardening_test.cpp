// SPDX-License-Identifier: MIT
// The built DLLs may stand anywhere in 64 bits of addresses and have no data that can be executed.
#include <doctest/doctest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <windows.h>

#include "child.h"

TEST_CASE("both DLLs have the linker's protections") {
  constexpr unsigned wanted = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA |
                              IMAGE_DLLCHARACTERISTICS_NX_COMPAT;
  const std::filesystem::path build_dir = std::filesystem::path(own_path()).parent_path() / "../..";
  for (const char *name : {"libqwport.dll", "libqwcorert.dll"}) {
    CAPTURE(name);
    std::ifstream file(build_dir / name, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    REQUIRE(bytes.size() > sizeof(IMAGE_DOS_HEADER));
    const auto *dos = reinterpret_cast<const IMAGE_DOS_HEADER *>(bytes.data());
    const auto *headers = reinterpret_cast<const IMAGE_NT_HEADERS64 *>(bytes.data() + dos->e_lfanew);
    CHECK((headers->OptionalHeader.DllCharacteristics & wanted) == wanted);
    CHECK((headers->FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED) == 0);
  }
}
