// SPDX-License-Identifier: MIT
// Choosing a locale and writing by it, on the host's locales and a recorded run-time; and code pages of a
// simulated console.
#include <doctest/doctest.h>

#include <ctime>
#include <string>
#include <string_view>

#include "guarded_text.h"
#include "import_override.h"
#include "library.h"
#include "qwport.h"
#include "recording.h"

namespace {

int32_t set_locale(std::string_view language, std::string_view country = "", int32_t code_page = 0) {
  return NLSSETLOCALE(language.data(), country.empty() ? nullptr : country.data(),
                      code_page == 0 ? nullptr : &code_page, language.size(), country.size());
}

// What the run-time answers to every setlocale.
void runtime_answers(const char *name) { RecordingCore::answer("for__setlocale", reinterpret_cast<intptr_t>(name)); }

std::string trimmed(std::string text) { return text.substr(0, text.find_last_not_of(' ') + 1); }

std::string locale_in_force() {
  GuardedText language(64), country(64);
  int32_t code_page = -1;
  NLSGETLOCALE(language.data(), country.data(), &code_page, 64, 64);
  return trimmed(language.str()) + '/' + trimmed(country.str()) + '/' + std::to_string(code_page);
}

// The result and the text of a routine that fills outstr.
template <class Routine> std::string written(Routine routine, size_t length = 60) {
  GuardedText text(length);
  const int32_t result = routine(text.data(), length);
  return std::to_string(result) + ':' + trimmed(text.str());
}

using NumberFormat = int32_t (*)(char *, const char *, const int32_t *, size_t, size_t);
std::string number(std::string_view value, int32_t flags = 0, NumberFormat format = NLSFORMATNUMBER) {
  return written([&](char *text, size_t n) { return format(text, value.data(), &flags, n, value.size()); });
}
std::string currency(std::string_view value) { return number(value, 0, NLSFORMATCURRENCY); }

using TimeFormat = int32_t (*)(char *, const int32_t *, const int32_t *, size_t);
std::string moment(TimeFormat format, int32_t flags, size_t length = 60) {
  std::tm local{};
  local.tm_year = 2024 - 1900, local.tm_mon = 2, local.tm_mday = 5, local.tm_hour = 14, local.tm_min = 7;
  local.tm_sec = 9, local.tm_isdst = -1;
  const auto seconds = static_cast<int32_t>(std::mktime(&local));
  return written([&](char *text, size_t n) { return format(text, &seconds, &flags, n); }, length);
}

std::string information(int32_t type, size_t length = 60) {
  return written([&](char *text, size_t n) { return NLSGETLOCALEINFO(&type, text, n); }, length);
}

bool contains(const std::string &text, const char *part) { return text.find(part) != std::string::npos; }

}  // namespace

