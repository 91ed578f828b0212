// SPDX-License-Identifier: MIT
// Multibyte text, in a simulated code page 932 and in the host's own code pages.
#include <doctest/doctest.h>

#include <cstring>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include "guarded_text.h"
#include "import_override.h"
#include "library.h"
#include "qwport.h"

using namespace std::string_view_literals;

namespace {

UINT console_code_page = 932;
UINT WINAPI simulated_console_code_page() { return console_code_page; }
int questions = 0;

BOOL WINAPI simulated_lead_byte(UINT code_page, BYTE byte) {
  ++questions;
  return code_page == 932 && ((byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC)) ? 2 : 0;
}

struct Simulated932 {
  ImportOverride code_page{library(), "GetConsoleCP", simulated_console_code_page};
  ImportOverride lead_byte{library(), "IsDBCSLeadByteEx", simulated_lead_byte};
};

constexpr int32_t no = 0, yes = -1;

}  // namespace

TEST_CASE("characters are walked, measured and counted") {
  const Simulated932 simulated;
  // MBNEXT, MBPREV and MBSTRLEAD at each position from -1 to the one behind the text; MBCHARLEN, MBLEN, MBLEN_TRIM.
  const std::pair<std::string_view, const char *> cases[] = {{""sv, "000 000 000 000"},
                                                             {"a b "sv, "0023400 0001230 0000000 143"},
                                                             {"\x81@a "sv, "0033400 0001130 0010000 232"},
                                                             {"\x81\xE0@ "sv, "0034400 0001120 0010000 232"},
                                                             {"a\x81"sv, "00200 00010 00010 122"},
                                                             {"\x81\0a\0"sv, "0033400 0001130 0010000 122"},
                                                             {"\0a"sv, "00200 00010 00000 011"},
                                                             {"\xE0\xE0\xE0\xE0@"sv, "00345000 00011230 00101000 233"},
                                                             {" \x81  "sv, "0024400 0001220 0001000 132"},
                                                             {"\x81 @\0a\xE0"sv, "003345600 000113450 001000010 244"}};
  for (const auto &[text, expected] : cases) {
    GuardedText string(text);
    const size_t n = text.size();
    std::string answers;
    for (auto *routine : {MBNEXT, MBPREV, MBSTRLEAD}) {
      for (int32_t pos = -1; pos <= static_cast<int32_t>(n) + 1; ++pos)
        answers += std::to_string(routine(string.data(), &pos, n));
      answers += ' ';
    }
    for (auto *routine : {MBCHARLEN, MBLEN, MBLEN_TRIM}) answers += std::to_string(routine(string.data(), n));
    CAPTURE(text);
    CHECK(answers == expected);
  }
  CHECK(MBLEAD("\x81", 1) == 2);  // what the host answered
  CHECK(MBLEAD("a", 1) + MBLEAD("", 1) == 0);
  CHECK(MBCHARLEN("a", static_cast<size_t>(-1)) == 1);
  const int32_t pos = 2;  // what is absent gives 0
  for (auto *routine : {MBLEAD, MBCHARLEN, MBLEN, MBLEN_TRIM}) CHECK(routine(nullptr, 2) == 0);
  for (auto *routine : {MBNEXT, MBPREV, MBSTRLEAD})
    CHECK(routine(nullptr, &pos, 3) + routine("\x81@a", nullptr, 3) == 0);
}

TEST_CASE("set scans look for members or others, from both ends") {
  const Simulated932 simulated;
  const struct {
    std::string_view text, set;
    const char *expected;  // MBSCAN and MBVERIFY, each forward and backward
  } cases[] = {{"\xE0@"sv, "a\xE0"sv, "0012"},       {""sv, "x"sv, "0000"},
               {"\x81\xE0x"sv, "x"sv, "3013"},       {"x"sv, ""sv, "0012"},
               {"\x81@a"sv, "\x81@"sv, "1234"},      {"aba"sv, "b"sv, "2314"},
               {"@\x81\xE0@"sv, "@"sv, "1024"},      {"a\0"sv, "\0"sv, "2312"},
               {"\xE0@"sv, "\x81\xE0@"sv, "1200"},   {"abcb"sv, "bc"sv, "2512"},
               {"\x81@"sv, "\xE0@\x81@"sv, "1200"},  {"@a"sv, "\x81@"sv, "0013"},
               {"\x81@"sv, "\x81x\x81@"sv, "0012"},  {"x\x81@y"sv, "@"sv, "0015"},
               {"a\x81@\x81@"sv, "\x81@"sv, "2514"}, {"b\x81"sv, "\x81"sv, "0013"}};
  for (const auto &[text, set, expected] : cases) {
    GuardedText string(text), characters(set);
    std::string answers;
    for (auto *routine : {MBSCAN, MBVERIFY}) {
      for (const int32_t *back : {&no, &yes})
        answers += std::to_string(routine(string.data(), characters.data(), back, text.size(), set.size()));
    }
    CAPTURE(text);
    CAPTURE(set);
    CHECK(answers == expected);
  }
  CHECK(MBSCAN(nullptr, "a", nullptr, 1, 1) + MBSCAN("a", nullptr, nullptr, 1, 1) == 0);
}

