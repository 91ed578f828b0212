// SPDX-License-Identifier: MIT
// The floating-point environment. Rounding and flags are seen in arithmetic.
#include <cerrno>
#include <cfloat>
#include <cmath>

#include "library_test.h"
#include "thread.h"

namespace {

// The result and the keyword: "2|double".
std::string flags(std::string_view action, std::string_view mode, std::string_view in, size_t room = 10) {
  const std::string answer = outcome(IEEE_FLAGS, action, mode, in, Room{room});
  return answer.substr(0, answer.find_last_not_of(' ') + 1);
}

using FpeHandler = void (*)(int32_t *, int32_t *);
intptr_t handler(std::string_view action, std::string_view exception, FpeHandler procedure = nullptr) {
  return call(IEEE_HANDLER, action, exception, procedure);
}

void first_handler(int32_t *, int32_t *) {}
void second_handler(int32_t *, int32_t *) {}
intptr_t address_of(FpeHandler procedure) { return reinterpret_cast<intptr_t>(procedure); }

int control_word() {
  int16_t control = 0, second = 1;
  GETCONTROLFPQQ(&control);
  SCWRQQ(&second);
  CHECK(control == second);
  return control;
}

void set_control_word(void (*routine)(const int16_t *), int word) {
  const auto control = static_cast<int16_t>(word);
  routine(&control);
}

// The accrued flags, or -1 if their two views differ.
int status_word() {
  int16_t by_math_runtime = 0, by_c_runtime = 1;
  GETSTATUSFPQQ(&by_math_runtime);
  SSWRQQ(&by_c_runtime);
  return by_math_runtime == by_c_runtime ? by_math_runtime : -1;
}

enum { invalid = 1, denormal = 2, division = 4, overflow = 8, underflow = 16, inexact = 32 };

// Raises exactly these flags by arithmetic.
void raise_flags(int exceptions) {
  volatile double zero = 0, one = 1, three = 3, large = DBL_MAX, small = DBL_MIN, tiny = small / 4, result = 0;
  CLEARSTATUSFPQQ();
  if ((exceptions & invalid) != 0) result = zero / zero;
  if ((exceptions & denormal) != 0) result = tiny + zero;
  if ((exceptions & division) != 0) result = one / zero;
  if ((exceptions & inexact) != 0) result = one / three;
  if ((exceptions & overflow) != 0) result = large * three;   // and inexact
  if ((exceptions & underflow) != 0) result = small / three;  // and inexact
  static_cast<void>(result);
}

// How 1/3, -1/3, 1/10 and -1/10 are rounded: d(own), u(p), or - for the value of the nearest.
std::string rounding() {
  constexpr double third = 1.0 / 3, tenth = 1.0 / 10;
  volatile double one = 1, minus_one = -1, three = 3, ten = 10;
  const auto direction = [](double value, double nearest) {
    return value == nearest ? '-' : value < nearest ? 'd' : 'u';
  };
  return {direction(one / three, third), direction(minus_one / three, -third), direction(one / ten, tenth),
          direction(minus_one / ten, -tenth)};
}

struct EnvironmentGuard {
  EnvironmentGuard() { flags("clearall", "", ""); }
  ~EnvironmentGuard() { flags("clearall", "", ""); }
};

}  // namespace

CHILD_PROGRAM(dispatches) {
  // "none" leaves the table empty; the code is the exception's.
  RecordingCore core;
  const int32_t code = std::stoi(arguments.at(1), nullptr, 16);
  raise_flags(denormal);
  if (arguments.at(0) == "none") {
    handler("set", "inexact");
  } else {
    handler("set", arguments.at(0), [](int32_t *signum, int32_t *own_code) {
      std::printf("handler(%d, %x) status %d\n", *signum, static_cast<unsigned>(*own_code), status_word());
      std::fflush(stdout);
    });
  }
  const intptr_t dispatcher = core.first_call_argument(1);
  constexpr int32_t signum = 8;
  reinterpret_cast<void (*)(const int32_t *, const int32_t *)>(dispatcher)(&signum, &code);
  return 1;
}

CHILD_PROGRAM(prints_math_errors) {
  for (const int32_t type : {-1, 0, 1, 2, 3, 4, 5, 6, 7}) {
    int32_t info[2] = {type, 77};
    int16_t retcode = 5;
    constexpr int16_t length = 5;
    MATHERRQQ("log  tail", &length, info, &retcode);
    std::printf("%d %d %d %d\n", type, info[0], info[1], retcode);
  }
  return 0;
}

