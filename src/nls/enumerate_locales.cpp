// SPDX-License-Identifier: MIT
// The list of the host's locales.
#include <cerrno>
#include <cstring>

#include "core_entries.h"
#include "locale.h"
#include "qwport.h"
#include "text.h"

namespace {

struct LocaleList {
  QwportLocale *locales;  // null: count them only
  int64_t room;
  int64_t count;
};

QwportLocale record_of(const wchar_t *name) {
  QwportLocale record;
  NarrowEnglishName text;
  portlib_narrow_english_name(name, LOCALE_SENGLISHLANGUAGENAME, text);
  portlib_place_text(record.language, sizeof record.language, text, std::strlen(text));
  portlib_narrow_english_name(name, LOCALE_SENGLISHCOUNTRYNAME, text);
  portlib_place_text(record.country, sizeof record.country, text, std::strlen(text));
  record.windows_code_page = static_cast<int32_t>(portlib_default_code_page(name, LOCALE_IDEFAULTANSICODEPAGE));
  record.console_code_page = static_cast<int32_t>(portlib_default_code_page(name, LOCALE_IDEFAULTCODEPAGE));
  return record;
}

BOOL CALLBACK list_locale(wchar_t *name, DWORD, LPARAM parameter) {
  auto &list = *reinterpret_cast<LocaleList *>(parameter);
  const bool is_invariant = name[0] == L'\0';
  if (is_invariant || portlib_is_neutral_locale(name)) return TRUE;
  if (list.locales != nullptr && list.count == list.room) return FALSE;
  if (list.locales != nullptr) list.locales[list.count] = record_of(name);
  ++list.count;
  return TRUE;
}

void report_failure(int32_t code, const char *text) {
  constexpr int32_t error = 2;
  core::for__issue_diagnostic(error, code, text);
}

// False, reported, if the host fails.
bool list_locales(LocaleList &list) {
  if (EnumSystemLocalesEx(list_locale, LOCALE_WINDOWS, reinterpret_cast<LPARAM>(&list), nullptr) != 0) return true;
  report_failure(EIO, "NLSENUMLOCALES: the system does not list its locales");
  return false;
}

}  // namespace

int32_t NLSENUMLOCALES(QwportArray *locales) {
  locales->base = nullptr;
  locales->extent = 0;
  LocaleList list{};
  if (!list_locales(list)) return 0;

  void *memory = nullptr;
  const size_t size = static_cast<size_t>(list.count) * sizeof(QwportLocale);
  if (core::for_allocate(size, &memory) != 0 || memory == nullptr) {
    report_failure(ENOMEM, "NLSENUMLOCALES: no memory for the list of locales");
    return 0;
  }
  list = {static_cast<QwportLocale *>(memory), list.count, 0};
  list_locales(list);  // the host has just listed them
  locales->base = list.locales;
  locales->extent = list.count;
  return static_cast<int32_t>(list.count);
}
