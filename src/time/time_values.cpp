// SPDX-License-Identifier: MIT
// Seconds since 1970 as texts and calendar fields, and back.
#include <cstdio>
#include <cstring>
#include <ctime>

#include "assertion.h"
#include "local_time.h"
#include "qwport.h"
#include "text.h"

namespace {

void give_fields(int32_t *tarray, const std::tm &time) {
  const int32_t fields[] = {time.tm_sec,  time.tm_min,  time.tm_hour, time.tm_mday, time.tm_mon,
                            time.tm_year, time.tm_wday, time.tm_yday, time.tm_isdst};
  std::memcpy(tarray, fields, sizeof fields);
}

constexpr size_t field_count = 9;
constexpr size_t day_of_year = 7;

}  // namespace

int64_t TIME(void) { return std::time(nullptr); }

void CTIME(char *result, size_t result_len, const int32_t *stime) {
  const std::time_t time = *stime;
  const char *text = std::ctime(&time);
  // A time that the C run-time rejects has no text: the result is all blanks.
  portlib_cstr_to_fstr(result, text, result_len, text == nullptr ? 0 : std::strlen(text));
}

void FDATE(char *string, size_t string_len) {
  const std::time_t now = std::time(nullptr);
  char text[32] = "";
  std::snprintf(text, sizeof text, "%s", std::ctime(&now));
  text[std::strcspn(text, "\n")] = '\0';
  portlib_cstr_to_fstr(string, text, string_len, std::strlen(text));
}

void GMTIME(const int32_t *stime, int32_t *tarray) {
  const std::time_t time = *stime;
  const std::tm *utc = std::gmtime(&time);
  if (utc == nullptr) portlib_fail_assertion("myTM", "portability/gmtime", 47);
  give_fields(tarray, *utc);
}

void LTIME(const int32_t *stime, int32_t *tarray) {
  std::tm local{};
  if (portlib_local_time(*stime, local)) {
    give_fields(tarray, local);
    ++tarray[day_of_year];  // from 1 here, from 0 in GMTIME: meant
  } else {
    for (size_t i = 0; i < field_count; ++i) tarray[i] = -1;
  }
}

void PACKTIMEQQ(int32_t *timedate, const int16_t *year, const int16_t *month, const int16_t *day, const int16_t *hour,
                const int16_t *minute, const int16_t *second) {
  std::tm local{};
  local.tm_sec = *second;
  local.tm_min = *minute;
  local.tm_hour = *hour;
  local.tm_mday = *day;
  local.tm_mon = *month - 1;
  local.tm_year = *year - 1900;
  local.tm_isdst = -1;
  *timedate = static_cast<int32_t>(std::mktime(&local));
}

void UNPACKTIMEQQ(const int32_t *timedate, int16_t *year, int16_t *month, int16_t *day, int16_t *hour, int16_t *minute,
                  int16_t *second) {
  std::tm local{};
  const bool converted = portlib_local_time(*timedate, local);
  const auto field = [converted](int value) { return static_cast<int16_t>(converted ? value : -1); };
  *year = field(local.tm_year + 1900);
  *month = field(local.tm_mon + 1);
  *day = field(local.tm_mday);
  *hour = field(local.tm_hour);
  *minute = field(local.tm_min);
  *second = field(local.tm_sec);
}