TEST_CASE("rounding directions are those of the arithmetic, set either way") {
  const EnvironmentGuard guard;
  const std::tuple<const char *, const char *, const char *, int> directions[] = {
      {"nearest", "0|nearest", "----", 0},
      {"negative", "1|negative", "-dd-", 0x400},
      {"positive", "2|positive", "u--u", 0x800},
      {"tozero", "3|tozero", "--du", 0xC00}};
  for (const auto &[keyword, found, rounded, bits] : directions) {
    CAPTURE(keyword);
    CHECK(flags("set", "direction x", keyword) == "0|");
    CHECK((rounding() == rounded && (control_word() & 0xC00) == bits));
    flags("clear", "direction", "");
    CHECK(rounding() == "----");
    for (const auto routine : {SETCONTROLFPQQ, LCWRQQ}) {
      set_control_word(routine, 0x33F | bits);
      CHECK((rounding() == rounded && flags("get", "direction", "") == found));
    }
  }
  RecordingCore core;
  CHECK((flags("get", "direction", "", 6) == "3|tozero" && core.calls().empty()));
  CHECK((flags("get", "direction", "", 4) == "3|toze" && core.calls() == reports(22)));
}

TEST_CASE("precision and infinity control read back for this thread, whatever the processor has") {
  const EnvironmentGuard guard;
  const std::tuple<const char *, const char *, int> precisions[] = {
      {"extended", "3|extended", 0x300}, {"double", "2|double", 0x200}, {"single", "0|single", 0}};
  for (const auto &[keyword, found, bits] : precisions) {
    CHECK(flags("set", "precision", keyword) == "0|");
    CHECK(flags("get", "precision", "") == found);
    CHECK(control_word() == (0x3F | bits));
  }
  CHECK(on_other_thread([](void *) { return static_cast<DWORD>(control_word()); }) == 0x33F);

  // {word, as SETCONTROLFPQQ and as LCWRQQ set it}
  const int words[][3] = {
      {0x27F, 0x23F, 0x33F}, {0x17F, 0x33F, 0x33F}, {0x07F, 0x03F, 0x03F}, {0x127F, 0x123F, 0x133F}};
  for (const auto &[word, by_set, by_load] : words) {
    set_control_word(SETCONTROLFPQQ, word);
    CHECK(control_word() == by_set);
    set_control_word(LCWRQQ, word);
    CHECK(control_word() == by_load);
  }
  flags("clear", "precision", "");
  CHECK(control_word() == 0x133F);
}

TEST_CASE("without a cell for the thread the fields that the processor lacks are refused, and nothing else") {
  const EnvironmentGuard guard;
  const ImportOverride no_cell(library(), "TlsSetValue", [](DWORD, void *) { return FALSE; });
  errno = 0;
  CHECK((flags("set", "precision", "extended") == "0|" && errno == 0));
  CHECK((flags("set", "precision", "double") == "1|" && errno == ENOMEM));
  set_control_word(SETCONTROLFPQQ, 0x1E3F);
  CHECK((control_word() & 0xFFF) == 0xF3F);
}

TEST_CASE("traps are set and cleared by group") {
  const EnvironmentGuard guard;
  const std::pair<const char *, int> groups[] = {{"inexact", 0x1F},  {"division", 0x3B}, {"underflow", 0x2F},
                                                 {"overflow", 0x37}, {"invalid", 0x3E},  {"all", 0},
                                                 {"common", 0x22}};
  for (const auto &[keyword, masks] : groups) {
    CAPTURE(keyword);
    CHECK(flags("set", "exception", keyword) == "0|");
    CHECK((control_word() & 0x3F) == masks);
    CHECK(flags("clear", "exception", keyword) == "0|");
    CHECK((control_word() & 0x3F) == 0x3F);
    set_control_word(SETCONTROLFPQQ, 0x300 | masks);
    CHECK((control_word() & 0x3F) == masks);
    flags("set", "precision", "single");
    flags("clearall", "", "");
    CHECK(control_word() == 0x33F);
  }
}

