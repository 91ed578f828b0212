// SPDX-License-Identifier: MIT
// Choosing a locale and writing by it, on the host's locales and a recorded run-time; and code pages of a
// simulated console.
#include <ctime>

#include "library_test.h"
#include "thread.h"

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

// "result|text" of the routines that fill a text.
using NumberFormat = int32_t (*)(char *, const char *, const int32_t *, size_t, size_t);
std::string number(std::string_view value, int32_t flags = 0, NumberFormat format = NLSFORMATNUMBER) {
  return trimmed(outcome(format, Room{60}, value, flags));
}

using TimeFormat = int32_t (*)(char *, const int32_t *, const int32_t *, size_t);
std::string moment(TimeFormat format, const int32_t *seconds, int32_t flags, size_t length = 60) {
  return trimmed(outcome(format, Room{length}, seconds, flags));
}

std::string information(int32_t type, size_t length = 60) {
  return trimmed(outcome(NLSGETLOCALEINFO, type, Room{length}));
}

int32_t local_time(std::tm local) { return static_cast<int32_t>(std::mktime(&local)); }
const int32_t afternoon = local_time({9, 7, 14, 5, 2, 2024 - 1900, 0, 0, -1});  // 2024-03-05 14:07:09

bool contains(const std::string &text, const char *part) { return text.find(part) != std::string::npos; }

// A console that knows 932, and 437 for input only.
UINT input_page = 932, output_page = 1;
UINT WINAPI get_input_page() { return input_page; }
BOOL WINAPI set_input_page(UINT page) { return page == 932 || page == 437 ? (input_page = page, TRUE) : FALSE; }
BOOL WINAPI set_output_page(UINT page) { return page == 932 ? (output_page = page, TRUE) : FALSE; }

}  // namespace

constexpr int32_t clock_flags = TIME_FORCE24HOURFORMAT | TIME_NOTIMEMARKER;

TEST_CASE("locales write in their own way and in their code page") {
  RecordingCore core;
  runtime_answers("taken");
  struct Case {
    const char *language, *country, *in_force;
    const char *number, *money, *date, *decimal;  // parts of -1234.567, of 1234.5 in money, of the long date
  };
  const Case cases[] = {
      {"english", "", "English/United States/1252", "9|-1,234.57", "$1,234.50", "March 5, 2024", "1|."},
      {"GERMAN", "germany", "German/Germany/1252", "9|-1.234,57", "1.234,50 \x80", "5. M\xE4rz 2024", "1|,"},
      {"Polish", "", "Polish/Poland/1250", "234,57", "234,50 z\xB3", "5 marca 2024", "1|,"},
      {"Japanese", "Japan", "Japanese/Japan/932", "9|-1,234.57", "1,235", "2024\x94N", "1|."},
  };
  for (const Case &locale : cases) {
    CAPTURE(locale.language);
    REQUIRE(set_locale(locale.language, locale.country) == 0);
    CHECK(locale_in_force() == locale.in_force);
    CHECK(contains(number("-1234.567"), locale.number));
    CHECK(contains(number("1234.5", 0, NLSFORMATCURRENCY), locale.money));
    CHECK(contains(moment(NLSFORMATDATE, &afternoon, DATE_LONGDATE), locale.date));
    CHECK(!contains(moment(NLSFORMATDATE, &afternoon, 0), locale.date));
    CHECK(moment(NLSFORMATTIME, &afternoon, clock_flags) == "8|14:07:09");
    CHECK(moment(NLSFORMATTIME, &afternoon, clock_flags | TIME_NOSECONDS) == "5|14:07");
    CHECK(information(LOCALE_SDECIMAL) == locale.decimal);
  }
  REQUIRE(set_locale("Japanese", "Japan", 65001) == 0);
  CHECK(contains(moment(NLSFORMATDATE, &afternoon, DATE_LONGDATE), "2024\xE5\xB9\xB4"));
  REQUIRE(set_locale("English", "United Kingdom") == 0);
  CHECK(information(LOCALE_SINTLSYMBOL) == "3|GBP");
  REQUIRE(set_locale("") == 0);
  const auto before = static_cast<int32_t>(std::time(nullptr));
  const std::string today = moment(NLSFORMATDATE, nullptr, 0);
  const auto after = static_cast<int32_t>(std::time(nullptr));
  CHECK((today == moment(NLSFORMATDATE, &before, 0) || today == moment(NLSFORMATDATE, &after, 0)));
}