TEST_CASE("locales write in their own way and in their code page") {
  RecordingCore core;
  runtime_answers("taken");
  struct Case {
    const char *language, *country;
    const char *in_force;
    const char *number;   // -1234.567
    const char *money;    // in 1234.5
    const char *date;     // in the long date
    const char *decimal;  // information
  };
  const Case cases[] = {
      {"english", "", "English/United States/1252", "9:-1,234.57", "$1,234.50", "March 5, 2024", "1:."},
      {"German", "Germany", "German/Germany/1252", "9:-1.234,57", "1.234,50 \x80", "5. M\xE4rz 2024", "1:,"},
      {"FRENCH", "france", "French/France/1252", nullptr, "234,50 \x80", "5 mars 2024", "1:,"},
      {"Polish", "", "Polish/Poland/1250", nullptr, "234,50 z\xB3", "5 marca 2024", "1:,"},
      {"Russian", "Russia", "Russian/Russia/1251", nullptr, "234,50", "5 \xEC\xE0\xF0\xF2\xE0 2024", "1:,"},
      {"Japanese", "Japan", "Japanese/Japan/932", "9:-1,234.57", "1,235",
       "2024\x94\x4E"
       "3\x8C\x8E"
       "5\x93\xFA",
       "1:."},
  };
  for (const Case &locale : cases) {
    CAPTURE(locale.language);
    REQUIRE(set_locale(locale.language, locale.country) == 0);
    CHECK(locale_in_force() == locale.in_force);
    if (locale.number != nullptr) CHECK(number("-1234.567") == locale.number);
    CHECK(contains(number("-1234.567"), locale.number != nullptr ? "234" : "234,57"));
    CHECK(contains(currency("1234.5"), locale.money));
    CHECK(contains(moment(NLSFORMATDATE, DATE_LONGDATE), locale.date));
    CHECK(contains(moment(NLSFORMATDATE, 0), "2024"));
    CHECK(!contains(moment(NLSFORMATDATE, DATE_SHORTDATE), locale.date));
    CHECK(contains(moment(NLSFORMATTIME, TIME_FORCE24HOURFORMAT | TIME_NOTIMEMARKER), "8:14:07:09"));
    CHECK(moment(NLSFORMATTIME, TIME_FORCE24HOURFORMAT | TIME_NOTIMEMARKER | TIME_NOSECONDS) == "5:14:07");
    CHECK(information(LOCALE_SDECIMAL) == locale.decimal);
  }
  REQUIRE(set_locale("Japanese", "Japan", 65001) == 0);
  CHECK(contains(moment(NLSFORMATDATE, DATE_LONGDATE), "2024\xE5\xB9\xB4"));
  REQUIRE(set_locale("English", "United Kingdom") == 0);
  CHECK(information(LOCALE_SINTLSYMBOL) == "3:GBP");
  REQUIRE(set_locale("") == 0);
  const int32_t before = static_cast<int32_t>(std::time(nullptr));
  const auto now = [](TimeFormat format) {
    return written([format](char *text, size_t n) { return format(text, nullptr, nullptr, n); });
  };
  const std::string today = now(NLSFORMATDATE);
  const std::string then = written([&](char *text, size_t n) { return NLSFORMATDATE(text, &before, nullptr, n); });
  CHECK((today == then || static_cast<int32_t>(std::time(nullptr)) / 86400 != before / 86400));
  CHECK(contains(now(NLSFORMATTIME), ":"));
}

TEST_CASE("what makes no sense or does not fit is told, and outputs stay") {
  RecordingCore core;
  runtime_answers("taken");
  REQUIRE(set_locale("English") == 0);
  CHECK(number("  -12.5   ") == "6:-12.50");
  CHECK(number(".5") == "4:0.50");
  CHECK(number("5.", static_cast<int32_t>(LOCALE_NOUSEROVERRIDE)) == "4:5.00");
  for (const char *text : {"", "  ", "-", ".", "-.", "1.2.3", "1,5", "12x", "+5", "--5", "1-", "1 2"}) {
    CAPTURE(text);
    CHECK(number(text).starts_with("-5:###"));
    CHECK(currency(text).starts_with("-5:###"));
  }
  CHECK(number(std::string(1024, '1')).starts_with("-5:"));
  CHECK(number("1", 1).starts_with("-6:###"));
  CHECK(moment(NLSFORMATDATE, DATE_SHORTDATE | DATE_LONGDATE).starts_with("-6:###"));
  CHECK(moment(NLSFORMATDATE, 8).starts_with("-6:###"));
  CHECK(moment(NLSFORMATTIME, 16).starts_with("-6:###"));
  const int32_t no_time = -1;
  CHECK(written([&](char *text, size_t n) { return NLSFORMATDATE(text, &no_time, nullptr, n); }).starts_with("-5:#"));
  CHECK(moment(NLSFORMATTIME, TIME_NOTIMEMARKER | TIME_FORCE24HOURFORMAT, 8) == "8:14:07:09");
  CHECK(moment(NLSFORMATTIME, TIME_NOTIMEMARKER | TIME_FORCE24HOURFORMAT, 7) == "-7:#######");
  CHECK(information(LOCALE_SENGCOUNTRY, 13) == "13:United States");
  CHECK(information(LOCALE_SENGCOUNTRY, 12) == "-7:############");
  CHECK(information(0xFFF, 3) == "-4:###");
  CHECK(information(LOCALE_IDIGITS | LOCALE_RETURN_NUMBER, 3) == "-4:###");
}

