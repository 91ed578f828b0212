// SPDX-License-Identifier: MIT
#include "locale.h"

#include "lock.h"

namespace qwport::nls {

namespace {

PortlibLock lock;
Locale current{};  // no code page: none was chosen yet

DWORD number_of(const wchar_t *name, LCTYPE type) {
  DWORD number = 0;
  constexpr int size = sizeof number / sizeof(wchar_t);
  GetLocaleInfoEx(name, type | LOCALE_RETURN_NUMBER, reinterpret_cast<wchar_t *>(&number), size);
  return number;
}

}  // namespace

Locale current_locale() {
  const LockGuard guard(lock);
  if (current.code_page == 0) {
    current.code_page = GetACP();
    current.runtime_name[0] = 'C';  // every run-time begins with it
  }
  return current;
}

void set_current_locale(const Locale &locale) {
  const LockGuard guard(lock);
  current = locale;
}

bool is_neutral_locale(const wchar_t *name) { return number_of(name, LOCALE_INEUTRAL) != 0; }

void english_name(const wchar_t *name, LCTYPE type, EnglishName &text) {
  if (GetLocaleInfoEx(name, type, text, english_name_size) == 0) text[0] = L'\0';
}

void narrow_english_name(const wchar_t *name, LCTYPE type, NarrowEnglishName &text) {
  EnglishName wide;
  english_name(name, type, wide);
  if (WideCharToMultiByte(CP_ACP, 0, wide, -1, text, sizeof text, nullptr, nullptr) == 0) {
    text[0] = '\0';
  }
}

UINT default_code_page(const wchar_t *name, LCTYPE type) {
  // Locales without a code page of their own name the placeholders 0 (ANSI) and 1 (OEM).
  const UINT code_page = number_of(name, type);
  return code_page <= CP_OEMCP ? CP_UTF8 : code_page;
}

}  // namespace qwport::nls
