// SPDX-License-Identifier: MIT
// The floating-point environment. Rounding is seen in arithmetic.
#include <xmmintrin.h>

#include "library_test.h"
#include "thread.h"

namespace {

constexpr int32_t every_mask = 0x3F;

int32_t word_of(void (*routine)(int16_t *)) {
  int16_t word = 0;
  return routine(&word), word;
}
int32_t control_word() { return word_of(GETCONTROLFPQQ); }
int32_t status_word() { return word_of(SSWRQQ); }

// The result and the keyword: "2|double".
std::string flags(std::string_view action, std::string_view mode, std::string_view in, size_t room = 10) {
  const std::string answer = outcome(IEEE_FLAGS, action, mode, in, Room{room});
  return answer.substr(0, answer.find_last_not_of(' ') + 1);
}

struct DefaultEnvironment {
  DefaultEnvironment() { flags("clearall", "", ""); }
  RecordingCore core;
};

// The control word; that arithmetic rounds as it says is checked where nothing traps.
int32_t word_in_force() {
  const int32_t word = control_word();
  if ((word & every_mask) == every_mask) {
    volatile double one = 1, ten = 10;
    const bool is_rounded_up = -one / ten > -0.1, is_rounded_down = one / ten < 0.1;  // the nearest is farther from 0
    CHECK((is_rounded_down ? 1 : 0) + (is_rounded_up ? 2 : 0) == (word >> 10 & 3));
  }
  return word;
}

enum { invalid = 1, denormal = 2, division = 4, inexact = 32 };

void raise_flags(int32_t exceptions) {
  CLEARSTATUSFPQQ();
  _mm_setcsr(_mm_getcsr() | static_cast<uint32_t>(exceptions));
}

using FpeHandler = void (*)(int32_t *, int32_t *);
void first_handler(int32_t *, int32_t *) {}
void second_handler(int32_t *, int32_t *) {}

}  // namespace

TEST_CASE_FIXTURE(DefaultEnvironment, "IEEE_FLAGS sets, tells and clears, and refuses keywords that it does not know") {
  // What a query answers when it is set, and the control word.
  const std::tuple<const char *, std::string, const char *, int32_t> settings[] = {
      {"direction", "nearest", "0|nearest", 0x33F},   {"direction", "negative", "1|negative", 0x73F},
      {"direction", "positive", "2|positive", 0xB3F}, {"direction x", "tozero", "3|tozero", 0xF3F},
      {"precision", "extended", "3|extended", 0x33F}, {"precision", "double", "2|double", 0x23F},
      {"precision", "single", "0|single", 0x03F},     {"exception", "underflow", "32|inexact", 0x32F},
      {"exception", "division", "32|inexact", 0x33B}, {"exception", "overflow", "32|inexact", 0x337},
      {"exception", "inexact", "32|inexact", 0x31F},  {"exception", "invalid", "32|inexact", 0x33E},
      {"exception", "common", "32|inexact", 0x322},   {"exception", "all    ", "32|inexact", 0x300}};
  raise_flags(inexact);  // of exceptions the flags are told, not the traps
  for (const auto &[mode, keyword, found, word] : settings) {
    CAPTURE(keyword);
    CHECK((flags("set", mode, keyword) == "0|" && word_in_force() == word));
    CHECK(flags("get", mode, "") == found);
    CHECK((flags("clear", mode, keyword) == "0|" && control_word() == 0x33F));
  }
  for (const auto &[mode, keyword, found, word] : settings) flags("set", mode, keyword);
  CHECK((control_word() == 0xC00 && flags("clearall", "", "") == "0|" && control_word() == 0x33F));

  const char *const refused[][3] = {{"GET", "direction", ""},        {"set", "direction", "Tozero"},
                                    {"set", "precision", "double2"}, {"set", "exception", "al"},
                                    {"set", "rounding", "tozero"},   {"clear", "x", ""}};
  for (const auto &[action, mode, in] : refused) CHECK(flags(action, mode, in) == "1|");
  CHECK((flags("get", "rounding", "", 20) == "1|mode not available" && core.calls().empty()));
  CHECK((flags("get", std::string(100, 'd'), "", 4) == "1|mode" && core.calls() == reports(EINVAL)));
  CHECK(control_word() == 0x33F);
}

