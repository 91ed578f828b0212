// SPDX-License-Identifier: MIT
// The list of the host's locales.
#include <cerrno>
#include <cstring>

#include "host_list.h"
#include "locale.h"
#include "qwport.h"
#include "text.h"

using namespace qwport::nls;

namespace {

QwportLocale record_of(const wchar_t *name) {
  QwportLocale record;
  NarrowEnglishName text;
  narrow_english_name(name, LOCALE_SENGLISHLANGUAGENAME, text);
  portlib_place_text(record.language, sizeof record.language, text, std::strlen(text));
  narrow_english_name(name, LOCALE_SENGLISHCOUNTRYNAME, text);
  portlib_place_text(record.country, sizeof record.country, text, std::strlen(text));
  record.windows_code_page = static_cast<int32_t>(default_code_page(name, LOCALE_IDEFAULTANSICODEPAGE));
  record.console_code_page = static_cast<int32_t>(default_code_page(name, LOCALE_IDEFAULTCODEPAGE));
  return record;
}

// Some hosts list locales without a country or without a language's name. NLSSETLOCALE could not choose them by what
// stands here: it would take the language's main country, or the user's language.
bool has_names(const QwportLocale &record) { return record.language[0] != ' ' && record.country[0] != ' '; }

BOOL CALLBACK list_locale(wchar_t *name, DWORD, LPARAM parameter) {
  auto &list = *reinterpret_cast<HostList<QwportLocale> *>(parameter);
  const bool is_invariant = name[0] == L'\0';
  if (is_invariant || is_neutral_locale(name)) return TRUE;
  const QwportLocale record = record_of(name);
  return !has_names(record) || list.add(record) ? TRUE : FALSE;
}

void report_failure(int32_t code, const char *text) {
  constexpr int32_t error = 2;
  core::for__issue_diagnostic(error, code, text);
}

}  // namespace

int32_t NLSENUMLOCALES(QwportArray *locales) {
  HostList<QwportLocale> list;
  if (EnumSystemLocalesEx(list_locale, LOCALE_WINDOWS, reinterpret_cast<LPARAM>(&list), nullptr) == 0) {
    report_failure(EIO, "NLSENUMLOCALES: the system does not list its locales");
    return 0;
  }
  if (list.is_cut || !list.give_out(locales)) {
    report_failure(ENOMEM, "NLSENUMLOCALES: no memory for the list of locales");
    return 0;
  }
  return static_cast<int32_t>(list.count);
}
