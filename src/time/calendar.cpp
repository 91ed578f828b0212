// SPDX-License-Identifier: MIT
// Today's date and the time of day in the forms of older Fortran dialects.
#include <ctime>

#include "local_time.h"
#include "qwport.h"

namespace {

using qwport::time::give_text;
using qwport::time::local_now;
using qwport::time::month_names;

int full_year(const std::tm &date) { return date.tm_year + 1900; }

int two_digit_year(const std::tm &date) { return date.tm_year % 100; }

// 1996 to 1999 and 2096 to 2099 keep two digits; the threshold is meant.
int year_of_96_rule(const std::tm &date) {
  const int year = two_digit_year(date);
  return year < 96 ? year + 2000 : year;
}

void give_short_date(int32_t *month, int32_t *day, int32_t *year, int (*year_of)(const std::tm &)) {
  const std::tm date = local_now();
  *month = date.tm_mon + 1;
  *day = date.tm_mday;
  *year = year_of(date);
}

template <class Integer> void give_date(Integer *year, Integer *month, Integer *day) {
  const std::tm date = local_now();
  *year = static_cast<Integer>(full_year(date));
  *month = static_cast<Integer>(date.tm_mon + 1);
  *day = static_cast<Integer>(date.tm_mday);
}

template <class Integer> void give_time(Integer *hour, Integer *minute, Integer *second, Integer *hundredths) {
  const auto now = qwport::time::now_in_milliseconds();
  std::tm local{};
  qwport::time::convert_to_local(now.time, local);
  *hour = static_cast<Integer>(local.tm_hour);
  *minute = static_cast<Integer>(local.tm_min);
  *second = static_cast<Integer>(local.tm_sec);
  *hundredths = static_cast<Integer>(now.millitm / 10);
}

}  // namespace

void qwport::DATE(char *string, size_t string_len) {
  constexpr size_t short_form_length = 8;
  constexpr size_t long_form_length = 9;
  const std::tm date = local_now();
  if (string_len > short_form_length) {
    give_text(string, string_len, long_form_length, "%02d-%s-%02d", date.tm_mday, month_names[date.tm_mon],
              two_digit_year(date));
  } else {
    give_text(string, string_len, short_form_length, "%02d/%02d/%02d", date.tm_mon + 1, date.tm_mday,
              two_digit_year(date));
  }
}

void DATE4(char *string, size_t string_len) {
  const std::tm date = local_now();
  give_text(string, string_len, 11, "%02d-%s-%d", date.tm_mday, month_names[date.tm_mon], year_of_96_rule(date));
}

void JDATE(char *string, size_t string_len) {
  const std::tm date = local_now();
  give_text(string, string_len, 5, "%02d%03d", two_digit_year(date), date.tm_yday + 1);
}

void JDATE4(char *string, size_t string_len) {
  const std::tm date = local_now();
  give_text(string, string_len, 7, "%04d%03d", full_year(date), date.tm_yday + 1);
}

void IDATE(int32_t *iarray) { give_short_date(&iarray[1], &iarray[0], &iarray[2], two_digit_year); }

void F_IDATE4(int32_t *iarray) { give_short_date(&iarray[1], &iarray[0], &iarray[2], year_of_96_rule); }

void IDATE1(int32_t *month, int32_t *day, int32_t *year) { give_short_date(month, day, year, two_digit_year); }

void IDATE4(int32_t *month, int32_t *day, int32_t *year) { give_short_date(month, day, year, year_of_96_rule); }

void ITIME(int32_t *iarray) {
  const std::tm time = local_now();
  iarray[0] = time.tm_hour;
  iarray[1] = time.tm_min;
  iarray[2] = time.tm_sec;
}

void GETDAT(int32_t *year, int32_t *month, int32_t *day) { give_date(year, month, day); }

void GETDATI2(int16_t *year, int16_t *month, int16_t *day) { give_date(year, month, day); }

void GETTIM(int32_t *hour, int32_t *minute, int32_t *second, int32_t *hundredths) {
  give_time(hour, minute, second, hundredths);
}

void GETTIMI2(int16_t *hour, int16_t *minute, int16_t *second, int16_t *hundredths) {
  give_time(hour, minute, second, hundredths);
}
