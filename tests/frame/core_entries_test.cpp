// SPDX-License-Identifier: MIT
// The look-ups of the binding, with the host's answers decided here.
#include "core_entries.h"

#include <doctest/doctest.h>

#include <cstring>
#include <string>
#include <vector>

#include <windows.h>

#include "import_override.h"

namespace {

struct Entry {
  std::string name;
  std::string guard_name;  // empty: no routine calls it
};

const std::vector<Entry> expected_entries = {
    {"for_abort", "for_abort"},
    {"for_stop", ""},
    {"for_exit", "for_exit"},
    {"for__signal", "for__signal"},
    {"for__raise", "for__raise"},
    {"for__establish_user_error_handler", "for__establish_user_error_handler"},
    {"for__process_start_time", "for__process_start_time"},
    {"__msportlib_d_fseek_i8", "_msportlib_d_fseek_i8"},
    {"__msportlib_d_fseek", "_msportlib_d_fseek"},
    {"__msportlib_d_readchar", "_msportlib_d_readchar"},
    {"COMMITQQ", "COMMITQQ"},
    {"FLUSHQQ", "FLUSHQQ"},
    {"__msportlib_d_writechar", "_msportlib_d_writechar"},
    {"__msportlib_d_curpos_i8", "_msportlib_d_curpos_i8"},
    {"__msportlib_d_curpos", "_msportlib_d_curpos"},
    {"for_nargs", "for_nargs"},
    {"__msportlib_d_gethandle", "_msportlib_d_gethandle"},
    {"for_getarg", "for_getarg"},
    {"for_deallocate", ""},
    {"for_allocate", "for_allocate"},
    {"for_secnds_t", ""},
    {"for_since_epoch_t", "for_since_epoch_t"},
    {"__FFresetseed", "FFresetseed"},
    {"__FFsetseed", "FFsetseed"},
    {"__FFdrand", "FFdrand"},
    {"__FFirand", "FFirand"},
    {"__FFfrand", "FFfrand"},
    {"__FFgetseed", "FFgetseed"},
    {"for_errsns_load", "for_errsns_load"},
    {"__msportlib_d_get_POSIX_fd", "_msportlib_d_get_POSIX_fd"},
    {"__msportlib_set_posix_io_flag", "_msportlib_set_posix_io_flag"},
    {"for_fdopen", "for_fdopen"},
    {"for__setlocale", "for__setlocale"},
    {"for__getenv", "for__getenv"},
    {"for__putenv", "for__putenv"},
    {"for__issue_diagnostic", "for__issue_diagnostic"},
    {"for_qwcore_version", ""},
};

std::vector<std::string> modules_asked;
std::vector<std::string> entries_asked;
size_t loaded_module;  // the look-up, from 0, that finds a module
std::string missing_entry;
int warnings;

HMODULE WINAPI find_module(const char *name) {
  modules_asked.emplace_back(name);
  return modules_asked.size() > loaded_module ? reinterpret_cast<HMODULE>(1) : nullptr;
}

// The address of entry number n, from 1, is n.
FARPROC WINAPI find_entry(HMODULE, const char *name) {
  entries_asked.emplace_back(name);
  return name == missing_entry ? nullptr : reinterpret_cast<FARPROC>(entries_asked.size());
}

int WINAPI count_warning(HWND, const char *, const char *, UINT) { return ++warnings; }

// Binds as DllMain does.
void bind(size_t module, const std::string &missing = "") {
  const HMODULE program = GetModuleHandleA(nullptr);
  modules_asked.clear();
  entries_asked.clear();
  core_entries = {};
  loaded_module = module;
  missing_entry = missing;
  warnings = 0;
  const ImportOverride module_search(program, "GetModuleHandleA", find_module);
  const ImportOverride entry_search(program, "GetProcAddress", find_entry);
  const ImportOverride box(program, "MessageBoxA", count_warning);
  portlib_bind_core();
}

constexpr size_t no_module = 99;

}  // namespace

TEST_CASE("the five names are asked for in order, the second twice, until one is found") {
  const std::vector<std::string> names = {"libqwcoremd.dll", "libqwcorert.dll", "libqwcorert.dll", "libqwcoremdd.dll",
                                          "libqwcorertd.dll"};
  bind(no_module);
  CHECK(modules_asked == names);
  CHECK(entries_asked.empty());
  for (size_t found = 0; found < names.size(); ++found) {
    bind(found);
    CHECK(modules_asked.size() == found + 1);
  }
}

TEST_CASE("the 37 entries are looked up in binding order, each into its own slot") {
  bind(0);
  REQUIRE(entries_asked.size() == 37);
  REQUIRE(sizeof core_entries == 37 * sizeof(void *));
  uintptr_t slots[37];
  std::memcpy(slots, &core_entries, sizeof slots);
  for (size_t i = 0; i < 37; ++i) {
    CHECK(entries_asked[i] == expected_entries[i].name);
    CHECK(slots[i] == i + 1);
  }
  CHECK(warnings == 0);
}

TEST_CASE("any missing entry brings one warning, the version mark included") {
  for (const Entry &entry : expected_entries) {
    CAPTURE(entry.name);
    bind(0, entry.name);
    CHECK(warnings == 1);
    CHECK(entries_asked.size() == 37);
  }
}

TEST_CASE("each called entry has its guard name") {
#define CALLED_NAMES(entry, guard_name) {#entry, guard_name},
#define PRESENT_NAMES(entry) {#entry, ""},
  const Entry entries[] = { PORTLIB_CORE_ENTRIES(CALLED_NAMES, PRESENT_NAMES) };
#undef CALLED_NAMES
#undef PRESENT_NAMES
  for (size_t i = 0; i < std::size(entries); ++i) CHECK(entries[i].guard_name == expected_entries[i].guard_name);
}
