// SPDX-License-Identifier: MIT
// The calendar routines at fixed moments, and time values taken apart and packed.
#include <array>
#include <cstdlib>
#include <ctime>

#include <sys/timeb.h>

#include "library_test.h"

namespace {

__time64_t fixed_time;
constexpr unsigned short fixed_milliseconds = 678;

__time64_t tell_fixed_time(__time64_t *time) {
  if (time != nullptr) *time = fixed_time;
  return fixed_time;
}

void tell_fixed_timeb(struct __timeb64 *time) {
  time->time = fixed_time;
  time->millitm = fixed_milliseconds;
}

void set_time_zone(const char *assignment) {
  _putenv(assignment);
  _tzset();
}

// The library's clock stands still, in UTC.
struct FixedClock {
  explicit FixedClock(__time64_t now) {
    fixed_time = now;
    set_time_zone("TZ=UTC0");
  }
  ImportOverride time{library(), "_time64", tell_fixed_time};
  ImportOverride timeb{library(), "_ftime64", tell_fixed_timeb};
};

std::string text_of(void (*routine)(char *, size_t), size_t length) { return outcome(routine, Room{length}); }

constexpr __time64_t march_5_2023 = 1678025229;  // 14:07:09
constexpr __time64_t december_31_1999 = 946684799;
constexpr __time64_t december_31_2024 = 1735603200;

struct DateCase {
  __time64_t time;
  const char *date, *short_date, *date4, *jdate, *jdate4;
  std::array<int32_t, 5> numbers;  // day, month, year, two digits of it, and the year by the rule of 96
};

constexpr DateCase date_cases[] = {
    {march_5_2023, "05-Mar-23", "03/05/23", "05-Mar-2023", "23064", "2023064", {5, 3, 2023, 23, 2023}},
    {951786123, "29-Feb-00", "02/29/00", "29-Feb-2000", "00060", "2000060", {29, 2, 2000, 0, 2000}},
    {december_31_1999, "31-Dec-99", "12/31/99", "31-Dec-99  ", "99365", "1999365", {31, 12, 1999, 99, 99}},
    {december_31_2024, "31-Dec-24", "12/31/24", "31-Dec-2024", "24366", "2024366", {31, 12, 2024, 24, 2024}},
    {3976146367, "31-Dec-95", "12/31/95", "31-Dec-2095", "95365", "2095365", {31, 12, 2095, 95, 2095}},
    {3976214400, "01-Jan-96", "01/01/96", "01-Jan-96  ", "96001", "2096001", {1, 1, 2096, 96, 96}},
};

// What a routine stores in its arguments, or in an array.
template <size_t count, class Integer> std::array<Integer, count> stored(auto routine, Integer) {
  std::array<Integer, count> a{};
  if constexpr (std::is_invocable_v<decltype(routine), Integer *>)
    routine(a.data());
  else
    std::apply([&](auto &...element) { routine(&element...); }, a);
  return a;
}

using Fields = std::array<int32_t, 9>;

Fields fields_of(void (*routine)(const int32_t *, int32_t *), int32_t time) {
  Fields fields{};
  routine(&time, fields.data());
  return fields;
}

using Unpacked = std::array<int16_t, 6>;

Unpacked unpack(int32_t time) {
  Unpacked u{};
  UNPACKTIMEQQ(&time, &u[0], &u[1], &u[2], &u[3], &u[4], &u[5]);
  return u;
}

int32_t pack(const Unpacked &u) {
  int32_t time = 7;
  PACKTIMEQQ(&time, &u[0], &u[1], &u[2], &u[3], &u[4], &u[5]);
  return time;
}

}  // namespace

TEST_CASE("date texts and numbers at fixed days") {
  RecordingCore core;
  for (const DateCase &expected : date_cases) {
    CAPTURE(expected.date);
    const FixedClock clock(expected.time);
    CHECK(text_of(qwport::DATE, 9) == expected.date);
    CHECK(text_of(qwport::DATE, 8) == expected.short_date);
    CHECK(text_of(DATE4, 11) == expected.date4);
    CHECK(text_of(JDATE, 5) == expected.jdate);
    CHECK(text_of(JDATE4, 7) == expected.jdate4);

    using Date = std::array<int32_t, 3>;
    const auto &[day, month, year, two_digits, year_of_96_rule] = expected.numbers;
    CHECK(stored<3>(IDATE, 0) == Date{day, month, two_digits});
    CHECK(stored<3>(F_IDATE4, 0) == Date{day, month, year_of_96_rule});
    CHECK(stored<3>(IDATE1, 0) == Date{month, day, two_digits});
    CHECK(stored<3>(IDATE4, 0) == Date{month, day, year_of_96_rule});
    CHECK(stored<3>(GETDAT, 0) == Date{year, month, day});
    const auto &[short_year, short_month, short_day] = stored<3>(GETDATI2, int16_t{});
    CHECK(Date{short_year, short_month, short_day} == Date{year, month, day});
  }
  CHECK(core.calls() == "");
}