TEST_CASE("the host is asked once for each byte value") {
  const Simulated932 simulated;
  const std::string text = "ab\x81@\xE0x ab\x81@\xE0x ";
  questions = 0;
  CHECK(MBLEN(text.data(), text.size()) == 10);
  CHECK(questions == 4);  // a, b and the lead bytes; trail bytes and blanks are not asked about
  CHECK(MBSCAN(text.data(), "z", nullptr, text.size(), 1) == 0);
  CHECK(questions == 4 + 6);
}

TEST_CASE("MBINDEX finds what neither begins nor ends inside another UTF-8 sequence") {
  const auto find = [](std::string_view text, std::string_view pattern) {
    GuardedText string(text), substring(pattern);
    std::string answers;
    for (const int32_t *back : {static_cast<const int32_t *>(nullptr), &yes})
      answers += ' ' + std::to_string(MBINDEX(string.data(), substring.data(), back, text.size(), pattern.size()));
    return answers.substr(1);
  };
  const struct {
    const char *text, *pattern, *first_and_last;
  } cases[] = {{"\xC3\xA9\xA9", "\xA9", "3 3"},         {"", "x", "0 0"},
               {"\xEF\x80\x80", "\x80", "0 0"},         {"ab", "abc", "0 0"},
               {"\xE0\x80\x80", "\x80", "0 0"},         {"\xC0\x80", "\x80", "0 0"},
               {"\xC3\xA9\xC3z", "\xC3", "3 3"},        {"\xDF\x80", "\x80", "0 0"},
               {"\xE0\x80x\x80", "\x80", "2 4"},        {"\xBF\x80", "\x80", "2 2"},
               {"x\xC3\xA9x\xC3x", "x\xC3", "4 4"},     {"\xF8\x80", "\x80", "2 2"},
               {"\xF0\x80\x80\x80", "\x80", "0 0"},     {"\xC3\xC0", "\xC0", "2 2"},
               {"a\xE2\x82\xAC", "\x82\xAC", "0 0"},    {"\xC3\x7F", "\x7F", "2 2"},
               {"\xC3\xA9\xC3\xA9", "\xC3\xA9", "1 3"}, {"a\xE2\x82", "\x82", "3 3"},
               {"\xC3\xA9\xC3\xA9", "\xA9\xC3", "0 0"}, {"\xC3\xA9y", "\xA9y", "0 0"},
               {"\xF7\x80\x80\x80\x80", "\x80", "5 5"}, {"caf\xC3\xA9 aux", "a", "2 7"},
               {"z\xE2\x82\xAC", "\xE2\x82\xAC", "2 2"}};
  for (const auto &[text, pattern, first_and_last] : cases) {
    CAPTURE(text);
    CAPTURE(pattern);
    CHECK(find(text, pattern) == first_and_last);
  }
  // Longer than the blocks in which the search goes.
  std::string text;
  while (text.size() < 70) text += "abaabbbabaaab";
  for (size_t start = 0; start < text.size(); ++start) {
    const std::string pattern = text.substr(start, start % 23 + 1), part = text.substr(start % 5);
    CHECK(find(part, pattern) ==
          std::to_string(part.find(pattern) + 1) + ' ' + std::to_string(part.rfind(pattern) + 1));
  }
  CHECK(MBINDEX(nullptr, "a", nullptr, 1, 1) + MBINDEX("a", nullptr, nullptr, 1, 1) == 0);
}

TEST_CASE("lead bytes and characters of the host's code pages") {
  struct Page {
    UINT code_page;
    int32_t longest, lead_bytes, characters;
    const char *text;  // two Han characters, "z", a blank; in 1252 and UTF-8 the bytes count as characters
  };
  const Page pages[] = {{932, 2, 60, 3, "\x93\xFA\x96{z "},     {936, 2, 126, 3, "\xC8\xD5\xB1\xBEz "},
                        {949, 2, 126, 3, "\xEC\xED\xDC\xE2z "}, {950, 2, 126, 3, "\xA4\xE9\xA5\xBBz "},
                        {1252, 1, 0, 5, "\x93\xFA\x96{z "},     {65001, 4, 0, 7, "\xE6\x97\xA5\xE6\x9C\xACz "}};
  const ImportOverride code_page(library(), "GetConsoleCP", simulated_console_code_page);
  int tested = 0;
  for (const Page &page : pages) {
    if (IsValidCodePage(page.code_page) == 0) continue;
    ++tested;
    CAPTURE(page.code_page);
    console_code_page = page.code_page;
    int lead_bytes = 0;
    for (int c = 0; c < 256; ++c) lead_bytes += MBLEAD(reinterpret_cast<const char *>(&c), 1) != 0;
    CHECK(lead_bytes == page.lead_bytes);
    CHECK(MBCURMAX() == page.longest);
    CHECK(MBLEN_TRIM(page.text, std::strlen(page.text)) == page.characters);
  }
  CHECK(tested >= 2);
  console_code_page = 12345;
  CHECK(MBCURMAX() == 0);
  console_code_page = 932;
}

