// SPDX-License-Identifier: MIT
// Multibyte text: against plain models over all short texts of a simulated code page 932, and on the host's own
// code pages.
#include <algorithm>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <sstream>
#include <vector>

#include "library_test.h"

namespace {

UINT console_code_page = 932;
UINT WINAPI simulated_console_code_page() { return console_code_page; }

bool is_lead(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

BOOL WINAPI simulated_lead_byte(UINT code_page, BYTE byte) {
  return code_page == 932 && is_lead(static_cast<char>(byte)) ? 2 : 0;
}

struct Simulated932 {
  ImportOverride code_page{library(), "GetConsoleCP", simulated_console_code_page};
  ImportOverride lead_byte{library(), "IsDBCSLeadByteEx", simulated_lead_byte};
};

// Two lead bytes of which one can be a trail byte, a trail byte, an ASCII character, a blank and a NUL.
constexpr std::string_view alphabet("\x81\xE0@a \0", 6);

// Every text of at most so many characters of an alphabet.
std::vector<std::string> texts(std::string_view characters, size_t longest) {
  std::vector<std::string> all = {""};
  for (size_t i = 0; i < all.size() && all[i].size() < longest; ++i) {
    for (const char c : characters) all.push_back(all[i] + c);
  }
  return all;
}

// Puts a text against an inaccessible page. Only the last text of each length stays.
const char *guarded(const std::string &text) {
  static std::map<size_t, GuardedText> buffers;
  GuardedText &buffer = buffers.try_emplace(text.size(), text.size()).first->second;
  text.copy(buffer.data(), text.size());
  return buffer.data();
}

// Plain models of the walks.
bool is_lead_at(const std::string &text, int pos) { return pos >= 1 && is_lead(text[static_cast<size_t>(pos) - 1]); }

bool contains(const std::string &set, char single) {
  for (size_t counter = 0; counter < set.size(); counter += is_lead(set[counter]) ? 2 : 1) {
    if (!is_lead(set[counter]) && set[counter] == single) return true;
  }
  return false;
}

bool contains(const std::string &set, char lead, char trail) {
  size_t counter = 0;
  for (size_t place = 0; counter < set.size(); ++place, ++counter) {
    if (set[place] != lead) continue;
    if (++counter == set.size()) return false;
    if (set[place + 1] == trail) return true;
  }
  return false;
}

int scan_forward(const std::string &text, const std::string &set, bool wanted) {
  for (size_t i = 0; i < text.size(); i += is_lead(text[i]) ? 2 : 1) {
    const bool is_pair = is_lead(text[i]) && i + 1 < text.size();
    if ((is_pair ? contains(set, text[i], text[i + 1]) : contains(set, text[i])) == wanted)
      return static_cast<int>(i) + 1;
  }
  return 0;
}

int scan_backward(const std::string &text, const std::string &set, bool wanted) {
  size_t p = text.size() - 1;
  for (int k = static_cast<int>(text.size()); k > 0; --k) {
    const bool is_pair = p > 0 && is_lead(text[p - 1]);
    const bool found = is_pair ? contains(set, text[p - 1], text[p]) : contains(set, text[p]);
    k -= is_pair ? 1 : 0;
    p -= p > 0 ? 1 : 0;
    if (found == wanted) return k + 1;
  }
  return 0;
}

// For each byte, whether it belongs to a whole UTF-8 sequence, and whether it begins one.
struct Sequences {
  std::vector<bool> begins, belongs;
};

Sequences sequences_of(const std::string &text) {
  static const std::regex whole("[\xC0-\xDF][\x80-\xBF]|[\xE0-\xEF][\x80-\xBF]{2}|[\xF0-\xF7][\x80-\xBF]{3}");
  Sequences sequences{std::vector<bool>(text.size()), std::vector<bool>(text.size())};
  for (auto match = std::sregex_iterator(text.begin(), text.end(), whole); match != std::sregex_iterator(); ++match) {
    sequences.begins[static_cast<size_t>(match->position())] = true;
    std::fill_n(sequences.belongs.begin() + match->position(), match->length(), true);
  }
  return sequences;
}

// The positions at which a text occurs, first and last; 0 if it does not.
std::pair<int, int> find_whole(const std::string &text, const std::string &pattern) {
  std::pair<int, int> found;
  if (pattern.empty()) return found;
  const Sequences in_text = sequences_of(text), in_pattern = sequences_of(pattern);
  for (size_t i = text.find(pattern); i != std::string::npos; i = text.find(pattern, i + 1)) {
    if (in_text.belongs[i] != in_pattern.begins[0]) continue;
    if (in_text.belongs[i + pattern.size() - 1] != in_pattern.belongs.back()) continue;
    found.second = static_cast<int>(i) + 1;
    if (found.first == 0) found.first = found.second;
  }
  return found;
}

constexpr int32_t no = 0, yes = -1;

// Long texts of mostly ASCII, for the blocks in which the routines go.
std::vector<std::string> long_texts() {
  std::vector<std::string> all;
  std::srand(1);
  for (int i = 0; i < 1000; ++i) {
    std::string &text = all.emplace_back(static_cast<size_t>(std::rand() % 70), 'a');
    for (char &c : text) c = std::rand() % 20 == 0 ? alphabet[static_cast<size_t>(std::rand()) % 6] : c;
  }
  return all;
}

// What has no room for a position is no text, and is not read.
constexpr size_t wrong_lengths[] = {0x7FFFFFFF, 0x80000000, SIZE_MAX};

}  // namespace

TEST_CASE("characters are walked, measured and counted as the model does") {
  const Simulated932 simulated;
  int differences = 0;
  std::vector<std::string> all = texts(alphabet, 5);
  for (const std::string &text : long_texts()) all.push_back(text);
  for (const std::string &text : all) {
    const char *string = guarded(text);
    const auto n = static_cast<int32_t>(text.size());
    std::set<int32_t> pairs;
    std::string kinds;  // of the characters: blanks and others
    for (int32_t pos = 1; pos <= n; pos += is_lead_at(text, pos) ? 2 : 1) {
      const char c = text[static_cast<size_t>(pos) - 1];
      if (is_lead(c)) pairs.insert(pos);
      if (c != '\0') kinds += c == ' ' ? ' ' : 'x';
    }
    for (int32_t pos = -1; pos <= n + 1; ++pos) {
      const int32_t next = pos < 1 || pos >= n ? 0 : pos + (is_lead_at(text, pos) ? 2 : 1);
      const int32_t previous = pos < 2 || pos > n ? 0 : pos - (is_lead_at(text, pos - 2) ? 2 : 1);
      differences += MBNEXT(string, &pos, text.size()) != (next > n ? 0 : next);
      differences += MBPREV(string, &pos, text.size()) != previous;
      differences += MBSTRLEAD(string, &pos, text.size()) != static_cast<int>(pairs.count(pos));
    }
    differences += MBLEN(string, text.size()) != static_cast<int>(kinds.size());
    differences += MBLEN_TRIM(string, text.size()) != static_cast<int>(kinds.find_last_not_of(' ') + 1);
    const int first = n == 0 || text[0] == '\0' ? 0 : n >= 2 && is_lead(text[0]) && text[1] != '\0' ? 2 : 1;
    differences += MBCHARLEN(string, text.size()) != first;
  }
  CHECK(differences == 0);
  CHECK(MBLEAD("\x81", 1) == 2);  // what the host answered
  CHECK(MBLEAD("a", 1) + MBLEAD("", 1) + MBLEAD("\x81", 0) == 0);
  CHECK(MBCHARLEN("a", static_cast<size_t>(-1)) == 1);
  const int32_t pos = 2;  // what is absent gives 0
  CHECK(MBLEAD(nullptr, 1) + MBCHARLEN(nullptr, 2) + MBLEN(nullptr, 2) + MBLEN_TRIM(nullptr, 2) == 0);
  CHECK(MBNEXT(nullptr, &pos, 3) + MBPREV(nullptr, &pos, 3) + MBSTRLEAD(nullptr, &pos, 3) == 0);
  CHECK(MBNEXT("abc", nullptr, 3) + MBPREV("abc", nullptr, 3) + MBSTRLEAD("\x81@", nullptr, 2) == 0);
}

TEST_CASE("set scans walk as the model does, from both ends") {
  const Simulated932 simulated;
  int differences = 0;
  const auto compare = [&](const std::vector<std::string> &all, const std::vector<std::string> &sets) {
    for (const std::string &text : all) {
      if (text.empty()) continue;
      GuardedText string{std::string_view(text)};
      for (const std::string &set : sets) {
        for (const bool is_scan : {true, false}) {
          const auto routine = [&, entry = is_scan ? MBSCAN : MBVERIFY](const int32_t *back) {
            return entry(string.data(), guarded(set), back, text.size(), set.size());
          };
          differences += routine(&no) != scan_forward(text, set, is_scan);
          differences += routine(&yes) != scan_backward(text, set, is_scan);
        }
      }
    }
  };
  compare(texts(alphabet, 4), texts(alphabet, 3));
  compare(long_texts(), {"", "a", "@", "\x81@", "a\xE0\x81", "abcdefghijklmnopqrstuvwxyz"});
  CHECK(differences == 0);
  for (const size_t length : wrong_lengths) {
    CHECK(MBSCAN("a", "a", &no, length, 1) + MBVERIFY("a", "b", &yes, length, 1) + MBINDEX("a", "a", &no, length, 1) +
              MBLEN("a", length) + MBLEN_TRIM("a", length) + MBLEQ("a", "a", nullptr, length, length) ==
          0);
  }
  CHECK(MBSCAN("", "a", &no, 0, 1) + MBVERIFY("", "a", &yes, 0, 1) == 0);
  CHECK(MBSCAN("a", "a", &yes, 1, 1) == 2);
  CHECK(MBSCAN(nullptr, "a", nullptr, 1, 1) + MBSCAN("a", nullptr, nullptr, 1, 1) == 0);
}

TEST_CASE("MBINDEX finds what neither begins nor ends inside another UTF-8 sequence") {
  int differences = 0;
  const auto compare = [&](const std::string &text, const std::string &pattern) {
    const auto [first, last] = find_whole(text, pattern);
    const char *string = guarded(text);
    differences += MBINDEX(string, pattern.data(), nullptr, text.size(), pattern.size()) != first;
    differences += MBINDEX(string, pattern.data(), &yes, text.size(), pattern.size()) != last;
  };
  const std::string_view utf8_bytes("a\xC3\xA9\xE2\xF0\xF8", 6);
  const std::vector<std::string> patterns = texts(utf8_bytes, 2);
  for (const std::string &text : texts(utf8_bytes, 5)) {
    for (const std::string &pattern : patterns) compare(text, pattern);
  }
  // Longer than the blocks in which the search goes.
  std::string repetitive(20'000, 'a');
  repetitive[12'345] = 'b';
  for (const size_t before : {0, 1000, 7000, 7700, 12'345, 12'346}) {
    const std::string half(before, 'a');
    for (const std::string &pattern : {half + "b" + half, half + "ab", "b" + half, half + "c" + half})
      compare(repetitive, pattern);
  }
  const ImportOverride no_memory(library(), "calloc", [](size_t, size_t) -> void * { return nullptr; });
  compare(repetitive, std::string(3000, 'a') + 'b');
  for (const char *unit : {"abaabbbabaaab", "a\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80\x80"}) {
    std::string text;
    while (text.size() < 70) text += unit;
    for (size_t start = 0; start < text.size(); ++start)
      compare(text.substr(start % 5), text.substr(start, start % 23));
  }
  CHECK(differences == 0);
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

TEST_CASE("conversions of more than the host can count are refused") {
  const QwportArray large = {&ansi_code_page, {}, int64_t{1} << 31}, negative = {&ansi_code_page, {}, -1};
  char text[4];
  for (const QwportArray &array : {large, negative}) CHECK(MBCONVERTUNICODETOMB(&array, text, nullptr, 4) == -87);
}

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

  static DWORD flags;
  {
    const ImportOverride to_wide(
        library(), "MultiByteToWideChar",
        [](UINT, DWORD given, const char *, int, wchar_t *, int) { return static_cast<int>(flags = given); });
    const ImportOverride to_narrow(library(), "WideCharToMultiByte",
                                   [](UINT, DWORD given, const wchar_t *, int, char *, int, const char *, BOOL *) {
                                     flags = given;
                                     return 1;
                                   });
    to_unicode("a", 1);
    CHECK(flags == MB_PRECOMPOSED);
    to_bytes(u"a", 1);
    CHECK(flags == (WC_COMPOSITECHECK | WC_SEPCHARS));
  }

  ansi_code_page = 932;
  CHECK(to_unicode("\x93\xFA\x96\x7B ", 3) == "2: 65e5 672c 20");
  CHECK(to_bytes(u"\u65E5\u672C", 5) == "4:\x93\xFA\x96\x7B ");
  ansi_code_page = 65001;
  CHECK(to_unicode("\xC3\xA9", 2, 0) == "1: e9 20");
  CHECK(to_bytes(u"\u00E9", 3, 0) == "2:\xC3\xA9 ");
  ansi_code_page = 1252;
}
