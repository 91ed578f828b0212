// SPDX-License-Identifier: MIT
// The look-ups of the binding, with the host's answers decided here.
#include "core_entries.h"

#include <doctest/doctest.h>

#include <cstring>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <windows.h>

#include "import_override.h"

namespace {

std::vector<std::string> words(const std::string &text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

// In binding order; no routine calls those with an asterisk.
const std::vector<std::string> expected_entries = words(R"(
    for_abort for_stop* for_exit for__signal for__raise for__establish_user_error_handler for__process_start_time
    __msportlib_d_fseek_i8 __msportlib_d_fseek __msportlib_d_readchar COMMITQQ FLUSHQQ __msportlib_d_writechar
    __msportlib_d_curpos_i8 __msportlib_d_curpos for_nargs __msportlib_d_gethandle for_getarg for_deallocate*
    for_allocate for_secnds_t* for_since_epoch_t __FFresetseed __FFsetseed __FFdrand __FFirand __FFfrand __FFgetseed
    for_errsns_load __msportlib_d_get_POSIX_fd __msportlib_set_posix_io_flag for_fdopen for__setlocale for__getenv
    for__putenv for__issue_diagnostic for_qwcore_version*)");

// The user sees two sorts of names without their underscores: one less, or none.
std::string guard_name(const std::string &entry) {
  return entry.substr(entry.starts_with("__FF") ? 2 : entry.starts_with("__") ? 1 : 0);
}

std::vector<std::string> modules_asked;
std::vector<std::string> entries_asked;
size_t loaded_module;  // the look-up, from 0, that finds a module
std::string missing_entry;
int warnings;

HMODULE WINAPI find_module(const char *name) {
  modules_asked.emplace_back(name);
  return modules_asked.size() > loaded_module ? reinterpret_cast<HMODULE>(1) : nullptr;
}

int WINAPI count_warning(HWND, const char *, const char *, UINT) { return ++warnings; }

// The address of entry number n, from 1, is n.
FARPROC WINAPI find_entry(HMODULE, const char *name) {
  if (name == std::string("MessageBoxA")) return reinterpret_cast<FARPROC>(count_warning);
  entries_asked.emplace_back(name);
  return name == missing_entry ? nullptr : reinterpret_cast<FARPROC>(entries_asked.size());
}

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
  portlib_bind_core();
}

}  // namespace

TEST_CASE("the five names are asked for in order, the second twice, until one is found") {
  const std::vector<std::string> names = {"libqwcoremd.dll", "libqwcorert.dll", "libqwcorert.dll", "libqwcoremdd.dll",
                                          "libqwcorertd.dll"};
  bind(names.size());
  CHECK((modules_asked == names && entries_asked.empty()));
  for (size_t found = 0; found < names.size(); ++found) {
    bind(found);
    CHECK(modules_asked.size() == found + 1);
  }
}

TEST_CASE("the 37 entries are looked up in binding order, each into its own slot under its guard name") {
#define CALLED_NAMES(entry, name) {#entry, name},
#define PRESENT_NAMES(entry) {#entry "*", ""},
  const std::pair<std::string, std::string> entries[] = { PORTLIB_CORE_ENTRIES(CALLED_NAMES, PRESENT_NAMES) };
#undef CALLED_NAMES
#undef PRESENT_NAMES
  bind(0);
  REQUIRE((entries_asked.size() == 37 && std::size(entries) == 37 && sizeof core_entries == 37 * sizeof(void *)));
  uintptr_t slots[37];
  std::memcpy(slots, &core_entries, sizeof slots);
  for (size_t i = 0; i < 37; ++i) {
    const std::string &expected = expected_entries[i];
    CHECK(entries[i].first == expected);
    CHECK(entries[i].second == (expected.ends_with('*') ? "" : guard_name(expected)));
    CHECK(entries_asked[i] == expected.substr(0, expected.find('*')));
    CHECK(slots[i] == i + 1);
  }
  CHECK(warnings == 0);
}

TEST_CASE("any missing entry brings one warning, the version mark included") {
  for (const std::string &entry : expected_entries) {
    CAPTURE(entry);
    bind(0, entry.substr(0, entry.find('*')));
    CHECK((warnings == 1 && entries_asked.size() == 37));
  }
}
