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

  // A lambda without captures.
  template <class Lambda>
  ImportOverride(HMODULE module, const char *function, Lambda replacement)
      : ImportOverride(module, function, +replacement) {}

 private:
  void **slot_;
  void *original_;
};

// The same for a function that the module looks up by GetProcAddress. Those that live at once end in reverse order.
class LookupOverride {
 public:
  template <class Function>
  LookupOverride(HMODULE module, const char *function, Function *replacement)
      : function_(function),
        replacement_(reinterpret_cast<FARPROC>(replacement)),
        older_(newest_),
        import_(module, "GetProcAddress", find) {
    newest_ = this;
  }
  ~LookupOverride() { newest_ = older_; }
  LookupOverride(const LookupOverride &) = delete;
  LookupOverride &operator=(const LookupOverride &) = delete;

 private:
  static FARPROC WINAPI find(HMODULE module, const char *function);

  static const LookupOverride *newest_;
  const char *function_;
  FARPROC replacement_;
  const LookupOverride *older_;
  ImportOverride import_;
};
