// SPDX-License-Identifier: MIT
// Information of the locale, and numbers, dates and times as it writes them.
#include <algorithm>
#include <ctime>

#include "locale.h"
#include "qwport.h"
#include "text.h"

using namespace qwport::nls;

namespace {

// No text of a locale and no number that someone reads comes near it.
constexpr int wide_text_size = 1024;
using WideText = wchar_t[wide_text_size];

// Gives out what the host wrote, size characters with the NUL, in the locale's code page.
int32_t put_answer(const WideText &text, int size, UINT code_page, char *outstr, size_t outstr_len) {
  if (size <= 0) return QWPORT_NLS_SYSTEM_FAILURE;
  char narrow[3 * wide_text_size];
  const int length = WideCharToMultiByte(code_page, 0, text, size - 1, narrow, sizeof narrow, nullptr, nullptr);
  if (length == 0 && size > 1) return QWPORT_NLS_SYSTEM_FAILURE;
  if (static_cast<size_t>(length) > outstr_len) return QWPORT_NLS_OVERFLOW;
  portlib_place_text(outstr, outstr_len, narrow, static_cast<size_t>(length));
  return length;
}

// False if there are flags other than the allowed ones.
bool read_flags(const int32_t *flags, DWORD allowed, DWORD &host_flags) {
  host_flags = flags == nullptr ? 0 : static_cast<DWORD>(*flags);
  return (host_flags & ~(allowed | LOCALE_NOUSEROVERRIDE)) == 0;
}

// Reads an optional sign and digits with at most one point, blanks around; false for any other text.
bool read_number(const char *text, size_t length, WideText &number) {
  const char *end = text + portlib_trimmed_length(text, length);
  const char *begin = std::find_if(text, end, [](char c) { return c != ' '; });
  if (end - begin >= wide_text_size) return false;
  const char *digits = begin != end && *begin == '-' ? begin + 1 : begin;
  const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
  const auto digit_count = std::count_if(digits, end, is_digit);
  const auto point_count = std::count(digits, end, '.');
  if (digit_count == 0 || point_count > 1 || digit_count + point_count != end - digits) return false;
  *std::copy(begin, end, number) = L'\0';
  return true;
}

template <class HostFormat>
int32_t format_number(HostFormat host_format, char *outstr, const char *intext, const int32_t *flags, size_t outstr_len,
                      size_t intext_len) {
  WideText number;
  DWORD host_flags = 0;
  if (!read_number(intext, intext_len, number)) return QWPORT_NLS_INVALID_INPUT;
  if (!read_flags(flags, 0, host_flags)) return QWPORT_NLS_INVALID_FLAGS;
  const Locale locale = current_locale();
  WideText text;
  const int size = host_format(host_name(locale), host_flags, number, nullptr, text, wide_text_size);
  return put_answer(text, size, locale.code_page, outstr, outstr_len);
}

// The time, or now, in local time as UNPACKTIMEQQ gives it; false for a time that has none.
bool read_time(const int32_t *seconds_since_1970, SYSTEMTIME &time) {
  const std::time_t seconds = seconds_since_1970 != nullptr ? *seconds_since_1970 : std::time(nullptr);
  const std::tm *local = std::localtime(&seconds);
  if (local == nullptr) return false;
  time = {};
  time.wYear = static_cast<WORD>(local->tm_year + 1900);
  time.wMonth = static_cast<WORD>(local->tm_mon + 1);
  time.wDayOfWeek = static_cast<WORD>(local->tm_wday);
  time.wDay = static_cast<WORD>(local->tm_mday);
  time.wHour = static_cast<WORD>(local->tm_hour);
  time.wMinute = static_cast<WORD>(local->tm_min);
  time.wSecond = static_cast<WORD>(local->tm_sec);
  return true;
}

}  // namespace

int32_t NLSGETLOCALEINFO(const int32_t *type, char *outstr, size_t outstr_len) {
  const auto host_type = static_cast<LCTYPE>(*type);
  if ((host_type & LOCALE_RETURN_NUMBER) != 0) return QWPORT_NLS_INVALID_TYPE;  // not a text
  const Locale locale = current_locale();
  WideText text;
  const int size = GetLocaleInfoEx(host_name(locale), host_type, text, wide_text_size);
  if (size == 0) return QWPORT_NLS_INVALID_TYPE;
  return put_answer(text, size, locale.code_page, outstr, outstr_len);
}

int32_t NLSFORMATNUMBER(char *outstr, const char *intext, const int32_t *flags, size_t outstr_len, size_t intext_len) {
  return format_number(GetNumberFormatEx, outstr, intext, flags, outstr_len, intext_len);
}

int32_t NLSFORMATCURRENCY(char *outstr, const char *intext, const int32_t *flags, size_t outstr_len,
                          size_t intext_len) {
  return format_number(GetCurrencyFormatEx, outstr, intext, flags, outstr_len, intext_len);
}

int32_t NLSFORMATDATE(char *outstr, const int32_t *intime, const int32_t *flags, size_t outstr_len) {
  constexpr DWORD short_and_long = DATE_SHORTDATE | DATE_LONGDATE;
  DWORD host_flags = 0;
  if (!read_flags(flags, short_and_long | DATE_USE_ALT_CALENDAR, host_flags) ||
      (host_flags & short_and_long) == short_and_long)
    return QWPORT_NLS_INVALID_FLAGS;
  SYSTEMTIME time;
  if (!read_time(intime, time)) return QWPORT_NLS_INVALID_INPUT;
  const Locale locale = current_locale();
  WideText text;
  const int size = GetDateFormatEx(host_name(locale), host_flags, &time, nullptr, text, wide_text_size, nullptr);
  return put_answer(text, size, locale.code_page, outstr, outstr_len);
}

int32_t NLSFORMATTIME(char *outstr, const int32_t *intime, const int32_t *flags, size_t outstr_len) {
  DWORD host_flags = 0;
  if (!read_flags(flags, TIME_NOMINUTESORSECONDS | TIME_NOSECONDS | TIME_NOTIMEMARKER | TIME_FORCE24HOURFORMAT,
                  host_flags))
    return QWPORT_NLS_INVALID_FLAGS;
  SYSTEMTIME time;
  if (!read_time(intime, time)) return QWPORT_NLS_INVALID_INPUT;
  const Locale locale = current_locale();
  WideText text;
  const int size = GetTimeFormatEx(host_name(locale), host_flags, &time, nullptr, text, wide_text_size);
  return put_answer(text, size, locale.code_page, outstr, outstr_len);
}
