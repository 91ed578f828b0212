// SPDX-License-Identifier: MIT
// The handle tables of a library that was just loaded, when they grow, and after it was unloaded.
#include <doctest/doctest.h>

#include <cstdint>
#include <cstdlib>
#include <set>

#include <windows.h>

#include "import_override.h"

namespace {

constexpr size_t block_size = 2048;  // and more, unlike any record
std::set<void *> live_blocks;
bool has_memory = true;

void *count_blocks(size_t count, size_t size) {
  const bool is_block = count * size >= block_size;
  if (is_block && !has_memory) return nullptr;
  void *memory = std::calloc(count, size);
  if (is_block) live_blocks.insert(memory);
  return memory;
}

void release(void *memory) {
  live_blocks.erase(memory);
  std::free(memory);
}

struct Library {
  HMODULE module = LoadLibraryA("libqwport.dll");

  template <class... Arguments> void call(const char *name, Arguments... arguments) const {
    reinterpret_cast<void (*)(Arguments...)>(reinterpret_cast<void *>(GetProcAddress(module, name)))(arguments...);
  }
  // The handle, or ierror as a negative number.
  [[nodiscard]] int32_t create() const {
    int32_t handle = 0, error = 0;
    return call("PXFSTRUCTCREATE", "tms", &handle, &error, size_t{3}), error == 0 ? handle : -error;
  }
  [[nodiscard]] int32_t procedure(uintptr_t sub) const {
    int32_t handle = 0, error = 0;
    return call("PXFGETSUBHANDLE", sub, &handle, &error), error == 0 ? handle : -error;
  }
  [[nodiscard]] int32_t free(int32_t handle) const {
    int32_t error = 0;
    return call("PXFSTRUCTFREE", &handle, &error), error;
  }
};

int32_t handle_at(int32_t index) { return index / 255 * 256 + index % 255 + 1; }

}  // namespace

TEST_CASE("handles grow by blocks, are used again, and start over when the library is loaded again") {
  for (int round = 0; round < 2; ++round) {
    const Library library;
    REQUIRE(library.module != nullptr);
    // Gone with the module, so they are never undone.
    new ImportOverride(library.module, "calloc", count_blocks);
    new ImportOverride(library.module, "free", release);
    for (int32_t index = 0; index < 255; ++index) CHECK(library.create() == handle_at(index));
    has_memory = false;
    CHECK(library.create() == -127);
    has_memory = true;
    for (int32_t index = 255; index < 600; ++index) CHECK(library.create() == handle_at(index));
    for (const int32_t handle : {300, 255, 7}) CHECK(library.free(handle) == 0);
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

TEST_CASE("of many handles the lowest free one comes next") {
  const Library library;
  constexpr int32_t count = 70 * 255;
  int32_t faults_here = 0;
  for (int32_t index = 0; index < count; ++index) faults_here += library.create() != handle_at(index);
  for (int32_t index = 5; index < count; index += 611) faults_here += library.free(handle_at(index)) != 0;
  for (int32_t index = 5; index < count; index += 611) faults_here += library.create() != handle_at(index);
  CHECK((faults_here == 0 && library.create() == handle_at(count)));
  FreeLibrary(library.module);
}
