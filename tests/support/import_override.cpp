// SPDX-License-Identifier: MIT
#include "import_override.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

template <class T> T *at(HMODULE module, uintptr_t offset) {
  return reinterpret_cast<T *>(reinterpret_cast<uintptr_t>(module) + offset);
}

// The import address slot of a function, searched in every DLL that the module imports from.
void **find_slot(HMODULE module, const char *function) {
  const auto *dos = at<IMAGE_DOS_HEADER>(module, 0);
  const auto *headers = at<IMAGE_NT_HEADERS64>(module, static_cast<uintptr_t>(dos->e_lfanew));
  const auto &directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  for (const auto *import = at<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress); import->Name != 0;
       ++import) {
    const auto *names = at<IMAGE_THUNK_DATA64>(module, import->OriginalFirstThunk);
    auto *slots = at<IMAGE_THUNK_DATA64>(module, import->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++slots) {
      if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
      const auto *by_name = at<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
      if (std::strcmp(by_name->Name, function) == 0) return reinterpret_cast<void **>(&slots->u1.Function);
    }
  }
  std::fprintf(stderr, "the module does not import %s\n", function);
  std::abort();
}

void write_slot(void **slot, void *value) {
  DWORD protection = 0;
  VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
  *slot = value;
  VirtualProtect(slot, sizeof *slot, protection, &protection);
}

}  // namespace

ImportOverride::ImportOverride(HMODULE module, const char *function, void *replacement)
    : slot_(find_slot(module, function)), original_(*slot_) {
  write_slot(slot_, replacement);
}

ImportOverride::~ImportOverride() { write_slot(slot_, original_); }

const LookupOverride *LookupOverride::newest_;

FARPROC LookupOverride::find(HMODULE module, const char *function) {
  const LookupOverride *candidate = newest_;
  while (candidate != nullptr && std::strcmp(candidate->function_, function) != 0) candidate = candidate->older_;
  return candidate != nullptr ? candidate->replacement_ : GetProcAddress(module, function);
}
