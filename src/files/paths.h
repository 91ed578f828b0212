// SPDX-License-Identifier: MIT
// What the files of this family share about paths.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "text.h"

namespace qwport::files {

// Without its NUL. The host and the C run-time take no longer one.
constexpr size_t longest_path = 259;

// A path, and how much of it, with the NUL, a variable of this length asks for.
struct PathRoom {
  explicit PathRoom(size_t variable_length)
      : size(static_cast<uint32_t>(std::min(portlib_length(variable_length), longest_path) + 1)) {}
  char text[longest_path + 1];
  uint32_t size;
};

// Whether the text from the last dot of a name is one of these, in any case of its letters.
template <size_t count> bool has_extension(const char *name, const char *const (&extensions)[count]) {
  const char *extension = std::strrchr(name, '.');
  const auto is_it = [extension](const char *other) { return _stricmp(extension, other) == 0; };
  return extension != nullptr && std::any_of(extensions, extensions + count, is_it);
}

}  // namespace qwport::files
