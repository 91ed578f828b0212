// SPDX-License-Identifier: MIT
// Replaces functions that a module imports for as long as the object lives, so that a test decides what the host or
// the C run-time answers to the unmodified module.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <windows.h>

class ImportOverride {
 public:
  // Ends the program if the module does not import the function.
  ImportOverride(HMODULE module, const char *function, void *replacement);
  ~ImportOverride();
  ImportOverride(const ImportOverride &) = delete;
  ImportOverride &operator=(const ImportOverride &) = delete;

  // A function, or a lambda without captures.
  template <class Function>
  ImportOverride(HMODULE module, const char *function, Function replacement)
      : ImportOverride(module, function, reinterpret_cast<void *>(+replacement)) {}

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

enum class Holding { none, gives, gives_or_resizes, takes };

// A function between a module and the host.
struct HostCall {
  std::string name;
  Holding holding = Holding::none;  // what the result, or the first argument that is taken, does to a count
  intptr_t failure = 0;             // its result when it fails
  void *simulation = nullptr;       // in place of the host's own
};

// Counts what the host gives to a module and takes back from it, and makes calls fail. A failing call takes all the
// same.
class HostCalls {
 public:
  using Judge = bool (*)(const HostCall &);  // whether the present call fails; sets the error then
  // Of a name that a module imports, whether and as what it is watched.
  using Choice = std::function<bool(HostCall &)>;
  HostCalls(HMODULE module, std::atomic<int> &held, Judge fails, const Choice &choose);
  ~HostCalls();
  HostCalls(const HostCalls &) = delete;
  HostCalls &operator=(const HostCalls &) = delete;

 private:
  std::vector<size_t> places_;
};
