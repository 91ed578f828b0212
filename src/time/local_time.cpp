// SPDX-License-Identifier: MIT
#include "local_time.h"

bool portlib_local_time(std::time_t time, std::tm &local) {
  const std::tm *converted = std::localtime(&time);
  if (converted == nullptr) return false;
  local = *converted;
  return true;
}

std::tm portlib_local_now() {
  std::tm local{};
  portlib_local_time(std::time(nullptr), local);
  return local;
}
