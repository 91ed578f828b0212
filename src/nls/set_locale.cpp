// SPDX-License-Identifier: MIT
// Choosing the locale by the English names of its language and country, and asking for it.
#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>

#include "core_entries.h"
#include "format.h"
#include "locale.h"
#include "qwport.h"
#include "text.h"

using namespace qwport::nls;

namespace {

// Names are compared as they are given out.
struct Search {
  NarrowEnglishName language;
  NarrowEnglishName country;  // empty: the language's main country
  bool language_is_known;
  wchar_t found[LOCALE_NAME_MAX_LENGTH];
};

bool is_called(const wchar_t *locale, LCTYPE type, const char *wanted) {
  NarrowEnglishName name;
  narrow_english_name(locale, type, name);
  return CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, name, -1, wanted, -1) == CSTR_EQUAL;
}

// The host's call-back for each locale: false ends the search.
BOOL CALLBACK try_locale(wchar_t *name, DWORD, LPARAM parameter) {
  auto &search = *reinterpret_cast<Search *>(parameter);
  const bool is_invariant = name[0] == L'\0';
  if (is_invariant || !is_called(name, LOCALE_SENGLISHLANGUAGENAME, search.language)) return TRUE;
  search.language_is_known = true;

  const bool is_neutral = is_neutral_locale(name);
  if (search.country[0] == '\0') {
    // The host knows the main country of a neutral locale; a language without one has the first that comes.
    if (is_neutral) return ResolveLocaleName(name, search.found, LOCALE_NAME_MAX_LENGTH) != 0 ? FALSE : TRUE;
    if (search.found[0] == L'\0') lstrcpyW(search.found, name);
    return TRUE;
  }
  if (is_neutral || !is_called(name, LOCALE_SENGLISHCOUNTRYNAME, search.country)) return TRUE;
  lstrcpyW(search.found, name);
  return FALSE;
}

// A CHARACTER argument as a name; false if it is too long for one.
bool read_name(const char *text, size_t length, NarrowEnglishName &name) {
  const size_t trimmed = text == nullptr ? 0 : portlib_trimmed_length(text, length);
  if (trimmed >= sizeof name) return false;
  *std::copy_n(text, trimmed, name) = '\0';
  return true;
}

// Finds the locale that the names mean.
int32_t find_locale(Search &search) {
  if (search.language[0] == '\0') {
    wchar_t *const found = search.found;
    if (GetUserDefaultLocaleName(found, LOCALE_NAME_MAX_LENGTH) == 0) return QWPORT_NLS_INVALID_LANGUAGE;
    if (search.country[0] == '\0') return QWPORT_NLS_NO_ERROR;
    narrow_english_name(found, LOCALE_SENGLISHLANGUAGENAME, search.language);
    found[0] = L'\0';
  }
  constexpr DWORD with_and_without_country = LOCALE_WINDOWS | LOCALE_NEUTRALDATA | LOCALE_SPECIFICDATA;
  EnumSystemLocalesEx(try_locale, with_and_without_country, reinterpret_cast<LPARAM>(&search), nullptr);
  if (!search.language_is_known) return QWPORT_NLS_INVALID_LANGUAGE;
  return search.found[0] != L'\0' ? QWPORT_NLS_NO_ERROR : QWPORT_NLS_INVALID_COUNTRY;
}

void copy_runtime_name(RuntimeLocaleName &name, const char *source) {
  portlib_format(name, sizeof name, "%s", source == nullptr ? "" : source);
}

// Has the run-time take a locale in all categories, or leaves it as it was.
bool set_runtime_locale(const char *wanted, RuntimeLocaleName &name) {
  RuntimeLocaleName previous;
  copy_runtime_name(previous, core::for__setlocale(LC_ALL, nullptr));
  const char *accepted = core::for__setlocale(LC_ALL, wanted);
  if (accepted == nullptr) return false;
  // Some run-times accept a code page that they do not know in some of the categories, and list them all.
  const bool is_partial = std::strchr(accepted, ';') != nullptr;
  if (is_partial)
    core::for__setlocale(LC_ALL, previous);
  else
    copy_runtime_name(name, accepted);
  return !is_partial;
}

