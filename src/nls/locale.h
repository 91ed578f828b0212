// SPDX-License-Identifier: MIT
// The locale of the process, and what the host knows of a locale.
#pragma once

#include <cstddef>
#include <cstdint>

#include <windows.h>

namespace qwport::nls {

// A name that the host gives in English, such as that of a language, with room for its NUL.
constexpr int english_name_size = 128;
using EnglishName = wchar_t[english_name_size];
using NarrowEnglishName = char[3 * english_name_size];

// The name of a run-time's locale, which may have one name for each category.
constexpr size_t runtime_locale_size = 1024;
using RuntimeLocaleName = char[runtime_locale_size];

struct Locale {
  wchar_t name[LOCALE_NAME_MAX_LENGTH];  // empty for the user's default
  UINT code_page;                        // of texts that go in and come out
  RuntimeLocaleName runtime_name;        // of the run-time when this locale was chosen
};

// The locale in force.
Locale current_locale();
void set_current_locale(const Locale &locale);

// The name as the host's calls want it.
inline const wchar_t *host_name(const Locale &locale) {
  return locale.name[0] == L'\0' ? LOCALE_NAME_USER_DEFAULT : locale.name;
}

// A locale that stands for a language alone, without a country.
bool is_neutral_locale(const wchar_t *name);

// The English name of a locale's language or country (LOCALE_SENGLISH...); empty if the host has none.
void english_name(const wchar_t *name, LCTYPE type, EnglishName &text);
// The same in the ANSI code page.
void narrow_english_name(const wchar_t *name, LCTYPE type, NarrowEnglishName &text);

// A default code page of a locale (LOCALE_IDEFAULT...); UTF-8 for a locale that has only Unicode.
UINT default_code_page(const wchar_t *name, LCTYPE type);

}  // namespace qwport::nls
