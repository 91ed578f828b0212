// SPDX-License-Identifier: MIT
// Choosing a locale and writing by it, on the host's locales and a recorded run-time; and code pages of a
// simulated console.
#include <ctime>
#include <regex>

#include "library_test.h"
#include "thread.h"

namespace {

int32_t set_locale(std::string_view language, std::string_view country = "", int32_t code_page = 0) {
  return call(NLSSETLOCALE, language, country, code_page == 0 ? nullptr : &code_page);
}

// What the run-time answers to every setlocale.
void runtime_answers(const char *name) { RecordingCore::answer("for__setlocale", reinterpret_cast<intptr_t>(name)); }

// "result|text|text" without the blanks that end each.
std::string shown(auto routine, auto &&...arguments) {
  return std::regex_replace(outcome(routine, arguments...), std::regex(" +(\\||$)"), "$1");
}

std::string locale_in_force() {
  int32_t code_page = -1;
  const std::string names = shown(NLSGETLOCALE, Room{64}, Room{64}, &code_page);
  return names + '|' + std::to_string(code_page);
}

std::string number(const char *value, int32_t flags = 0) { return shown(NLSFORMATNUMBER, Room{60}, value, flags); }
std::string date(const int32_t *seconds, int32_t flags) { return shown(NLSFORMATDATE, Room{60}, seconds, flags); }

int32_t local_time(std::tm local) { return static_cast<int32_t>(std::mktime(&local)); }
const int32_t afternoon = local_time({9, 7, 14, 5, 2, 2024 - 1900, 0, 0, -1});  // 2024-03-05 14:07:09

bool contains(const std::string &text, const char *part) { return text.find(part) != std::string::npos; }

struct Nls {
  Nls() { runtime_answers("taken"); }
  RecordingCore core;
};

// A console that knows 932, and 437 for input only.
UINT input_page = 932, output_page = 1;
BOOL WINAPI set_input_page(UINT page) { return page == 932 || page == 437 ? (input_page = page, TRUE) : FALSE; }
BOOL WINAPI set_output_page(UINT page) { return page == 932 ? (output_page = page, TRUE) : FALSE; }

}  // namespace

TEST_CASE_FIXTURE(Nls, "locales write in their own way and in their code page") {
  constexpr int32_t clock = TIME_FORCE24HOURFORMAT | TIME_NOTIMEMARKER;
  // Names, the locale in force, and parts of -1234.567, of 1234.5 in money and of the long date; the decimal point.
  const char *const rows[][7] = {
      {"english", "", "English|United States|1252", "9|-1,234.57", "$1,234.50", "March 5, 2024", "1|."},
      {"GERMAN", "germany", "German|Germany|1252", "9|-1.234,57", "1.234,50 \x80", "5. M\xE4rz 2024", "1|,"},
      {"Polish", "", "Polish|Poland|1250", "234,57", "234,50 z\xB3", "5 marca 2024", "1|,"},
      {"Japanese", "Japan", "Japanese|Japan|932", "9|-1,234.57", "1,235", "2024\x94N", "1|."}};
  for (const auto &[language, country, in_force, negative, money, long_date, point] : rows) {
    CAPTURE(language);
    REQUIRE(set_locale(language, country) == 0);
    CHECK((locale_in_force() == in_force && shown(NLSGETLOCALEINFO, LOCALE_SDECIMAL, Room{60}) == point));
    CHECK(contains(number("-1234.567"), negative));
    CHECK(contains(shown(NLSFORMATCURRENCY, Room{60}, "1234.5", nullptr), money));
    CHECK((contains(date(&afternoon, DATE_LONGDATE), long_date) && !contains(date(&afternoon, 0), long_date)));
    CHECK(shown(NLSFORMATTIME, Room{8}, afternoon, clock) == "8|14:07:09");
    CHECK(shown(NLSFORMATTIME, Room{7}, afternoon, clock) == "-7|#######");
    CHECK(shown(NLSFORMATTIME, Room{8}, afternoon, clock | TIME_NOSECONDS) == "5|14:07");
  }
  REQUIRE(set_locale("Japanese", "Japan", 65001) == 0);
  CHECK(contains(date(&afternoon, DATE_LONGDATE), "2024\xE5\xB9\xB4"));
  REQUIRE(set_locale("English", "United Kingdom") == 0);
  CHECK(shown(NLSGETLOCALEINFO, LOCALE_SINTLSYMBOL, Room{3}) == "3|GBP");
  REQUIRE(set_locale("") == 0);
  const std::string users = locale_in_force(), country = users.substr(0, users.rfind('|')).substr(users.find('|') + 1);
  CHECK((set_locale("", country) == 0 && locale_in_force() == users));
  const auto before = static_cast<int32_t>(std::time(nullptr));
  const std::string today = date(nullptr, 0);
  const auto after = static_cast<int32_t>(std::time(nullptr));
  CHECK((today == date(&before, 0) || today == date(&after, 0)));
}

TEST_CASE_FIXTURE(Nls, "what makes no sense is told, and outputs stay") {
  REQUIRE(set_locale("English") == 0);
  CHECK((number("  -12.5   ") == "6|-12.50" && number(".5") == "4|0.50"));
  CHECK(number("5.", static_cast<int32_t>(LOCALE_NOUSEROVERRIDE)) == "4|5.00");
  const std::string many_digits(1024, '1');
  for (const char *text : {"", "  ", "-.", "1.2.3", "1,5", "+5", "--5", "1-", "1 2", many_digits.c_str()})
    CHECK_MESSAGE(number(text).starts_with("-5|###"), text);
  const int32_t no_time = -1;
  CHECK((number("1", 1).starts_with("-6|###") && date(&no_time, 0).starts_with("-5|###")));
  CHECK(date(&afternoon, DATE_SHORTDATE | DATE_LONGDATE).starts_with("-6|###"));
  CHECK(shown(NLSFORMATTIME, Room{8}, afternoon, 16) == "-6|########");
  for (const int32_t type : {0xFFF, LOCALE_IDIGITS | LOCALE_RETURN_NUMBER})
    CHECK(shown(NLSGETLOCALEINFO, type, Room{3}) == "-4|###");
}

