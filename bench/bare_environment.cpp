// SPDX-License-Identifier: MIT
// Variables for a scan, and one pass over all of them by the host alone.
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include <windows.h>

extern "C" {
void set_variables(int32_t count);
int32_t pass_over_variables();
}

namespace {

constexpr std::string_view prefix = "QWPORT_SCANNED_";

}  // namespace

void set_variables(int32_t count) {
  for (int32_t i = 0; i < count; ++i)
    SetEnvironmentVariableA((std::string(prefix) + std::to_string(i)).c_str(), "a value of usual length");
}

int32_t pass_over_variables() {
  int32_t count = 0;
  char *block = GetEnvironmentStringsA();
  for (const char *variable = block; *variable != '\0'; variable += std::strlen(variable) + 1) {
    if (std::string_view(variable).starts_with(prefix)) ++count;
  }
  FreeEnvironmentStringsA(block);
  return count;
}
