// SPDX-License-Identifier: MIT
// IEEE_FLAGS: rounding, precision, traps and flags by keyword. Keywords are lower case and end at a blank.
#include <algorithm>
#include <iterator>
#include <string_view>

#include "control_word.h"
#include "exception_groups.h"
#include "qwport.h"
#include "text.h"

using namespace qwport::floating_point;

namespace {

constexpr int32_t done = 0;
constexpr int32_t refused = 1;

// A value of a field of the control word, and the result of asking for it.
struct Setting {
  std::string_view keyword;
  uint32_t value;
  int32_t result;
};

constexpr Setting directions[] = {
    {"nearest", rounding_nearest, 0},
    {"negative", rounding_down, 1},
    {"positive", rounding_up, 2},
    {"tozero", rounding_to_zero, 3},
};

constexpr Setting precisions[] = {
    {"extended", precision_64, 3},
    {"double", precision_53, 2},
    {"single", precision_24, 0},
};

// In the order in which flags are named. A denormal operand is none that a program asks for.
constexpr std::string_view flag_keywords[] = {"invalid", "overflow", "division", "underflow", "inexact"};

template <class Settings, class Predicate> const Setting *find_setting(const Settings &settings, Predicate predicate) {
  const auto *setting = std::find_if(std::begin(settings), std::end(settings), predicate);
  return setting == std::end(settings) ? nullptr : setting;
}

// What a query answers.
struct Answer {
  int32_t result;
  std::string_view text;
};

template <class Settings> Answer setting_in_force(const Settings &settings, uint32_t field) {
  const uint32_t value = control_word() & field;
  const Setting *setting = find_setting(settings, [value](const Setting &row) { return row.value == value; });
  return setting == nullptr ? Answer{refused, ""} : Answer{setting->result, setting->keyword};
}

// The flags that are raised, and the name of the wanted one, or of the first.
Answer raised_flags(std::string_view wanted) {
  const uint32_t status = status_word();
  Answer answer = {0, ""};
  for (const std::string_view keyword : flag_keywords) {
    const uint32_t flag = status & find_exception_group(keyword)->exceptions;
    answer.result |= static_cast<int32_t>(flag);
    if (flag != 0 && (answer.text.empty() || keyword == wanted)) answer.text = keyword;
  }
  return answer;
}

Answer get(std::string_view mode, std::string_view in) {
  if (mode == "direction") return setting_in_force(directions, rounding_field);
  if (mode == "precision") return setting_in_force(precisions, precision_field);
  if (mode == "exception") return raised_flags(in);
  return {refused, "mode not available"};
}

template <class Settings> int32_t set_field(const Settings &settings, uint32_t field, std::string_view keyword) {
  const Setting *setting = find_setting(settings, [keyword](const Setting &row) { return row.keyword == keyword; });
  if (setting == nullptr) return refused;
  return change_control_word(setting->value, field) ? done : refused;
}

// Of exceptions the traps are set and cleared, where a query tells the flags; this is meant.
int32_t set_traps(std::string_view keyword, bool enable) {
  const ExceptionGroup *group = find_exception_group(keyword);
  if (group == nullptr) return refused;
  change_control_word(enable ? 0 : group->exceptions, group->exceptions);
  return done;
}

int32_t set(std::string_view mode, std::string_view in) {
  if (mode == "direction") return set_field(directions, rounding_field, in);
  if (mode == "precision") return set_field(precisions, precision_field, in);
  if (mode == "exception") return set_traps(in, true);
  return refused;
}

int32_t clear(std::string_view mode, std::string_view in) {
  if (mode == "direction") return set_field(directions, rounding_field, "nearest");
  if (mode == "precision") return set_field(precisions, precision_field, "extended");
  if (mode == "exception") return set_traps(in, false);
  return refused;
}

int32_t clear_all() {
  clear_status_word();
  const bool is_set = change_control_word(rounding_nearest | precision_64, rounding_field | precision_field);
  set_traps("all", false);
  return is_set ? done : refused;
}

std::string_view keyword_of(const char *text, size_t length) {
  const std::string_view whole(text, length);
  return whole.substr(0, whole.find(' '));
}

}  // namespace

int32_t IEEE_FLAGS(const char *action, const char *mode, const char *in, char *out, size_t action_len, size_t mode_len,
                   size_t in_len, size_t out_len) {
  const std::string_view action_keyword = keyword_of(action, action_len);
  const std::string_view mode_keyword = keyword_of(mode, mode_len);
  const std::string_view in_keyword = keyword_of(in, in_len);
  Answer answer = {refused, ""};
  if (action_keyword == "get") answer = get(mode_keyword, in_keyword);
  if (action_keyword == "set") answer.result = set(mode_keyword, in_keyword);
  if (action_keyword == "clear") answer.result = clear(mode_keyword, in_keyword);
  if (action_keyword == "clearall") answer.result = clear_all();
  portlib_cstr_to_fstr(out, answer.text.data(), out_len, answer.text.size());  // literals, so a NUL follows
  return answer.result;
}
