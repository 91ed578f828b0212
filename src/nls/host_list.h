// SPDX-License-Identifier: MIT
// Lists of which only the host knows the length, given out in memory of the core runtime's.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core_entries.h"
#include "heap_text.h"
#include "qwport.h"

namespace qwport::nls {

// Filled by the host's call-back, element by element.
template <class Element> struct HostList {
  HeapArray<Element> elements;
  size_t count = 0;
  size_t room = 0;
  bool is_cut = false;  // for want of memory

  // False if there is no memory.
  bool add(const Element &element) {
    if (count == room) {
      const size_t new_room = room == 0 ? 64 : 2 * room;
      auto *moved = static_cast<Element *>(std::realloc(elements.get(), new_room * sizeof(Element)));
      if (moved == nullptr) {
        is_cut = true;
        return false;
      }
      static_cast<void>(elements.release());
      elements.reset(moved);
      room = new_room;
    }
    elements[count++] = element;
    return true;
  }

  // Copies the list into an array that the caller frees; false, and nothing changed, if there is no memory.
  [[nodiscard]] bool give_out(QwportArray *array) const {
    void *memory = nullptr;
    if (core::for_allocate(count * sizeof(Element), &memory) != 0 || memory == nullptr) return false;
    std::memcpy(memory, elements.get(), count * sizeof(Element));
    array->base = memory;
    array->extent = static_cast<int64_t>(count);
    return true;
  }
};

}  // namespace qwport::nls
