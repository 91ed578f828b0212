// SPDX-License-Identifier: MIT
// Wall clocks and elapsed time.
#include <atomic>
#include <cmath>

#include <windows.h>

#include "core_entries.h"
#include "file_time.h"
#include "local_time.h"
#include "qwport.h"

namespace {

double dclock_start = 0.0;             // 0.0: not yet read
std::atomic<double> timef_start{0.0};  // 0.0: not yet taken

void give_time_of_day(char *string, size_t string_len) {
  const std::tm time = qwport::time::local_now();
  qwport::time::give_text(string, string_len, 8, "%02d:%02d:%02d", time.tm_hour, time.tm_min, time.tm_sec);
}

float seconds_since_midnight() {
  SYSTEMTIME time{};
  GetLocalTime(&time);
  const int seconds = time.wHour * 3600 + time.wMinute * 60 + time.wSecond;
  // The first two milliseconds of a second count as none; this is meant.
  const float fraction = time.wMilliseconds < 2 ? 0.0F : static_cast<float>(time.wMilliseconds) * 0.001F;
  return static_cast<float>(static_cast<double>(seconds) + static_cast<double>(fraction));
}

}  // namespace

double RTC(void) { return portlib_seconds_since_1970(); }

double TIMEF(void) {
  const double now = portlib_seconds_since_1970();
  double start = 0.0;
  return timef_start.compare_exchange_strong(start, now) ? 0.0 : now - start;
}

void CLOCKX(double *t) {
  const auto now = qwport::time::now_in_milliseconds();
  *t = now.millitm * 1000.0 + static_cast<double>(now.time) * 1e6;
}

void GETTIMEOFDAY(int32_t *tv, int32_t *tz) {
  const auto now = qwport::time::now_in_milliseconds();
  tv[0] = static_cast<int32_t>(now.time);
  tv[1] = now.millitm * 1000;
  *tz = 0;
}

void CLOCK(char *result, size_t result_len) { give_time_of_day(result, result_len); }

void TIME2(char *string, size_t string_len) { give_time_of_day(string, string_len); }

float SECNDS(const float *t0) {
  constexpr float seconds_per_day = 86400.0F;
  float now = seconds_since_midnight();
  const float start = *t0;
  if (start == 0.0F || std::isnan(start)) return now;
  if (now < start) now += seconds_per_day;
  return std::fmax(now - start, 0.0F);
}

double DCLOCK(void) {
  if (dclock_start == 0.0) dclock_start = core::for__process_start_time();
  return core::for_since_epoch_t(&dclock_start);
}