TEST_CASE_FIXTURE(Nls, "a locale is chosen as a whole or not at all") {
  REQUIRE(set_locale("German", "", 850) == 0);
  CHECK(core.calls() == "for__setlocale(0, null) for__setlocale(0, &)");
  const std::string long_name(200, 'x');
  for (const char *language : {"Klingon", long_name.c_str()}) CHECK(set_locale(language) == -1);
  for (const char *country : {"Japan", "Qo'noS", long_name.c_str()}) CHECK(set_locale("German", country) == -2);
  for (const int32_t code_page : {12345, -1}) CHECK(set_locale("German", "Austria", code_page) == -3);
  runtime_answers(nullptr);
  CHECK(set_locale("French") == -3);
  core.calls();
  runtime_answers("LC_COLLATE=French_France.65001;LC_CTYPE=C");
  CHECK(set_locale("French", "", 65001) == -3);
  const std::string attempt = "for__setlocale(0, null) for__setlocale(0, &) for__setlocale(0, &)";
  CHECK(core.calls() == attempt + ' ' + attempt + ' ' + attempt);  // each asks, tries and restores
  runtime_answers("taken");
  CHECK((locale_in_force() == "German|Germany|850" && number("1.5") == "4|1,50"));
  // C code may choose another for the run-time.
  for (const auto &[name, expected] : {std::pair{"English_St. Helena.1252", "English|St. Helena|1252"},
                                       {"de_DE.utf8", "de|DE|65001"},
                                       {"de-DE", "de-DE||0"},
                                       {"C_or_other", "C|or_other|0"}}) {
    runtime_answers(name);
    CHECK(locale_in_force() == expected);
  }
}

TEST_CASE_FIXTURE(Nls, "eight threads write by one locale") {
  REQUIRE(set_locale("German") == 0);
  const auto count_errors = [](void *) -> DWORD {
    DWORD errors = 0;
    for (int round = 0; round < 100; ++round) errors += number("-1234.567") == "9|-1.234,57" ? 0 : 1;
    return errors;
  };
  CHECK(on_eight_threads(count_errors) == 0);
}

TEST_CASE_FIXTURE(Nls, "a list that fails is told and changes nothing") {
  const auto check_failure = [&](const char *diagnostic) {
    for (const auto enumerate : {NLSENUMLOCALES, NLSENUMCODEPAGES}) {
      QwportArray list = {&list, {}, 5};
      CHECK((enumerate(&list) == 0 && list.base == &list && list.extent == 5));
    }
    CHECK(contains(core.calls(), diagnostic));
  };
  RecordingCore::answer("for_allocate", 12);
  check_failure("for__issue_diagnostic(2, 12, &)");
  const ImportOverride locales(library(), "EnumSystemLocalesEx", [] { return FALSE; });
  const ImportOverride pages(library(), "EnumSystemCodePagesW", [] { return FALSE; });
  check_failure("for__issue_diagnostic(2, 5, &)");
}

TEST_CASE_FIXTURE(Nls, "locales without a country, which some hosts list, are left out") {
  const ImportOverride locales(library(), "EnumSystemLocalesEx", [](LOCALE_ENUMPROCEX list, DWORD, LPARAM parameter) {
    wchar_t names[][6] = {L"fr-FR", L"de-AT"};
    for (auto &name : names) list(name, 0, parameter);
    return TRUE;
  });
  const auto tell_some_names = [](const wchar_t *name, LCTYPE type, wchar_t *text, int size) {
    const bool is_unknown = type == LOCALE_SENGLISHCOUNTRYNAME && name[0] == L'f';
    return is_unknown ? 0 : GetLocaleInfoEx(name, type, text, size);
  };
  const ImportOverride information(library(), "GetLocaleInfoEx", tell_some_names);
  QwportArray list = {};
  NLSENUMLOCALES(&list);
  CHECK(core.calls().starts_with("for_allocate(" + std::to_string(sizeof(QwportLocale)) + ", &)"));
}

TEST_CASE("the console's code pages change together, and the ANSI code page never") {
  const ImportOverride get(library(), "GetConsoleCP", [] { return input_page; });
  const ImportOverride set_input(library(), "SetConsoleCP", set_input_page);
  const ImportOverride set_output(library(), "SetConsoleOutputCP", set_output_page);
  const auto ansi = static_cast<int32_t>(GetACP());
  const int32_t console = QWPORT_NLS_CONSOLE_CODE_PAGE, windows = QWPORT_NLS_WINDOWS_CODE_PAGE, other = 3;
  const std::tuple<int32_t, int32_t, int32_t, int32_t> rows[] = {
      {932, console, 0, 932},   {12345, console, -3, 932},     {437, console, -3, 932},  // refused for output
      {ansi, windows, 0, ansi}, {ansi + 1, windows, -3, ansi}, {ansi, other, -6, -6}};
  for (const auto &[page, flags, expected, in_force] : rows) {
    CHECK(call(NLSSETENVIRONMENTCODEPAGE, page, flags) == expected);
    CHECK(call(NLSGETENVIRONMENTCODEPAGE, flags) == in_force);
  }
  CHECK(output_page == 932);
}
