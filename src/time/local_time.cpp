// SPDX-License-Identifier: MIT
#include "local_time.h"

bool qwport::time::convert_to_local(std::time_t time, std::tm &local) {
  return is_known(time) && localtime_s(&local, &time) == 0;
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
