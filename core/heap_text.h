// SPDX-License-Identifier: MIT
// A C string on the C heap, freed at the end of its block; null when memory could not be had.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

struct HeapTextDeleter {
  void operator()(char *text) const { std::free(text); }
};
using HeapText = std::unique_ptr<char[], HeapTextDeleter>;

inline HeapText allocate_text(size_t size) { return HeapText(static_cast<char *>(std::malloc(size))); }
