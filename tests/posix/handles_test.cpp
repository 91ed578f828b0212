// SPDX-License-Identifier: MIT
// The handle tables of a library that was just loaded, when they grow, and after it was unloaded.
#include <doctest/doctest.h>

#include <cstdint>
#include <cstdlib>
#include <set>

#include <windows.h>

#include "import_override.h"

namespace {

constexpr size_t block_size = 2048;
std::set<void *> live_blocks;
bool has_memory = true;

void *count_blocks(size_t count, size_t size) {
  if (count * size == block_size && !has_memory) return nullptr;
  void *memory = std::calloc(count, size);
  if (count * size == block_size) live_blocks.insert(memory);
  return memory;
}

void release(void *memory) {
  live_blocks.erase(memory);
  std::free(memory);
}

struct Library {
  HMODULE module = LoadLibraryA("libqwport.dll");
  // Gone with the module, so they are never undone.
  ImportOverride *allocation = new ImportOverride(module, "calloc", count_blocks);
  ImportOverride *freeing = new ImportOverride(module, "free", release);

  template <class... Arguments> void call(const char *name, Arguments... arguments) const {
    reinterpret_cast<void (*)(Arguments...)>(reinterpret_cast<void *>(GetProcAddress(module, name)))(arguments...);
  }
  // The handle, or ierror as a negative number.
  int32_t create() const { return call("PXFSTRUCTCREATE", "tms", &handle, &error, size_t{3}), answer(); }
  int32_t procedure(uintptr_t sub) const { return call("PXFGETSUBHANDLE", sub, &handle, &error), answer(); }
  int32_t answer() const { return error == 0 ? handle : -error; }
  mutable int32_t handle = 0, error = 0;
};

}  // namespace

TEST_CASE("handles grow by blocks, are used again, and start over when the library is loaded again") {
  for (int round = 0; round < 2; ++round) {
    const Library library;
    REQUIRE(library.module != nullptr);
    for (int32_t count = 0; count < 255; ++count) CHECK(library.create() == count + 1);
    has_memory = false;
    CHECK(library.create() == -127);
    has_memory = true;
    for (int32_t count = 255; count < 600; ++count) CHECK(library.create() == count / 255 * 256 + count % 255 + 1);
    for (int32_t handle : {300, 255, 7}) library.call("PXFSTRUCTFREE", &handle, &library.error);
    for (const int32_t handle : {7, 255, 300}) CHECK(library.create() == handle);

    for (int32_t count = 0; count < 240; ++count)
      CHECK(library.procedure(static_cast<uintptr_t>(1000 + count)) == count + 16);
    CHECK((library.procedure(1000 + 240) == 257 && library.procedure(1000) == 16));
    CHECK(live_blocks.size() == 3);
    REQUIRE(FreeLibrary(library.module));
    REQUIRE(GetModuleHandleA("libqwport.dll") == nullptr);
    CHECK(live_blocks.empty());
  }
}
