// SPDX-License-Identifier: MIT
// One comparison of a name with another of its length: the least that a look-up by name costs.
#include <cstdint>
#include <cstring>

extern "C" int32_t bare_compare(const char *name, const char *other, size_t name_len, size_t other_len);

int32_t bare_compare(const char *name, const char *other, size_t name_len, size_t other_len) {
  return static_cast<int32_t>(name_len == other_len && std::memcmp(name, other, name_len) == 0);
}