// By its English names, which all run-times know, or by the host's short name, which newer ones know, where
// the former have characters that stand for something else. A run-time that knows neither stays neutral: this
// library's own routines do not need it.
bool choose_runtime_locale(Locale &locale) {
  NarrowEnglishName language;
  NarrowEnglishName country;
  narrow_english_name(locale.name, LOCALE_SENGLISHLANGUAGENAME, language);
  narrow_english_name(locale.name, LOCALE_SENGLISHCOUNTRYNAME, country);
  RuntimeLocaleName wanted;
  portlib_format(wanted, sizeof wanted, "%s_%s.%u", language, country, locale.code_page);
  if (set_runtime_locale(wanted, locale.runtime_name)) return true;
  portlib_format(wanted, sizeof wanted, "%ls.%u", locale.name, locale.code_page);
  return set_runtime_locale(wanted, locale.runtime_name) || set_runtime_locale("C", locale.runtime_name);
}

struct LocaleNames {
  NarrowEnglishName language;
  NarrowEnglishName country;
  int32_t code_page;
};

LocaleNames names_of(const Locale &locale) {
  LocaleNames names;
  narrow_english_name(host_name(locale), LOCALE_SENGLISHLANGUAGENAME, names.language);
  narrow_english_name(host_name(locale), LOCALE_SENGLISHCOUNTRYNAME, names.country);
  names.code_page = static_cast<int32_t>(locale.code_page);
  return names;
}

// Takes a run-time's name apart: language_country.page, where all but the language may be missing.
LocaleNames names_of(const char *runtime_name) {
  LocaleNames names{};
  const size_t whole = std::strlen(runtime_name);
  const char *dot = std::strrchr(runtime_name, '.');
  const size_t stem = dot == nullptr ? whole : static_cast<size_t>(dot - runtime_name);
  const auto *underscore = static_cast<const char *>(std::memchr(runtime_name, '_', stem));
  const size_t language = underscore == nullptr ? stem : static_cast<size_t>(underscore - runtime_name);
  portlib_format(names.language, sizeof names.language, "%.*s", static_cast<int>(language), runtime_name);
  if (underscore != nullptr) {
    const auto country = static_cast<int>(stem - language - 1);
    portlib_format(names.country, sizeof names.country, "%.*s", country, underscore + 1);
  }
  if (dot != nullptr) {
    const auto number = static_cast<int32_t>(std::strtol(dot + 1, nullptr, 10));
    names.code_page = number != 0 ? number : CP_UTF8;  // "utf8"
  }
  return names;
}

}  // namespace

int32_t NLSSETLOCALE(const char *language, const char *country, const int32_t *codepage, size_t language_len,
                     size_t country_len) {
  Search search{};
  if (!read_name(language, language_len, search.language)) return QWPORT_NLS_INVALID_LANGUAGE;
  const bool country_fits = read_name(country, country_len, search.country);
  const int32_t status = find_locale(search);
  if (status != QWPORT_NLS_NO_ERROR) return status;
  if (!country_fits) return QWPORT_NLS_INVALID_COUNTRY;

  Locale locale{};
  lstrcpyW(locale.name, search.found);
  locale.code_page =
      codepage != nullptr ? static_cast<UINT>(*codepage) : default_code_page(locale.name, LOCALE_IDEFAULTANSICODEPAGE);
  if (IsValidCodePage(locale.code_page) == 0 || !choose_runtime_locale(locale)) return QWPORT_NLS_INVALID_CODE_PAGE;
  set_current_locale(locale);
  return QWPORT_NLS_NO_ERROR;
}

void NLSGETLOCALE(char *language, char *country, int32_t *codepage, size_t language_len, size_t country_len) {
  const Locale locale = current_locale();
  // One category: Fortran I/O changes that of numbers for a while.
  const char *runtime_name = core::for__setlocale(LC_CTYPE, nullptr);
  const bool is_ours = runtime_name == nullptr || std::strcmp(runtime_name, locale.runtime_name) == 0;
  const LocaleNames names = is_ours ? names_of(locale) : names_of(runtime_name);
  if (language != nullptr) portlib_place_text(language, language_len, names.language, std::strlen(names.language));
  if (country != nullptr) portlib_place_text(country, country_len, names.country, std::strlen(names.country));
  if (codepage != nullptr) *codepage = names.code_page;
}