TEST_CASE("a longer variable is blank-padded, a shorter one cut and reported") {
  RecordingCore core;
  const FixedClock clock(march_5_2023);
  CHECK(text_of(qwport::DATE, 12) == "05-Mar-23   ");
  CHECK_CALLS(text_of(DATE4, 13), "05-Mar-2023  ", "");
  const std::tuple<void (*)(char *, size_t), size_t, const char *> cuts[] = {
      {qwport::DATE, 5, "03/05"}, {DATE4, 10, "05-Mar-202"}, {JDATE, 4, "2306"}, {JDATE4, 0, ""}};
  for (const auto &[routine, length, text] : cuts) {
    CHECK_CALLS(text_of(routine, length), text, reports(EINVAL));
  }
  fixed_time = december_31_1999;  // the two-digit text of a DATE4 form may fill its variable
  CHECK_CALLS(text_of(DATE4, 9), "31-Dec-99", "");
}

TEST_CASE("the time of day, to hundredths") {
  const FixedClock clock(march_5_2023);
  CHECK(stored<3>(ITIME, 0) == std::array<int32_t, 3>{14, 7, 9});
  CHECK(stored<4>(GETTIM, 0) == std::array<int32_t, 4>{14, 7, 9, 67});
  CHECK(stored<4>(GETTIMI2, int16_t{}) == std::array<int16_t, 4>{14, 7, 9, 67});
  CHECK(TIME() == march_5_2023);
  CHECK(text_of(CLOCK, 8) == "14:07:09");
  CHECK(text_of(TIME2, 10) == "14:07:09  ");
}

TEST_CASE("CTIME keeps its line feed, FDATE has none") {
  RecordingCore core;
  const FixedClock clock(december_31_2024);
  const std::tuple<size_t, int32_t, const char *, std::string> times[] = {
      {27, 951786123, "Tue Feb 29 01:02:03 2000\n  ", ""},
      {25, march_5_2023, "Sun Mar 05 14:07:09 2023\n", ""},  // two digits with every C run-time
      {25, -1, "                         ", ""},
      {24, 951786123, "Tue Feb 29 01:02:03 2000", reports(EINVAL)}};
  for (const auto &[length, time, expected, reported] : times) {
    GuardedText text(length);
    CTIME(text.data(), text.size(), &time);
    CHECK_CALLS(text.str(), expected, reported);
  }
  CHECK(text_of(FDATE, 24) == "Tue Dec 31 00:00:00 2024");
  CHECK_CALLS(text_of(FDATE, 26), "Tue Dec 31 00:00:00 2024  ", "");
  CHECK_CALLS(text_of(FDATE, 3), "Tue", reports(EINVAL));
  const FailingCall no_local_time("_localtime64");
  CHECK_CALLS(text_of(FDATE, 3), "   ", "");
}

TEST_CASE("GMTIME and LTIME give C's fields and differ in the day of the year; what C rejects is -1 in every field") {
  set_time_zone("TZ=UTC0");
  const std::tuple<void (*)(const int32_t *, int32_t *), int32_t, Fields> rows[] = {
      {GMTIME, 951786123, {3, 2, 1, 29, 1, 100, 2, 59, 0}},
      {LTIME, 951786123, {3, 2, 1, 29, 1, 100, 2, 60, 0}},
      {GMTIME, 0, {0, 0, 0, 1, 0, 70, 4, 0, 0}},
      {GMTIME, 2147483647, {7, 14, 3, 19, 0, 138, 2, 18, 0}},
      {LTIME, -1, {-1, -1, -1, -1, -1, -1, -1, -1, -1}}};
  for (const auto &[routine, time, fields] : rows) CHECK(fields_of(routine, time) == fields);
  CHECK(unpack(-100'000) == Unpacked{-1, -1, -1, -1, -1, -1});
}

CHILD_PROGRAM(calls_gmtime_before_1970) {
  fields_of(GMTIME, -1);
  return 99;
}

TEST_CASE("GMTIME of a time before 1970 fails an assertion") {
  check_assertion("calls_gmtime_before_1970", "myTM, file portability/gmtime, line 47");
}

TEST_CASE("packed times come apart as they were put together, in the local time of the TZ variable") {
  const std::tuple<const char *, Unpacked, int32_t> rows[] = {
      {"TZ=UTC0", {1970, 1, 1, 0, 0, 0}, 0},
      {"TZ=UTC0", {2023, 3, 5, 14, 7, 9}, march_5_2023},
      {"TZ=UTC0", {2038, 1, 19, 3, 14, 7}, 2147483647},
      {"TZ=ABC5", {2023, 3, 5, 9, 7, 9}, march_5_2023},
      {"TZ=EST5EDT", {2023, 1, 15, 12, 0, 0}, 1673802000},
      {"TZ=EST5EDT", {2023, 7, 15, 12, 0, 0}, 1689436800}};  // 16:00 UTC
  for (const auto &[zone, unpacked, packed] : rows) {
    set_time_zone(zone);
    CHECK((pack(unpacked) == packed && unpack(packed) == unpacked));
    CHECK((fields_of(LTIME, packed)[2] == unpacked[3] && fields_of(GMTIME, packed)[2] == packed / 3600 % 24));
  }
  set_time_zone("TZ=UTC0");
  const std::pair<Unpacked, int32_t> one_way[] = {{{2023, 2, 29, 0, 0, 0}, 1677628800},  // 1 March
                                                  {{1960, 1, 1, 0, 0, 0}, -1},
                                                  {{1969, 12, 31, 20, 0, 0}, -1},
                                                  {{2040, 1, 1, 0, 0, 0}, -2085978496}};  // cut to 32 bits
  for (const auto &[unpacked, packed] : one_way) CHECK(pack(unpacked) == packed);
  set_time_zone("TZ=UTC0");
}
