// SPDX-License-Identifier: MIT
// Replaces one function that a module imports for as long as the object lives, so that a test decides
// what the host or the C run-time answers to the unmodified module.
#pragma once

#include <windows.h>

class ImportOverride {
 public:
  // Ends the program if the module does not import the function.
  ImportOverride(HMODULE module, const char *function, void *replacement);
  ~ImportOverride();
  ImportOverride(const ImportOverride &) = delete;
  ImportOverride &operator=(const ImportOverride &) = delete;

  template <class Function>
  ImportOverride(HMODULE module, const char *function, Function *replacement)
      : ImportOverride(module, function, reinterpret_cast<void *>(replacement)) {}

 private:
  void **slot_;
  void *original_;
};
