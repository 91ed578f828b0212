// SPDX-License-Identifier: MIT
// The handle tables of a library that was just loaded, when they grow, and after it was unloaded.
#include <doctest/doctest.h>

#include <cstdint>
#include <cstdlib>
#include <set>

#include <windows.h>

#include "import_override.h"

namespace {

std::set<void *> blocks;
bool has_memory = true;

// A block of a table is larger than any record.
void *count_blocks(size_t count, size_t size) {
  if (count * size < 2048) return std::calloc(count, size);
  return has_memory ? *blocks.insert(std::calloc(count, size)).first : nullptr;
}

void release(void *memory) {
  blocks.erase(memory);
  std::free(memory);
}

// Calls a routine of the library and gives its ierror, the argument before those that are left.
int32_t call(HMODULE library, const char *name, auto... arguments) {
  int32_t error = 0;
  const auto routine = reinterpret_cast<void (*)(decltype(arguments)..., int32_t *, size_t)>(
      reinterpret_cast<void *>(GetProcAddress(library, name)));
  return routine(arguments..., &error, 3), error;
}

int32_t handle_at(int32_t index) { return index / 255 * 256 + index % 255 + 1; }

}  // namespace

TEST_CASE("the lowest free handle comes next, and all start over when the library is loaded again") {
  constexpr int32_t count = 70 * 255, step = 611;
  for (int round = 0; round < 2; ++round) {
    HMODULE library = LoadLibraryA("libqwport.dll");
    REQUIRE(library != nullptr);
    // Gone with the module, so they are never undone.
    new ImportOverride(library, "calloc", count_blocks);
    new ImportOverride(library, "free", release);
    int32_t handle = 0, faults = 0;
    const auto creates = [&](int32_t index) {
      return call(library, "PXFSTRUCTCREATE", "tms", &handle) == 0 && handle == handle_at(index);
    };
    for (int32_t index = 0; index < count; ++index) faults += !creates(index);
    has_memory = false;
    CHECK(call(library, "PXFSTRUCTCREATE", "tms", &handle) == 127);
    has_memory = true;
    for (int32_t index = 5; index < count; index += step) {
      handle = handle_at(index);
      faults += call(library, "PXFSTRUCTFREE", &handle);
    }
    for (int32_t index = 5; index < count; index += step) faults += !creates(index);
    CHECK((creates(count) && faults == 0));

    for (uintptr_t sub = 0; sub <= 240; ++sub) {
      faults += call(library, "PXFGETSUBHANDLE", 1000 + sub, &handle);
      faults += handle != static_cast<int32_t>(sub == 240 ? 257 : 16 + sub);
    }
    CHECK((faults == 0 && call(library, "PXFGETSUBHANDLE", uintptr_t{1000}, &handle) == 0 && handle == 16));
    CHECK(blocks.size() == 70 + 1);
    REQUIRE(FreeLibrary(library));
    REQUIRE(GetModuleHandleA("libqwport.dll") == nullptr);
    CHECK(blocks.empty());
  }
}
