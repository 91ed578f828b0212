// SPDX-License-Identifier: MIT
// The look-ups of the binding, with the host's answers decided here.
#include "core_entries.h"

#include <doctest/doctest.h>

#include <cstring>
#include <regex>
#include <string>

#include <windows.h>

#include "import_override.h"

namespace {

// In binding order; no routine calls those with an asterisk.
const std::string expected_entries =
    "for_abort for_stop* for_exit for__signal for__raise for__establish_user_error_handler for__process_start_time "
    "__msportlib_d_fseek_i8 __msportlib_d_fseek __msportlib_d_readchar COMMITQQ FLUSHQQ __msportlib_d_writechar "
    "__msportlib_d_curpos_i8 __msportlib_d_curpos for_nargs __msportlib_d_gethandle for_getarg for_deallocate* "
    "for_allocate for_secnds_t* for_since_epoch_t __FFresetseed __FFsetseed __FFdrand __FFirand __FFfrand __FFgetseed "
    "for_errsns_load __msportlib_d_get_POSIX_fd __msportlib_set_posix_io_flag for_fdopen for__setlocale for__getenv "
    "for__putenv for__issue_diagnostic for_qwcore_version* ";

size_t modules_asked, loaded_module;  // the look-up, from 1, that finds a module
uintptr_t entries_asked;
std::string missing_entry, log;

HMODULE WINAPI find_module(const char *name) {
  log += std::string(name) + ' ';
  return ++modules_asked < loaded_module ? nullptr : reinterpret_cast<HMODULE>(1);
}

int WINAPI show_box(HWND owner, const char *text, const char *caption, UINT style) {
  log += (owner == nullptr ? "box " : "owned box ") + std::to_string(style) + ' ' + caption + ": " + text;
  return IDOK;
}

// The address of entry number n, from 1, is n.
FARPROC WINAPI find_entry(HMODULE, const char *name) {
  if (name == std::string("MessageBoxA")) return reinterpret_cast<FARPROC>(show_box);
  log += std::string(name) + ' ';
  ++entries_asked;
  return name == missing_entry ? nullptr : reinterpret_cast<FARPROC>(entries_asked);
}

// Binds as DllMain does, and gives the look-ups and the warning.
std::string bind(size_t module, const std::string &missing = "") {
  const HMODULE program = GetModuleHandleA(nullptr);
  core_entries = {};
  log.clear();
  modules_asked = entries_asked = 0;
  loaded_module = module;
  missing_entry = missing;
  const ImportOverride module_search(program, "GetModuleHandleA", find_module);
  const ImportOverride entry_search(program, "GetProcAddress", find_entry);
  portlib_bind_core();
  return log;
}

}  // namespace

TEST_CASE("five names are asked for until one is found, then 37 entries, each with its guard name and slot") {
#define CALLED_NAME(entry, name) #entry "=" name " "
#define PRESENT_NAME(entry) #entry "* "
  // The user sees two sorts of names without their underscores: one less, or none.
  const std::string called = std::regex_replace(expected_entries, std::regex("(\\w+) "), "$1=$1 ");
  CHECK(PORTLIB_CORE_ENTRIES(CALLED_NAME, PRESENT_NAME) == std::regex_replace(called, std::regex("=_(_(?=FF))?"), "="));
  const std::string symbols = std::regex_replace(expected_entries, std::regex("[*]"), "");
  const std::string modules[] = {"libqwcoremd.dll ", "libqwcorert.dll ", "libqwcorert.dll ", "libqwcoremdd.dll ",
                                 "libqwcorertd.dll "};
  std::string names;
  for (size_t found = 1; found <= std::size(modules); ++found) {
    names += modules[found - 1];
    CHECK(bind(found) == names + symbols);
  }
  uintptr_t slots[37], position = 0;
  static_assert(sizeof slots == sizeof core_entries);
  std::memcpy(slots, &core_entries, sizeof slots);
  for (const uintptr_t slot : slots) CHECK(slot == ++position);
  CHECK(bind(std::size(modules) + 1) == names);
}

TEST_CASE("any missing entry brings one warning, the version mark included") {
  const std::string looked_up = bind(1);
  const std::string warning =
      "box 16 Warning during libqwport.dll initialization: "
      "Non-compatible version of Fortran libqwcore DLL was loaded to process address space";
  for (const char *entry : {"for_abort", "COMMITQQ", "for_qwcore_version"})
    CHECK(bind(1, entry) == looked_up + warning);
}