TEST_CASE("a locale is chosen as a whole or not at all") {
  RecordingCore core;
  runtime_answers("first");
  REQUIRE(set_locale("German", "", 850) == 0);
  CHECK(core.calls() == "for__setlocale(0, null) for__setlocale(0, &)");
  CHECK(locale_in_force() == "German/Germany/850");

  struct Case {
    const char *language, *country;
    int32_t code_page, status;
  };
  const std::string long_name(200, 'x');
  const Case refused[] = {
      {"Klingon", "", 0, -1},       {long_name.c_str(), "", 0, -1},       {"German", "Japan", 0, -2},
      {"German", "Qo'noS", 0, -2},  {"German", long_name.c_str(), 0, -2}, {"German", "Austria", 12345, -3},
      {"German", "Austria", -1, -3}};
  for (const Case &names : refused) {
    CAPTURE(names.language);
    CHECK(set_locale(names.language, names.country, names.code_page) == names.status);
  }
  runtime_answers(nullptr);
  CHECK(set_locale("French") == -3);
  CHECK(locale_in_force() == "German/Germany/850");
  core.calls();
  runtime_answers("LC_COLLATE=French_France.65001;LC_CTYPE=C");
  CHECK(set_locale("French", "", 65001) == -3);
  const std::string attempt = "for__setlocale(0, null) for__setlocale(0, &) for__setlocale(0, &)";
  CHECK(core.calls() == attempt + ' ' + attempt);  // each asks, tries and restores
  runtime_answers("first");
  CHECK(locale_in_force() == "German/Germany/850");
  CHECK(number("1.5") == "4:1,50");
}

TEST_CASE("the locale that C code chose for the run-time is told") {
  RecordingCore core;
  const std::pair<const char *, const char *> names[] = {{"French_Canada.863", "French/Canada/863"},
                                                         {"English_St. Helena.1252", "English/St. Helena/1252"},
                                                         {"de_DE.utf8", "de/DE/65001"},
                                                         {"de-DE", "de-DE//0"},
                                                         {"C_or_other", "C/or_other/0"}};
  for (const auto &[runtime_name, expected] : names) {
    runtime_answers(runtime_name);
    CHECK(locale_in_force() == expected);
  }
  GuardedText language(3);
  NLSGETLOCALE(language.data(), nullptr, nullptr, 3, 0);
  CHECK(language.str() == "C  ");
}

TEST_CASE("without memory for a list there is none, and it is said") {
  RecordingCore core;
  RecordingCore::answer("for_allocate", 12);
  QwportArray list = {&list, {}, 5};
  CHECK(NLSENUMLOCALES(&list) == 0);
  CHECK(list.base == nullptr);
  CHECK(list.extent == 0);
  CHECK(contains(core.calls(), "for__issue_diagnostic(2, 12, &)"));
  list = {&list, {}, 5};
  CHECK(NLSENUMCODEPAGES(&list) == 0);
  CHECK(list.base == nullptr);
  CHECK(list.extent == 0);
}

namespace {

UINT input_page, output_page;
bool has_console;
bool is_known(UINT page) { return has_console && (page == 437 || page == 932); }
UINT WINAPI get_input_page() { return input_page; }
BOOL WINAPI set_input_page(UINT page) {
  if (is_known(page)) input_page = page;
  return is_known(page);
}
BOOL WINAPI set_output_page(UINT page) {
  if (is_known(page) && page != 437) output_page = page;
  return is_known(page) && page != 437;
}

}  // namespace

TEST_CASE("the console's code pages change together, and the ANSI code page never") {
  const ImportOverride get(library(), "GetConsoleCP", get_input_page);
  const ImportOverride set_input(library(), "SetConsoleCP", set_input_page);
  const ImportOverride set_output(library(), "SetConsoleOutputCP", set_output_page);
  const int32_t console = QWPORT_NLS_CONSOLE_CODE_PAGE, windows = QWPORT_NLS_WINDOWS_CODE_PAGE, other = 3;
  const auto set = [](int32_t page, const int32_t &flags) { return NLSSETENVIRONMENTCODEPAGE(&page, &flags); };

  has_console = true;
  CHECK(set(932, console) == 0);
  CHECK(NLSGETENVIRONMENTCODEPAGE(&console) == 932);
  CHECK(output_page == 932);
  CHECK(set(12345, console) == -3);
  CHECK(set(437, console) == -3);  // refused for output
  CHECK(NLSGETENVIRONMENTCODEPAGE(&console) == 932);
  has_console = false;
  CHECK(set(932, console) == -3);

  const auto ansi = static_cast<int32_t>(GetACP());
  CHECK(NLSGETENVIRONMENTCODEPAGE(&windows) == ansi);
  CHECK(set(ansi, windows) == 0);
  CHECK(set(ansi + 1, windows) == -3);
  CHECK(set(ansi, other) == -6);
  CHECK(NLSGETENVIRONMENTCODEPAGE(&other) == -6);
}