namespace {

int simulated_order = 0;
DWORD asked_flags = 99;
int WINAPI simulated_compare(LCID, DWORD flags, const char *, int, const char *, int) {
  asked_flags = flags;
  return simulated_order;
}

// The answers of GE, GT, LE, LT, EQ and NE as digits.
std::string compare(std::string_view left, std::string_view right, const int32_t *flags = nullptr) {
  std::string answers;
  for (const auto comparison : {MBLGE, MBLGT, MBLLE, MBLLT, MBLEQ, MBLNE})
    answers += std::to_string(comparison(left.data(), right.data(), flags, left.size(), right.size()));
  return answers;
}

}  // namespace

TEST_CASE("comparisons follow the user's locale, and are false when the host fails") {
  const int32_t ignore_case = NORM_IGNORECASE;
  CHECK(compare("a", "B") + compare("b", "A") == "001101110001");  // not by codes
  CHECK(compare("abc", "abc") + compare("abc", "ABC", &ignore_case) == "101010101010");
  CHECK(compare("", "") + compare("", "a") + compare("a", "") == "101010000000000000");
  const ImportOverride simulated(library(), "CompareStringA", simulated_compare);
  CHECK(compare("a", "a") == "000000");
  CHECK(asked_flags == 0);
  simulated_order = CSTR_GREATER_THAN;
  CHECK(compare("a", "a", &ignore_case) == "110001");
  CHECK(asked_flags == NORM_IGNORECASE);
}

namespace {

UINT ansi_code_page = 1252;
UINT WINAPI simulated_ansi_code_page() { return ansi_code_page; }

// The result of a conversion to UTF-16 and the whole array, or what was converted to bytes and the whole text.
std::string to_unicode(std::string_view text, int64_t extent, std::optional<int32_t> flags = {}) {
  GuardedText elements(static_cast<size_t>(extent) * 2);
  const QwportArray array = {elements.data(), {7, 7, 7, 7, 7}, extent};
  const int32_t count = MBCONVERTMBTOUNICODE(text.data(), &array, flags ? &*flags : nullptr, text.size());
  std::ostringstream answer;
  answer << count << ':' << std::hex;
  const auto *element = reinterpret_cast<const uint16_t *>(elements.data());
  for (int64_t i = 0; i < extent; ++i) answer << ' ' << element[i];
  return answer.str();
}

std::string to_bytes(std::u16string elements, size_t length, std::optional<int32_t> flags = {}) {
  GuardedText text(length);
  const QwportArray array = {elements.data(), {}, static_cast<int64_t>(elements.size())};
  const int32_t count = MBCONVERTUNICODETOMB(&array, text.data(), flags ? &*flags : nullptr, length);
  return std::to_string(count) + ':' + text.str();
}

}  // namespace

TEST_CASE("conversions fill up with blanks, tell sizes, and give the host's errors") {
  const ImportOverride simulated(library(), "GetACP", simulated_ansi_code_page);
  CHECK(to_unicode("\xE9z  ", 4) == "2: e9 7a 20 20");
  CHECK(to_unicode("\xE9z  ", 2) == "2: e9 7a");
  CHECK(to_unicode("\xE9z  ", 0) == "2:");
  CHECK(to_unicode("\xE9z  ", 1).starts_with("-122:"));
  CHECK(to_unicode("a", 1, 0x1000) == "-1004: 2323");
  CHECK(to_unicode("   ", 2) == "0: 20 20");
  CHECK(to_unicode("   ", 0) == "0:");
  CHECK(to_unicode("", 1) == "0: 2323");  // untouched
  CHECK(MBCONVERTMBTOUNICODE("abc", nullptr, nullptr, 3) == 3);

  CHECK(to_bytes(u"\u00E9z ", 5) == "3:\xE9z   ");
  CHECK(to_bytes(u"\u00E9z ", 3) == "3:\xE9z ");
  CHECK(to_bytes(u"\u00E9z ", 0) == "3:");
  CHECK(to_bytes(u"\u00E9z ", 2).starts_with("-122:"));
  CHECK(to_bytes(u"", 2) == "-87:##");
  const QwportArray two = {const_cast<char16_t *>(u"ab"), {}, 2};
  CHECK(MBCONVERTUNICODETOMB(&two, nullptr, nullptr, 9) == 2);

  ansi_code_page = 932;
  CHECK(to_unicode("\x93\xFA\x96\x7B ", 3) == "2: 65e5 672c 20");
  CHECK(to_bytes(u"\u65E5\u672C", 5) == "4:\x93\xFA\x96\x7B ");
  ansi_code_page = 65001;
  CHECK(to_unicode("\xC3\xA9", 2, 0) == "1: e9 20");
  CHECK(to_bytes(u"\u00E9", 3, 0) == "2:\xC3\xA9 ");
  ansi_code_page = 1252;
}
