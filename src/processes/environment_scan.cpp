// SPDX-License-Identifier: MIT
// Listing the environment variables whose names begin with a text, one a call.
#include <algorithm>
#include <cstddef>
#include <string_view>

#include "environment.h"
#include "qwport.h"
#include "text.h"

namespace {

constexpr size_t longest_search = 8192;

char search_text[longest_search];

// Where the last call stopped; one for the process. Initial values other than 0 stand in the DLL's file, so the text
// has a place of its own.
struct Scan {
  PortlibLock lock;
  size_t search_length = 0;
  size_t position = 0;           // from 1, of the last match in the environment; 0: nothing was found yet
  EnvironmentBlock environment;  // from a scan's first call to its end, or to a change by the library
  const char *next = nullptr;    // the variable to look at first
  size_t next_position = 1;
  uint32_t changes = 0;  // by the library when the environment was copied
};
Scan scan;

std::string_view search_text_of(const char *envname, size_t length) {
  std::string_view text(envname, portlib_length(length));
  text.remove_suffix(text.size() - (text.find_last_not_of(std::string_view(" \0", 2)) + 1));
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  return text.substr(0, longest_search);
}

// The same search, or one for the beginning of the last search's text, goes on; any other begins anew.
void begin_or_continue(std::string_view search) {
  if (std::string_view(search_text, scan.search_length).starts_with(search)) return;
  search.copy(search_text, longest_search);
  scan.search_length = search.size();
  scan.position = 0;
  scan.environment.reset();
}

// Goes behind the last match, or to the beginning if that is no match in this environment.
void find_place(std::string_view search) {
  const char *const first = scan.environment.get();
  const char *variable = first;
  for (size_t position = 1; *variable != '\0' && position <= scan.position; ++position) {
    const std::string_view text = variable;
    variable += text.size() + 1;
    if (position < scan.position) continue;
    const bool is_match = text.starts_with(search);
    scan.next = is_match ? variable : first;
    scan.next_position = is_match ? position + 1 : 1;
    return;
  }
  scan.position = 0;
  scan.next = first;
  scan.next_position = 1;
}

bool take_environment(std::string_view search) {
  const uint32_t changes = portlib_environment_changes;
  if (scan.environment != nullptr && scan.changes == changes) return true;
  scan.environment = portlib_environment_block();
  scan.changes = changes;
  if (scan.environment != nullptr) find_place(search);
  return scan.environment != nullptr;
}

// The next match, remembered; empty if there is none, and then the same question finds none again.
std::string_view find_next(std::string_view search) {
  const char *variable = scan.next;
  for (size_t position = scan.next_position; *variable != '\0'; ++position) {
    const std::string_view text = variable;
    variable += text.size() + 1;
    if (!text.substr(0, text.find('=')).starts_with(search)) continue;
    scan.position = position;
    scan.next = variable;
    scan.next_position = position + 1;
    return text;
  }
  return {};
}

void place(char *buffer, size_t length, std::string_view text) {
  portlib_place_text(buffer, length, text.data(), text.size());
}

}  // namespace

void SCANENV(const char *envname, char *envtext, char *envvalue, size_t envname_len, size_t envtext_len,
             size_t envvalue_len) {
  const std::string_view search = search_text_of(envname, envname_len);
  const LockGuard guard(scan.lock);
  std::string_view found;
  if (!search.empty()) begin_or_continue(search);
  if (!search.empty() && take_environment(search)) found = find_next(search);
  const size_t equals = std::min(found.find('='), found.size());
  place(envtext, envtext_len, found.substr(0, equals));
  place(envvalue, envvalue_len, found.substr(std::min(equals + 1, found.size())));
  if (found.empty()) scan.environment.reset();
}