TEST_CASE("what makes no sense or does not fit is told, and outputs stay") {
  RecordingCore core;
  runtime_answers("taken");
  REQUIRE(set_locale("English") == 0);
  const std::string many_digits(1024, '1');
  const int32_t no_time = -1;
  CHECK(number("  -12.5   ") == "6|-12.50");
  CHECK(number(".5") == "4|0.50");
  CHECK(number("5.", static_cast<int32_t>(LOCALE_NOUSEROVERRIDE)) == "4|5.00");
  for (const char *text : {"", "  ", "-.", "1.2.3", "1,5", "+5", "--5", "1-", "1 2", many_digits.c_str()}) {
    CAPTURE(text);
    CHECK(number(text).starts_with("-5|###"));
  }
  CHECK(number("1", 1).starts_with("-6|###"));
  CHECK(moment(NLSFORMATDATE, &afternoon, DATE_SHORTDATE | DATE_LONGDATE).starts_with("-6|###"));
  CHECK(moment(NLSFORMATTIME, &afternoon, 16).starts_with("-6|###"));
  CHECK(moment(NLSFORMATDATE, &no_time, 0).starts_with("-5|###"));
  CHECK(moment(NLSFORMATTIME, &afternoon, clock_flags, 8) == "8|14:07:09");
  CHECK(moment(NLSFORMATTIME, &afternoon, clock_flags, 7) == "-7|#######");
  CHECK(information(0xFFF, 3) == "-4|###");
  CHECK(information(LOCALE_IDIGITS | LOCALE_RETURN_NUMBER, 3) == "-4|###");
}

TEST_CASE("a locale is chosen as a whole or not at all") {
  RecordingCore core;
  runtime_answers("first");
  REQUIRE(set_locale("German", "", 850) == 0);
  CHECK(core.calls() == "for__setlocale(0, null) for__setlocale(0, &)");
  CHECK(locale_in_force() == "German/Germany/850");

  const std::string long_name(200, 'x');
  for (const char *language : {"Klingon", long_name.c_str()}) CHECK(set_locale(language) == -1);
  for (const char *country : {"Japan", "Qo'noS", long_name.c_str()}) CHECK(set_locale("German", country) == -2);
  for (const int32_t code_page : {12345, -1}) CHECK(set_locale("German", "Austria", code_page) == -3);
  runtime_answers(nullptr);
  CHECK(set_locale("French") == -3);
  CHECK(locale_in_force() == "German/Germany/850");
  core.calls();
  runtime_answers("LC_COLLATE=French_France.65001;LC_CTYPE=C");
  CHECK(set_locale("French", "", 65001) == -3);
  const std::string attempt = "for__setlocale(0, null) for__setlocale(0, &) for__setlocale(0, &)";
  CHECK(core.calls() == attempt + ' ' + attempt + ' ' + attempt);  // each asks, tries and restores
  runtime_answers("first");
  CHECK(locale_in_force() == "German/Germany/850");
  CHECK(number("1.5") == "4|1,50");
}

