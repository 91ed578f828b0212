// SPDX-License-Identifier: MIT
// Multibyte text: against plain models over all short texts of a simulated code page 932, and on the host's own
// code pages.
#include <algorithm>
#include <map>
#include <regex>
#include <sstream>
#include <vector>

#include "library_test.h"

namespace {

UINT console_code_page = 932;

bool is_lead(char c) { return ('\x81' <= c && c <= '\x9F') || ('\xE0' <= c && c <= '\xFC'); }

const auto answer_code_page = [] { return console_code_page; };
const auto answer_lead_byte = [](UINT code_page, BYTE byte) -> BOOL {
  return code_page == 932 && is_lead(static_cast<char>(byte)) ? 2 : 0;
};

// The code page 932, on hosts without it as well.
struct Simulated932 {
  ImportOverride code_page{library(), "GetConsoleCP", answer_code_page};
  ImportOverride lead_byte{library(), "IsDBCSLeadByteEx", answer_lead_byte};
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

// Puts a text against an inaccessible page. Only the last text of each length stays.
const char *guarded(const std::string &text) {
  static std::map<size_t, GuardedText> buffers;
  GuardedText &buffer = buffers.try_emplace(text.size(), text.size()).first->second;
  text.copy(buffer.data(), text.size());
  return buffer.data();
}

// ---- Plain models -------------------------------------------------------------------------------

bool is_lead_at(const std::string &text, int pos) { return pos >= 1 && is_lead(text[static_cast<size_t>(pos) - 1]); }

// Whether a set has a character of one byte, or of two: that walk goes byte by byte, and its counter runs one ahead
// after each equal lead byte.
bool contains(const std::string &set, const std::string &character) {
  for (size_t place = 0, counter = 0; counter < set.size(); ++place, ++counter) {
    if (character.size() == 1) {
      if (is_lead(set[place]))
        ++place, ++counter;
      else if (set[place] == character[0])
        return true;
    } else if (set[place] == character[0]) {
      if (++counter == set.size()) return false;
      if (set[place + 1] == character[1]) return true;
    }
  }
  return false;
}

int scan_forward(const std::string &text, const std::string &set, bool wanted) {
  for (size_t i = 0; i < text.size(); i += is_lead(text[i]) ? 2 : 1)
    if (contains(set, text.substr(i, is_lead(text[i]) ? 2 : 1)) == wanted) return static_cast<int>(i) + 1;
  return 0;
}

// The counter begins one behind the byte walk, and moves two down after a two-byte character while the walk moves one.
int scan_backward(const std::string &text, const std::string &set, bool wanted) {
  size_t place = text.size() - 1;
  for (int counter = static_cast<int>(text.size()); counter > 0; --counter) {
    const bool is_pair = place > 0 && is_lead(text[place - 1]);
    const bool found = contains(set, is_pair ? text.substr(place - 1, 2) : text.substr(place, 1));
    counter -= is_pair ? 1 : 0;
    place -= place > 0 ? 1 : 0;
    if (found == wanted) return counter + 1;
  }
  return 0;
}

// Which bytes are in whole UTF-8 sequences, as 'x' and '-'.
std::string places_in_sequences(const std::string &text) {
  static const std::regex whole("[\xC0-\xDF][\x80-\xBF]|[\xE0-\xEF][\x80-\xBF]{2}|[\xF0-\xF7][\x80-\xBF]{3}");
  std::string places(text.size(), '-');
  for (auto match = std::sregex_iterator(text.begin(), text.end(), whole); match != std::sregex_iterator(); ++match)
    std::fill_n(places.begin() + match->position(), match->length(), 'x');
  return places;
}

// The positions at which a text occurs, first and last; 0 if it does not.
std::pair<int, int> find_whole(const std::string &text, const std::string &pattern) {
  std::pair<int, int> found;
  if (pattern.empty()) return found;
  const std::string in_text = places_in_sequences(text), in_pattern = places_in_sequences(pattern);
  for (size_t i = text.find(pattern); i != std::string::npos; i = text.find(pattern, i + 1)) {
    if (in_text[i] != in_pattern[0] || in_text[i + pattern.size() - 1] != in_pattern.back()) continue;
    found.second = static_cast<int>(i) + 1;
    if (found.first == 0) found.first = found.second;
  }
  return found;
}

constexpr int32_t no = 0, yes = -1;

}  // namespace

TEST_CASE("characters are walked, measured and counted as the model does") {
  const Simulated932 simulated;
  int differences = 0;
  std::vector<std::string> all = texts(alphabet, 5);
  for (const std::string &text : long_texts()) all.push_back(text);
  for (const std::string &text : all) {
    const char *string = guarded(text);
    const auto n = static_cast<int32_t>(text.size());
    std::string kinds;  // of the characters: blanks and others
    int32_t start = 1;  // of the next character
    for (int32_t pos = -1; pos <= n + 1; ++pos) {
      const int32_t next = pos < 1 || pos >= n ? 0 : pos + (is_lead_at(text, pos) ? 2 : 1);
      const int32_t previous = pos < 2 || pos > n ? 0 : pos - (is_lead_at(text, pos - 2) ? 2 : 1);
      const bool is_start = pos == start && pos <= n, is_pair = is_start && is_lead_at(text, pos);
      differences += MBNEXT(string, &pos, text.size()) != (next > n ? 0 : next);
      differences += MBPREV(string, &pos, text.size()) != previous;
      differences += MBSTRLEAD(string, &pos, text.size()) != (is_pair ? 1 : 0);
      start += is_pair ? 2 : is_start ? 1 : 0;
      const char c = is_start ? text[static_cast<size_t>(pos) - 1] : '\0';
      if (c != '\0') kinds += c == ' ' ? ' ' : 'x';
    }
    differences += MBLEN(string, text.size()) != static_cast<int>(kinds.size());
    differences += MBLEN_TRIM(string, text.size()) != static_cast<int>(kinds.find_last_not_of(' ') + 1);
    const int first = n == 0 || text[0] == '\0' ? 0 : n >= 2 && is_lead(text[0]) && text[1] != '\0' ? 2 : 1;
    differences += MBCHARLEN(string, text.size()) != first;
  }
  CHECK(differences == 0);
  CHECK(MBLEAD("\x81", 1) == 2);  // what the host answered
  CHECK(MBLEAD("a", 1) + MBLEAD("", 1) + MBLEAD("\x81", 0) == 0);
}

TEST_CASE("set scans walk as the model does, from both ends") {
  const Simulated932 simulated;
  int differences = 0;
  const auto compare = [&](const std::vector<std::string> &all, const std::vector<std::string> &sets) {
    for (const std::string &text : all) {
      GuardedText string{std::string_view(text)};
      for (const std::string &set : sets) {
        for (const bool is_scan : {true, false}) {
          const auto scan = [&](const int32_t *back) {
            return (is_scan ? MBSCAN : MBVERIFY)(string.data(), guarded(set), back, text.size(), set.size());
          };
          differences += scan(&no) != scan_forward(text, set, is_scan);
          differences += scan(&yes) != scan_backward(text, set, is_scan);
        }
      }
    }
  };
  compare(texts(alphabet, 4), texts(alphabet, 3));
  compare(long_texts(), {"", "a", "@", "\x81@", "a\xE0\x81", "abcdefghijklmnopqrstuvwxyz"});
  CHECK(differences == 0);
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
  for (const std::string &text : texts(utf8_bytes, 5))
    for (const std::string &pattern : patterns) compare(text, pattern);
  // Longer than the blocks in which the search goes.
  std::string repetitive(20'000, 'a');
  repetitive[12'345] = 'b';
  for (const size_t before : {0, 1000, 7000, 7700, 12'345, 12'346}) {
    const std::string half(before, 'a');
    for (const std::string &pattern : {half + "b" + half, half + "ab", "b" + half, half + "c" + half})
      compare(repetitive, pattern);
  }
  const FailingCall no_memory("calloc");
  compare(repetitive, std::string(3000, 'a') + 'b');
  for (const char *unit : {"abaabbbabaaab", "a\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80\x80"}) {
    std::string text;
    while (text.size() < 70) text += unit;
    for (size_t start = 0; start < text.size(); ++start)
      compare(text.substr(start % 5), text.substr(start, start % 23));
  }
  CHECK(differences == 0);
}

TEST_CASE("what is absent, empty or too long for positions is no text, and is not read") {
  const int32_t pos = 2;
  for (const auto routine : {MBLEAD, MBCHARLEN, MBLEN, MBLEN_TRIM}) CHECK(routine(nullptr, 2) == 0);
  for (const auto routine : {MBNEXT, MBPREV, MBSTRLEAD}) CHECK(routine(nullptr, &pos, 3) == 0);
  for (const auto routine : {MBSCAN, MBINDEX}) CHECK(routine(nullptr, "a", nullptr, 1, 1) == 0);
  for (const size_t length : {size_t{0}, size_t{0x7FFFFFFF}, size_t{0x80000000}, SIZE_MAX}) {
    for (const auto routine : {MBSCAN, MBINDEX}) CHECK(routine("a", "a", &no, length, 1) == 0);
    CHECK(MBVERIFY("a", "b", &yes, length, 1) == 0);
    for (const auto routine : {MBLEN, MBLEN_TRIM}) CHECK(routine("a", length) == 0);
    CHECK(MBLEQ("a", "a", nullptr, length, length) == (length == 0));
  }
  CHECK(MBCHARLEN("a", SIZE_MAX) == 1);
}

TEST_CASE("lead bytes and characters of the host's code pages") {
  // The longest character, lead bytes, and characters of: two Han characters, "z", a blank. In 1252 and UTF-8 bytes
  // count as characters.
  const std::tuple<UINT, int32_t, int32_t, int32_t, std::string> pages[] = {
      {932, 2, 60, 3, "\x93\xFA\x96{z "},     {936, 2, 126, 3, "\xC8\xD5\xB1\xBEz "},
      {949, 2, 126, 3, "\xEC\xED\xDC\xE2z "}, {950, 2, 126, 3, "\xA4\xE9\xA5\xBBz "},
      {1252, 1, 0, 5, "\x93\xFA\x96{z "},     {65001, 4, 0, 7, "\xE6\x97\xA5\xE6\x9C\xACz "},
      {12345, 0, 0, 5, "\x93\xFA\x96{z "}};
  const ImportOverride simulated(library(), "GetConsoleCP", answer_code_page);
  for (const auto &[page, longest, lead_bytes, characters, text] : pages) {
    CAPTURE(page);
    console_code_page = page;
    int found = 0;
    for (int c = 0; c < 256; ++c) found += MBLEAD(reinterpret_cast<const char *>(&c), 1) != 0;
    CHECK((found == lead_bytes && MBCURMAX() == longest && MBLEN_TRIM(text.data(), text.size()) == characters));
  }
  console_code_page = 932;
}

TEST_CASE("comparisons follow the user's locale, and are false when the host fails") {
  // GE, GT, LE, LT, EQ and NE as digits.
  const auto compare = [](std::string_view left, std::string_view right, auto flags) {
    std::string answers;
    for (const auto comparison : {MBLGE, MBLGT, MBLLE, MBLLT, MBLEQ, MBLNE})
      answers += outcome(comparison, left, right, flags);
    return answers;
  };
  CHECK(compare("a", "B", nullptr) + compare("b", "A", nullptr) == "001101110001");  // not by codes
  CHECK(compare("abc", "ABC", nullptr) + compare("abc", "ABC", NORM_IGNORECASE) == "001101101010");
  CHECK(compare("", "", nullptr) + compare("", "a", nullptr) + compare("a", "", nullptr) == "101010000000000000");
  const FailingCall failing("CompareStringA");
  CHECK(compare("a", "a", nullptr) == "000000");
}

namespace {

UINT ansi_code_page;

// The result of a conversion to UTF-16 and the elements.
template <class Flags = std::nullptr_t>
std::string to_unicode(std::string_view text, int64_t extent, Flags flags = nullptr) {
  GuardedText elements(static_cast<size_t>(extent) * 2);
  const QwportArray array = {elements.data(), {7, 7, 7, 7, 7}, extent};
  std::ostringstream answer;
  answer << call(MBCONVERTMBTOUNICODE, text, &array, flags) << std::hex;
  for (int64_t i = 0; i < extent; ++i) answer << ' ' << reinterpret_cast<const uint16_t *>(elements.data())[i];
  return answer.str();
}

// The result of a conversion to bytes and the text.
std::string to_bytes(std::u16string elements, size_t length) {
  const QwportArray array = {elements.data(), {}, static_cast<int64_t>(elements.size())};
  return outcome(MBCONVERTUNICODETOMB, &array, Room{length}, nullptr);
}

}  // namespace

TEST_CASE("conversions fill up with blanks, tell sizes, and give the host's errors") {
  const ImportOverride simulated(library(), "GetACP", [] { return ansi_code_page; });
  ansi_code_page = 1252;
  for (const auto &[extent, expected] : {std::pair{4, "2 e9 7a 20 20"}, {2, "2 e9 7a"}, {0, "2"}})
    CHECK(to_unicode("\xE9z  ", extent) == expected);
  CHECK(to_unicode("\xE9z  ", 1).starts_with("-122 "));
  CHECK(to_unicode("a", 1, 0x1000) == "-1004 2323");
  CHECK((to_unicode("   ", 2) == "0 20 20" && to_unicode("   ", 0) == "0" && to_unicode("", 1) == "0 2323"));

  for (const auto &[length, expected] : {std::pair{5, "3|\xE9z   "}, {3, "3|\xE9z "}, {0, "3|"}})
    CHECK(to_bytes(u"\u00E9z ", length) == expected);
  CHECK(to_bytes(u"\u00E9z ", 2).starts_with("-122|"));
  CHECK(to_bytes(u"", 2) == "-87|##");
  const QwportArray too_long = {&ansi_code_page, {}, int64_t{1} << 31};
  CHECK(outcome(MBCONVERTUNICODETOMB, &too_long, Room{4}, nullptr) == "-87|####");

  ansi_code_page = 932;
  CHECK((to_unicode("\x93\xFA\x96\x7B ", 3) == "2 65e5 672c 20" &&
         to_bytes(u"\u65E5\u672C", 5) == "4|\x93\xFA\x96\x7B "));
}
