// SPDX-License-Identifier: MIT
#include "local_time.h"

bool qwport::time::convert_to_local(std::time_t time, std::tm &local) {
  const std::tm *converted = is_known(time) ? std::localtime(&time) : nullptr;
  if (converted != nullptr) local = *converted;
  return converted != nullptr;
}

std::tm qwport::time::local_now() {
  std::tm local{};
  convert_to_local(std::time(nullptr), local);
  return local;
}

struct _timeb qwport::time::now_in_milliseconds() {
  struct _timeb now {};
  _ftime(&now);
  return now;
}