TEST_CASE("flags are those that the arithmetic raised") {
  const EnvironmentGuard guard;
  const std::tuple<int, int, const char *> cases[] = {{0, 0, "0|"},
                                                      {invalid, 1, "1|invalid"},
                                                      {denormal, 2, "0|"},
                                                      {division, 4, "4|division"},
                                                      {inexact, 32, "32|inexact"},
                                                      {overflow, 8 + 32, "40|overflow"},
                                                      {underflow, 16 + 32, "48|underflow"},
                                                      {division | overflow, 4 + 8 + 32, "44|overflow"}};
  for (const auto &[raised, status, found] : cases) {
    CAPTURE(raised);
    raise_flags(raised);
    CHECK((status_word() == status && flags("get", "exception", "") == found));
  }
  raise_flags(invalid | division);
  CHECK(flags("get", "exception", "division") == "5|division");
  CHECK(flags("get", "exception", "inexact") == "5|invalid");
  flags("clearall", "", "");
  CHECK(status_word() == 0);
  volatile long double one = 1, zero = 0, result = one / zero;  // by the x87
  static_cast<void>(result);
  CHECK((status_word() == division && flags("get", "exception", "") == "4|division"));
  CLEARSTATUSFPQQ();
  CHECK(status_word() == 0);
}

TEST_CASE("IEEE_FLAGS refuses keywords that it does not know") {
  const EnvironmentGuard guard;
  const char *const calls[][3] = {{"GET", "direction", ""},        {"set", "direction", "Tozero"},
                                  {"set", "precision", "double2"}, {"set", "exception", "al"},
                                  {"set", "rounding", "tozero"},   {"clear", "x", ""}};
  for (const auto &[action, mode, in] : calls) CHECK(flags(action, mode, in) == "1|");
  CHECK(flags("get", "rounding", "", 20) == "1|mode not available");
  CHECK(flags("get", std::string(100, 'd'), "", 4) == "1|mode");
  CHECK(control_word() == 0x33F);
}

TEST_CASE("IEEE_HANDLER stores handlers, enables their traps and takes abbreviations") {
  const EnvironmentGuard guard;
  RecordingCore core;
  CHECK((handler("SET", "Common  ", first_handler) == 0 && core.first_call_argument(0) == 8));
  CHECK((control_word() & 0x3F) == 0x22);
  CHECK((handler("get", "inv") == address_of(first_handler) && handler("g", "inexact") == 0));
  CHECK((handler("se", "ov", second_handler) == 0 && handler("ge", "OVER") == address_of(second_handler)));
  CHECK(handler("get", "division") == address_of(first_handler));
  CHECK((handler("cl", "u") == 0 && (control_word() & 0x3F) == 0x32));
  CHECK((handler("clear", "all") == 0 && (control_word() & 0x3F) == 0x3F));
  for (const char *exception : {"inexact", "division", "underflow", "overflow", "invalid"})
    CHECK(handler("get", exception) == 0);

  const std::pair<const char *, const char *> refused[] = {{"get", "all"},     {"get", "al"},     {"get", ""},
                                                           {"", "invalid"},    {"et", "invalid"}, {"get", " inexact"},
                                                           {"get", "invalids"}};
  for (const auto &[action, exception] : refused) CHECK(handler(action, exception) == 1);
  CHECK(handler("get", "in") == 0);  // the first that begins so: inexact
  core.answer("for__signal", -1);
  CHECK(handler("set", "division", first_handler) == 1);
  const ImportOverride memory(library(), "malloc", [](size_t) -> void * { return nullptr; });
  CHECK(handler("get", "invalid") == 1);
}

TEST_CASE("the dispatcher calls the exception's handler with a clear status word and ends the program with 9") {
  const std::tuple<const char *, const char *, const char *> cases[] = {
      {"invalid", "81", "handler(8, 81) status 0\n"}, {"invalid", "83", ""}, {"all", "82", ""}, {"none", "86", ""}};
  for (const auto &[exception, code, output] : cases) {
    const ChildResult child = run_child("dispatches", {exception, code});
    CAPTURE(code);
    CHECK(child.exit_code == 9);
    CHECK(child.output == output);
  }
}

TEST_CASE("MATHERRQQ prints the error's text and mends the caller's type") {
  const ChildResult child = run_child("prints_math_errors");
  CHECK(child.output ==
        "log: Unknown error\n-1 0 77 0\nlog: Unknown error\n0 0 77 0\nlog: Domain error\n1 1 77 0\n"
        "log: Singularity error\n2 2 77 0\nlog: Overflow error\n3 3 77 0\nlog: Underflow error\n4 4 77 0\n"
        "log: Total loss of precision\n5 5 77 0\nlog: Partial loss of precision\n6 6 77 0\n"
        "log: Unknown error\n7 0 77 0\n");
  int32_t info = 9;
  int16_t retcode = 5;
  constexpr int16_t length = 3;
  MATHERRQQ(nullptr, &length, &info, &retcode);
  CHECK(retcode == 0);
}
