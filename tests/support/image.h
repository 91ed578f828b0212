// SPDX-License-Identifier: MIT
// A loaded module's headers and tables.
#pragma once

#include <cstddef>
#include <cstdint>

#include <windows.h>

template <class T> T *at_offset(HMODULE module, uintptr_t offset) {
  return reinterpret_cast<T *>(reinterpret_cast<uintptr_t>(module) + offset);
}

inline const IMAGE_NT_HEADERS64 &headers_of(HMODULE module) {
  const auto *dos = at_offset<IMAGE_DOS_HEADER>(module, 0);
  return *at_offset<IMAGE_NT_HEADERS64>(module, static_cast<uintptr_t>(dos->e_lfanew));
}

// The table of this number, IMAGE_DIRECTORY_ENTRY_...
template <class Table> const Table *table_of(HMODULE module, size_t number) {
  return at_offset<Table>(module, headers_of(module).OptionalHeader.DataDirectory[number].VirtualAddress);
}

// Calls a procedure with the name and the slot of each import that has a name.
template <class Visit> void visit_imports(HMODULE module, Visit visit) {
  const auto *dll = table_of<IMAGE_IMPORT_DESCRIPTOR>(module, IMAGE_DIRECTORY_ENTRY_IMPORT);
  for (; dll->Name != 0; ++dll) {
    const auto *names = at_offset<IMAGE_THUNK_DATA64>(module, dll->OriginalFirstThunk);
    auto *slots = at_offset<IMAGE_THUNK_DATA64>(module, dll->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++slots) {
      if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
      const auto *import = at_offset<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
      visit(import->Name, reinterpret_cast<void **>(&slots->u1.Function));
    }
  }
}

// Puts a value into a slot, which the program itself cannot write.
inline void write_slot(void **slot, void *value) {
  DWORD protection = 0;
  VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
  *slot = value;
  VirtualProtect(slot, sizeof *slot, protection, &protection);
}
