// SPDX-License-Identifier: MIT
// Texts of the ANSI code page to UTF-16 and back.
#include <algorithm>

#include "multibyte.h"
#include "qwport.h"
#include "text.h"

using namespace qwport::multibyte;

namespace {

static_assert(offsetof(QwportArray, extent) == 48, "callers keep the extent in the seventh word");
static_assert(sizeof(wchar_t) == sizeof(int16_t), "elements are the host's characters");

struct Utf16 {
  wchar_t *characters;
  int64_t extent;
};

Utf16 utf16_of(const QwportArray *array) {
  if (array == nullptr || array->base == nullptr) return {nullptr, 0};
  return {static_cast<wchar_t *>(array->base), array->extent};
}

void fill_with_blanks(Utf16 array, int64_t converted) {
  std::fill_n(array.characters + converted, std::max<int64_t>(array.extent - converted, 0), L' ');
}

DWORD flags_or(const int32_t *flags, DWORD default_flags) {
  return flags == nullptr ? default_flags : static_cast<DWORD>(*flags);
}

int32_t negated_os_error() { return -static_cast<int32_t>(GetLastError()); }

// What is to be converted must be so few that the host can take and count it.
constexpr int64_t most_elements = INT_MAX;
constexpr int32_t too_many = -ERROR_INVALID_PARAMETER;

}  // namespace

int32_t MBCONVERTMBTOUNICODE(const char *mbtext, const QwportArray *utf16, const int32_t *flags, size_t mbtext_len) {
  if (mbtext == nullptr || static_cast<ptrdiff_t>(mbtext_len) < 1) return 0;
  const size_t trimmed = portlib_trimmed_length(mbtext, mbtext_len);
  const Utf16 array = utf16_of(utf16);
  if (trimmed == 0) {
    fill_with_blanks(array, 0);
    return 0;
  }

  if (trimmed > most_elements) return too_many;
  const auto length = static_cast<int>(trimmed);
  const int extent = host_room(array.extent);
  const int converted =
      MultiByteToWideChar(GetACP(), flags_or(flags, MB_PRECOMPOSED), mbtext, length, array.characters, extent);
  if (converted == 0) return negated_os_error();
  if (extent != 0) fill_with_blanks(array, converted);  // extent 0 asked for the size
  return converted;
}

int32_t MBCONVERTUNICODETOMB(const QwportArray *utf16, char *mbtext, const int32_t *flags, size_t mbtext_len) {
  const Utf16 array = utf16_of(utf16);
  const ptrdiff_t room = mbtext == nullptr ? 0 : static_cast<ptrdiff_t>(mbtext_len);
  if (array.extent < 0 || array.extent > most_elements) return too_many;
  const DWORD host_flags = flags_or(flags, WC_COMPOSITECHECK | WC_SEPCHARS);
  const int converted = WideCharToMultiByte(GetACP(), host_flags, array.characters, static_cast<int>(array.extent),
                                            room == 0 ? nullptr : mbtext, host_room(room), nullptr, nullptr);
  if (converted == 0) return negated_os_error();
  if (room > 0) std::fill(mbtext + converted, mbtext + room, ' ');
  return converted;
}
