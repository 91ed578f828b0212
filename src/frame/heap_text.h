// SPDX-License-Identifier: MIT
// C strings and arrays on the C heap, freed at the end of their block.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

// Frees a string; null is allowed.
inline void portlib_free(char *text) { std::free(text); }

struct HeapDeleter {
  void operator()(void *memory) const { std::free(memory); }
};

// Of elements without constructors.
template <class Element> using HeapArray = std::unique_ptr<Element[], HeapDeleter>;
using HeapText = HeapArray<char>;

// Room for size characters, or null.
inline HeapText portlib_allocate_text(size_t size) { return HeapText(static_cast<char *>(std::malloc(size))); }

// Room for count elements of zeros, or null.
template <class Element> HeapArray<Element> portlib_allocate_array(size_t count) {
  return HeapArray<Element>(static_cast<Element *>(std::calloc(count, sizeof(Element))));
}
