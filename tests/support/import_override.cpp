// SPDX-License-Identifier: MIT
#include "import_override.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "image.h"

namespace {

void **find_slot(HMODULE module, const char *function) {
  void **found = nullptr;
  visit_imports(module, [&](const char *name, void **slot) {
    if (std::strcmp(name, function) == 0) found = slot;
  });
  if (found != nullptr) return found;
  std::fprintf(stderr, "the module does not import %s\n", function);
  std::abort();
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
