// SPDX-License-Identifier: MIT
// Seconds since 1970 as texts and calendar fields, and back.
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

// C's form, which C run-times fill in differently: the day of the month has two digits here. All blanks for a time that
// has no local time.
void give_date_and_time(char *string, size_t string_len, std::time_t time, const char *end) {
  constexpr const char *day_names[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  std::tm local{};
  if (!qwport::time::convert_to_local(time, local)) return portlib_place_text(string, string_len, nullptr, 0);
  const size_t form_length = 24 + std::strlen(end);
  qwport::time::give_text(string, string_len, form_length, "%s %s %02d %02d:%02d:%02d %d%s", day_names[local.tm_wday],
                          qwport::time::month_names[local.tm_mon], local.tm_mday, local.tm_hour, local.tm_min,
                          local.tm_sec, local.tm_year + 1900, end);
}

}  // namespace

int64_t TIME(void) { return std::time(nullptr); }

void CTIME(char *result, size_t result_len, const int32_t *stime) {
  give_date_and_time(result, result_len, *stime, "\n");
}

void FDATE(char *string, size_t string_len) { give_date_and_time(string, string_len, std::time(nullptr), ""); }

void GMTIME(const int32_t *stime, int32_t *tarray) {
  const std::time_t time = *stime;
  const std::tm *utc = qwport::time::is_known(time) ? std::gmtime(&time) : nullptr;
  if (utc == nullptr) portlib_fail_assertion("myTM", "portability/gmtime", 47);
  give_fields(tarray, *utc);
}

void LTIME(const int32_t *stime, int32_t *tarray) {
  std::tm local{};
  if (qwport::time::convert_to_local(*stime, local)) {
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
  const std::time_t time = std::mktime(&local);
  *timedate = qwport::time::is_known(time) ? static_cast<int32_t>(time) : -1;
}

void UNPACKTIMEQQ(const int32_t *timedate, int16_t *year, int16_t *month, int16_t *day, int16_t *hour, int16_t *minute,
                  int16_t *second) {
  std::tm local{};
  const bool converted = qwport::time::convert_to_local(*timedate, local);
  const auto field = [converted](int value) { return static_cast<int16_t>(converted ? value : -1); };
  *year = field(local.tm_year + 1900);
  *month = field(local.tm_mon + 1);
  *day = field(local.tm_mday);
  *hour = field(local.tm_hour);
  *minute = field(local.tm_min);
  *second = field(local.tm_sec);
}