TEST_CASE_FIXTURE(DefaultEnvironment, "words are set whole, but for precisions that do not exist, for this thread") {
  // As SETCONTROLFPQQ sets it and as LCWRQQ does.
  const std::tuple<int, int, int> words[] = {{0x27F, 0x23F, 0x33F}, {0x57F, 0x73F, 0x73F},    {0x87F, 0x83F, 0x83F},
                                             {0xF55, 0xF15, 0xF15}, {0x122A, 0x122A, 0x132A}, {0x133F, 0x133F, 0x133F}};
  for (const auto &[word, by_set, by_load] : words) {
    call(SETCONTROLFPQQ, word);
    CHECK(word_in_force() == by_set);
    call(LCWRQQ, word);
    CHECK(word_in_force() == by_load);
  }
  CHECK(on_other_thread([](void *) { return static_cast<DWORD>(control_word()); }) == 0x33F);
  call(LCWRQQ, 0x33F);
}

TEST_CASE_FIXTURE(DefaultEnvironment, "flags are those of the processor, named in order or as wanted") {
  for (const std::string found :
       {"0|", "1|invalid", "4|division", "32|inexact", "40|overflow", "48|underflow", "44|overflow"}) {
    raise_flags(std::stoi(found));
    CHECK((status_word() == std::stoi(found) && flags("get", "exception", "") == found));
  }
  raise_flags(denormal);
  CHECK((status_word() == denormal && flags("get", "exception", "") == "0|"));
  raise_flags(invalid | division);
  CHECK((flags("get", "exception", "division") == "5|division" && flags("get", "exception", "inexact") == "5|invalid"));
  flags("clearall", "", "");
  CHECK(status_word() == 0);
  volatile long double one = 1, zero = 0, result = one / zero;  // by the x87
  static_cast<void>(result);
  CHECK(status_word() == division);
  CLEARSTATUSFPQQ();
  CHECK(status_word() == 0);
}

TEST_CASE_FIXTURE(DefaultEnvironment, "IEEE_HANDLER stores handlers, enables their traps and takes abbreviations") {
  const auto handler = [](const char *action, const char *exception, FpeHandler procedure = nullptr) {
    return reinterpret_cast<FpeHandler>(call(IEEE_HANDLER, action, exception, procedure));
  };
  const auto masks = [] { return control_word() & every_mask; };
  const auto refused = reinterpret_cast<FpeHandler>(1);
  CHECK((handler("SET", "Common  ", first_handler) == nullptr && core.first_call_argument(0) == 8 && masks() == 0x22));
  CHECK((handler("get", "inv") == first_handler && handler("g", "in") == nullptr));  // the first: inexact
  CHECK((handler("se", "ov", second_handler) == nullptr && handler("ge", "OVER") == second_handler));
  CHECK((handler("cl", "u") == nullptr && handler("get", "underflow") == nullptr && masks() == 0x32));
  CHECK((handler("get", "division") == first_handler));
  CHECK((handler("clear", "all") == nullptr && handler("get", "invalid") == nullptr && masks() == 0x3F));
  for (const char *exception : {"all", "al", "", " inexact", "invalids"}) CHECK((handler("get", exception) == refused));
  for (const char *action : {"", "et"}) CHECK((handler(action, "invalid") == refused));
  core.answer("for__signal", -1);
  CHECK((handler("set", "division", first_handler) == refused));
}

CHILD_PROGRAM(prints_math_errors) {
  for (int32_t type = -1; type <= 7; ++type) {
    int32_t info[2] = {type, 77};
    int16_t retcode = 5;
    const int16_t length = 5;
    MATHERRQQ("log  tail", &length, info, &retcode);
    std::printf("%d %d %d\n", info[0], info[1], retcode);
  }
  return 0;
}

TEST_CASE("MATHERRQQ prints the error's text and mends the caller's type") {
  CHECK(run_child("prints_math_errors").output ==
        "log: Unknown error\n0 77 0\nlog: Unknown error\n0 77 0\nlog: Domain error\n1 77 0\n"
        "log: Singularity error\n2 77 0\nlog: Overflow error\n3 77 0\nlog: Underflow error\n4 77 0\n"
        "log: Total loss of precision\n5 77 0\nlog: Partial loss of precision\n6 77 0\n"
        "log: Unknown error\n0 77 0\n");
}
