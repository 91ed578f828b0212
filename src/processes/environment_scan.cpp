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

// Where the last call stopped. One for the process and not locked: a scan belongs to one thread.
struct Scan {
  char search_text[longest_search];
  size_t search_length;
  size_t position;  // from 1, in the environment; 0: nothing was found yet
};
Scan scan;

std::string_view search_text_of(const char *envname, size_t length) {
  std::string_view text(envname, length);
  text.remove_suffix(text.size() - (text.find_last_not_of(std::string_view(" \0", 2)) + 1));
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  return text.substr(0, longest_search);
}

// The same search, or one for the beginning of the last search's text, goes on; any other begins anew.
void begin_or_continue(std::string_view search) {
  if (std::string_view(scan.search_text, scan.search_length).starts_with(search)) return;
  search.copy(scan.search_text, longest_search);
  scan.search_length = search.size();
  scan.position = 0;
}

// The first position to look at: behind the last match, unless the environment has changed meanwhile.
size_t first_position(const char *environment, std::string_view search) {
  const char *variable = environment;
  for (size_t position = 1; *variable != '\0'; ++position) {
    const std::string_view text = variable;
    if (position == scan.position) return text.starts_with(search) ? position + 1 : 1;
    variable += text.size() + 1;
  }
  scan.position = 0;
  return 1;
}

// The next match, remembered; empty if there is none, and then the same question finds none again.
std::string_view find_next(const char *environment, std::string_view search) {
  const size_t first = first_position(environment, search);
  const char *variable = environment;
  for (size_t position = 1; *variable != '\0'; ++position) {
    const std::string_view text = variable;
    if (position >= first && text.substr(0, text.find('=')).starts_with(search)) {
      scan.position = position;
      return text;
    }
    variable += text.size() + 1;
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
  const EnvironmentBlock environment = portlib_environment_block();
  std::string_view found;
  if (!search.empty() && environment != nullptr) {
    begin_or_continue(search);
    found = find_next(environment.get(), search);
  }
  const size_t equals = std::min(found.find('='), found.size());
  place(envtext, envtext_len, found.substr(0, equals));
  place(envvalue, envvalue_len, found.substr(std::min(equals + 1, found.size())));
}
