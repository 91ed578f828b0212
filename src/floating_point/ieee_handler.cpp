// SPDX-License-Identifier: MIT
// IEEE_HANDLER: procedures for floating-point exceptions that trap.
#include <atomic>
#include <cctype>
#include <cstdlib>
#include <string_view>

#include "control_word.h"
#include "exception_groups.h"
#include "qwport.h"
#include "signal_table.h"
#include "text.h"

using namespace qwport::floating_point;

namespace {

using FpeHandler = void (*)(int32_t *signum, int32_t *code);

// One handler an exception, with the code by which the core runtime tells it.
struct FpeSlot {
  uint32_t exception;
  int32_t code;
  std::atomic<FpeHandler> handler;
};
FpeSlot FpeHandlerTable[] = {
    {exception_invalid, 0x81, nullptr},   {exception_zero_divide, 0x83, nullptr}, {exception_overflow, 0x84, nullptr},
    {exception_underflow, 0x85, nullptr}, {exception_inexact, 0x86, nullptr},
};

// Called by the core runtime for signal 8. Never returns: a handler that wants the program to go on must not
// return either.
[[noreturn]] void fpeDispatch(const int32_t *signal_number, const int32_t *code) {
  constexpr int exit_status = 9;
  int32_t signum = *signal_number;
  clear_status_word();
  for (const FpeSlot &slot : FpeHandlerTable) {
    const FpeHandler handler = slot.handler;
    if (slot.code != *code || handler == nullptr) continue;
    int32_t own_code = slot.code;
    handler(&signum, &own_code);
  }
  std::exit(exit_status);
}

constexpr std::string_view actions = " get set clear";
constexpr std::string_view exceptions = " inexact division underflow overflow invalid all common";

// The keyword at which a text, in any case, is found first in a list; empty if it is found nowhere, or within a
// keyword. So "inv" is short for "invalid", but "al" for nothing.
std::string_view keyword_of(std::string_view list, char *text) {
  for (char *c = text; *c != '\0'; ++c) *c = static_cast<char>(std::tolower(static_cast<unsigned char>(*c)));
  const size_t start = list.find(text);
  if (start == std::string_view::npos || start == 0 || list[start - 1] != ' ') return {};
  return list.substr(start, list.find(' ', start) - start);
}

void store_handler(uint32_t wanted, FpeHandler handler) {
  for (FpeSlot &slot : FpeHandlerTable) {
    if ((slot.exception & wanted) != 0) slot.handler = handler;
  }
}

constexpr intptr_t done = 0;
constexpr intptr_t refused = 1;

intptr_t set_handler(uint32_t wanted, FpeHandler handler) {
  constexpr int32_t floating_point_signal = 8;
  change_control_word(0, wanted);
  store_handler(wanted, handler);
  const intptr_t previous = portlib_set_signal(floating_point_signal, reinterpret_cast<intptr_t>(fpeDispatch));
  return previous == portlib_no_such_signal ? refused : done;
}

intptr_t clear_handler(uint32_t wanted) {
  change_control_word(wanted, wanted);
  store_handler(wanted, nullptr);
  return done;
}

// A group of several exceptions has no one handler.
intptr_t handler_of(uint32_t wanted) {
  for (const FpeSlot &slot : FpeHandlerTable) {
    if (slot.exception == wanted) return reinterpret_cast<intptr_t>(slot.handler.load());
  }
  return refused;
}

}  // namespace

intptr_t IEEE_HANDLER(const char *action, const char *exception, void (*handler)(int32_t *signum, int32_t *code),
                      size_t action_len, size_t exception_len) {
  const HeapText action_text = portlib_own_text(action, action_len);
  const HeapText exception_text = portlib_own_text(exception, exception_len);
  if (action_text == nullptr || exception_text == nullptr) return refused;
  const std::string_view action_keyword = keyword_of(actions, action_text.get());
  const ExceptionGroup *group = find_exception_group(keyword_of(exceptions, exception_text.get()));
  if (action_keyword.empty() || group == nullptr) return refused;
  if (action_keyword == "set") return set_handler(group->exceptions, handler);
  if (action_keyword == "clear") return clear_handler(group->exceptions);
  return handler_of(group->exceptions);
}
