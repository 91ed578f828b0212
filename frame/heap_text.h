// SPDX-License-Identifier: MIT
// C strings on the C heap, freed at the end of their block.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

// Frees a string; null is allowed.
inline void portlib_free(char *text) { std::free(text); }

struct HeapTextDeleter {
  void operator()(char *text) const { portlib_free(text); }
};
using HeapText = std::unique_ptr<char[], HeapTextDeleter>;

// Room for size characters, or null.
inline HeapText portlib_allocate_text(size_t size) { return HeapText(static_cast<char *>(std::malloc(size))); }