TEST_CASE("the locale that C code chose for the run-time is told") {
  RecordingCore core;
  const std::pair<const char *, const char *> names[] = {{"English_St. Helena.1252", "English/St. Helena/1252"},
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

TEST_CASE("eight threads write by one locale") {
  RecordingCore core;
  runtime_answers("taken");
  REQUIRE(set_locale("German") == 0);
  const auto count_errors = [](void *) -> DWORD {
    DWORD errors = 0;
    for (int round = 0; round < 100; ++round) errors += number("-1234.567") == "9|-1.234,57" ? 0 : 1;
    return errors;
  };
  CHECK(on_eight_threads(count_errors) == 0);
}

TEST_CASE("a list that fails is told and changes nothing") {
  RecordingCore core;
  const auto check_failure = [&](const char *diagnostic) {
    for (const auto enumerate : {NLSENUMLOCALES, NLSENUMCODEPAGES}) {
      QwportArray list = {&list, {}, 5};
      CHECK((enumerate(&list) == 0 && list.base == &list && list.extent == 5));
    }
    CHECK(contains(core.calls(), diagnostic));
  };
  RecordingCore::answer("for_allocate", 12);
  check_failure("for__issue_diagnostic(2, 12, &)");
  {
    const ImportOverride no_memory(library(), "realloc", [](void *, size_t) -> void * { return nullptr; });
    check_failure("for__issue_diagnostic(2, 12, &)");
  }
  const ImportOverride locales(library(), "EnumSystemLocalesEx",
                               [](LOCALE_ENUMPROCEX, DWORD, LPARAM, void *) { return FALSE; });
  const ImportOverride pages(library(), "EnumSystemCodePagesW", [](CODEPAGE_ENUMPROCW, DWORD) { return FALSE; });
  check_failure("for__issue_diagnostic(2, 5, &)");
}

TEST_CASE("locales without a country, which some hosts list, are left out") {
  RecordingCore core;
  const ImportOverride locales(library(), "EnumSystemLocalesEx",
                               [](LOCALE_ENUMPROCEX list, DWORD, LPARAM parameter, void *) {
                                 wchar_t names[][6] = {L"", L"de", L"fr-FR", L"de-AT"};
                                 for (auto &name : names) {
                                   if (list(name, 0, parameter) == FALSE) return FALSE;
                                 }
                                 return TRUE;
                               });
  const ImportOverride information(library(), "GetLocaleInfoEx",
                                   [](const wchar_t *name, LCTYPE type, wchar_t *text, int size) {
                                     if (type == LOCALE_SENGLISHCOUNTRYNAME && std::wstring_view(name) == L"fr-FR")
                                       return *text = 0, 1;
                                     return GetLocaleInfoEx(name, type, text, size);
                                   });
  QwportArray list = {};
  NLSENUMLOCALES(&list);
  CHECK(core.calls().starts_with("for_allocate(" + std::to_string(sizeof(QwportLocale)) + ", &)"));
}

TEST_CASE("the console's code pages change together, and the ANSI code page never") {
  const ImportOverride get(library(), "GetConsoleCP", get_input_page);
  const ImportOverride set_input(library(), "SetConsoleCP", set_input_page);
  const ImportOverride set_output(library(), "SetConsoleOutputCP", set_output_page);
  const int32_t console = QWPORT_NLS_CONSOLE_CODE_PAGE, windows = QWPORT_NLS_WINDOWS_CODE_PAGE, other = 3;
  const auto set = [](int32_t page, int32_t flags) { return call(NLSSETENVIRONMENTCODEPAGE, page, flags); };
  CHECK((set(932, console) == 0 && output_page == 932));
  for (const int32_t page : {12345, 437}) CHECK(set(page, console) == -3);  // 437: refused for output
  CHECK(NLSGETENVIRONMENTCODEPAGE(&console) == 932);

  const auto ansi = static_cast<int32_t>(GetACP());
  CHECK(NLSGETENVIRONMENTCODEPAGE(&windows) == ansi);
  CHECK((set(ansi, windows) == 0 && set(ansi + 1, windows) == -3));
  CHECK((set(ansi, other) == -6 && NLSGETENVIRONMENTCODEPAGE(&other) == -6));
}
