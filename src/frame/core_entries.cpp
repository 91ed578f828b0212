// SPDX-License-Identifier: MIT
// Load-time binding to the Fortran core runtime, and the guard for entries that were not bound.
#include "core_entries.h"

#include <cstdlib>

#include <windows.h>

#include "format.h"
#include "message_box.h"

CoreEntries core_entries;

namespace {

// The second name is asked for twice on purpose.
constexpr const char *core_module_names[] = {"libqwcoremd.dll", "libqwcorert.dll", "libqwcorert.dll",
                                             "libqwcoremdd.dll", "libqwcorertd.dll"};

HMODULE find_core_module() {
  for (const char *name : core_module_names) {
    if (HMODULE module = GetModuleHandleA(name)) return module;
  }
  return nullptr;
}

template <class Entry> bool bind_entry(HMODULE module, const char *name, Entry &slot) {
  slot = reinterpret_cast<Entry>(reinterpret_cast<void *>(GetProcAddress(module, name)));
  return slot != nullptr;
}

}  // namespace

void portlib_bind_core() {
  HMODULE module = find_core_module();
  if (module == nullptr) return;

  bool complete = true;
#define PORTLIB_BIND_CALLED(entry, guard_name) complete &= bind_entry(module, #entry, core_entries.entry);
#define PORTLIB_BIND_PRESENT(entry) complete &= bind_entry(module, #entry, core_entries.entry);
  PORTLIB_CORE_ENTRIES(PORTLIB_BIND_CALLED, PORTLIB_BIND_PRESENT)
#undef PORTLIB_BIND_CALLED
#undef PORTLIB_BIND_PRESENT
  if (complete) return;

  portlib_show_error("Non-compatible version of Fortran libqwcore DLL was loaded to process address space",
                     "Warning during libqwport.dll initialization");
}

void portlib_need_core(const char *name) {
  char text[264];
  portlib_format(text, sizeof text,
                 "%s function needs to load libqwcore.dll\n"
                 "Executable program must link against Fortran DLL run-time libraries",
                 name);
  portlib_show_error(text, "Error");
  std::exit(1);
}
