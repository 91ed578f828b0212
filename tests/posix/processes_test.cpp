// SPDX-License-Identifier: MIT
// Programs, signals, the alarm and the environment, with the core runtime for GNU Fortran.
#include <csignal>
#include <cstdio>
#include <vector>

#include <sys/stat.h>

#include "../core/test_units.h"
#include "pxf.h"

namespace {

// An array of CHARACTER elements, and how many characters of each count.
struct Words {
  static constexpr size_t element_length = 1000;
  std::string elements;
  std::vector<int32_t> lengths;

  Words(std::initializer_list<std::pair<std::string, int32_t>> words) {
    for (const auto &[word, length] : words) {
      elements += word + std::string(element_length - word.size(), ' ');
      lengths.push_back(length);
    }
  }
  [[nodiscard]] int32_t count() const { return static_cast<int32_t>(lengths.size()); }
};

// Runs a program in place of this one, and gives ierror if there is none.
int32_t execute(const std::string &how, const std::string &program, const Words &words, const Words &variables = {}) {
  const int32_t trimmed = 0, count = words.count(), variable_count = variables.count();
  int32_t error = unset;
  if (how == "execve") {
    PXFEXECVE(program.data(), &trimmed, words.elements.data(), words.lengths.data(), &count, variables.elements.data(),
              variables.lengths.data(), &variable_count, &error, program.size(), Words::element_length,
              Words::element_length);
  } else {
    (how == "execv" ? PXFEXECV : PXFEXECVP)(program.data(), &trimmed, words.elements.data(), words.lengths.data(),
                                            &count, &error, program.size(), Words::element_length);
  }
  return error;
}

int32_t handled;
void keep_signal(int32_t *signal) { handled = handled * 100 + *signal; }

}  // namespace

CHILD_PROGRAM(tells) {
  std::printf("%s", file_contents("unit.txt").c_str());
  for (const std::string &word : arguments) std::printf("%d:%.9s|", static_cast<int>(word.size()), word.c_str());
  std::printf("%s", std::getenv("QWPORT_ONLY"));
  return 77;
}

CHILD_PROGRAM(ends) {
  const std::string &how = arguments[0], path = std::string("PATH=") + std::getenv("PATH");
  pxf(PXFPUTC, "through");
  open_unit(21, "unit.txt");
  write_line(21, "held");
  if (how == "execvp") return execute(how, "cmd", {{"cmd", 0}, {"/c", 0}, {"exit 65", 0}});
  if (how.starts_with("exec")) {
    // One length is beyond its element.
    const Words words = {{own_path(), 0},     {"--child", 0},      {"tells", 5},
                         {"two words", 1001}, {R"(q\"uo"te\)", 9}, {"", 0}};
    return execute(how, own_path(), words, {{"QWPORT_ONLY=here", 0}, {path, 0}});
  }
  if (how == "exit") call(PXFEXIT, 12);
  if (how == "fastexit") call(PXFFASTEXIT, 13);
  value_of(PXFALARM, 1);
  return pxf(PXFPAUSE);
}

TEST_CASE_FIXTURE(TestDir, "a program ends as another does, at once, or by an alarm without a handler") {
  _putenv("QWPORT_ONLY=inherited");
  const std::string words = "theld\n1000:two words|9:q\\\"uo\"te\\|0:|";
  // The exit code, the output and what is in the unit's file.
  const std::pair<const char *, std::string> rows[] = {{"execv", "77 " + words + "inherited held\r\n"},
                                                       {"execve", "77 " + words + "here held\r\n"},
                                                       {"execvp", "65 t held\r\n"},
                                                       {"exit", "12 t held\r\n"},
                                                       {"fastexit", "13 t "},
                                                       {"alarm", "14 t "}};
  for (const auto &[how, expected] : rows) {
    const ChildResult result = run_child("ends", {how});
    CHECK(seen({result.exit_code, result.output, file_contents("unit.txt")}) == expected);
  }
  CHECK(seen({execute("execv", "no such program", {{"x", 0}}), execute("execv", own_path(), {}),
              execute("execv", own_path(), {{"x", -1}}), execute("execve", "no such program", {{"x", 0}}),
              execute("execve", own_path(), {{"x", 0}}, {{"x", -1}})}) == "2 22 22 2 22");
}

TEST_CASE("signals are handled by procedures or ignored, and an old action is put back") {
  const int32_t own = value_of(PXFGETPID), handle = value_of(PXFGETSUBHANDLE, keep_signal);
  const int32_t action = create("sigaction"), old = create("sigaction");
  for (const int32_t signal : {SIGINT, SIGILL, SIGFPE, SIGSEGV, SIGTERM, SIGABRT}) {
    handled = 0;
    pxf(PXFINTSET, action, "sa_handler", handle);
    pxf(PXFINTSET, action, "sa_mask", signal + 1);
    CHECK(seen({pxf(PXFSIGACTION, signal, action, 0), pxf(PXFKILL, own, signal), handled}) == seen({0, 0, signal}));
    pxf(PXFINTSET, action, "sa_handler", 1);
    CHECK(seen({pxf(PXFSIGACTION, signal, action, old), pxf(PXFKILL, own, signal), handled}) == seen({0, 0, signal}));
    CHECK(seen({number(old, "sa_handler"), number(old, "sa_mask")}) == seen({handle, signal + 1}));
    CHECK(seen({pxf(PXFSIGACTION, signal, 0, action), number(action, "sa_handler"), pxf(PXFSIGACTION, signal, old, 0),
                pxf(PXFKILL, own, signal), handled}) == seen({0, 1, 0, 0, 101 * signal}));
  }
  // SIGNAL has a number of its own for this one.
  handled = 0;
  CHECK(call(SIGNAL, 6, keep_signal, -1) >= 0);
  CHECK(seen({pxf(PXFSIGACTION, SIGABRT, action, old), pxf(PXFSIGACTION, SIGABRT, old, 0), pxf(PXFKILL, own, SIGABRT),
              handled}) == "0 0 0 6");
  for (const int32_t none : {0, 1, 9, 23, -1}) CHECK(pxf(PXFSIGACTION, none, action, 0) == EINVAL);
  pxf(PXFINTSET, action, "sa_handler", 5);
  CHECK(seen({pxf(PXFSIGACTION, SIGINT, action, 0), pxf(PXFSIGACTION, SIGINT, no_handle, 0)}) == "22 127");
}

TEST_CASE("an alarm ends a pause and a sleep, and tells the seconds of the one before") {
  constexpr int32_t alarm_signal = 14;
  const auto is_long = [](int32_t seconds) { return seconds > 900 && seconds <= 1000; };
  const int32_t action = create("sigaction");
  pxf(PXFINTSET, action, "sa_handler", value_of(PXFGETSUBHANDLE, keep_signal));
  handled = 0;
  CHECK(seen({pxf(PXFSIGACTION, alarm_signal, action, 0), answer(PXFALARM, 1000), is_long(value_of(PXFALARM, 0)),
              answer(PXFALARM, 1000), is_long(value_of(PXFALARM, 1)), pxf(PXFPAUSE), handled}) == "0 0|0 1 0|0 1 4 14");
  // The alarm was set before the sleep began, so that less than a whole second may have gone.
  CHECK(seen({answer(PXFALARM, 1), is_long(value_of(PXFSLEEP, 1000)), answer(PXFSLEEP, 0), answer(PXFALARM, -1),
              answer(PXFSLEEP, -1)}) == "0|0 1 0|0 -77|22 -77|22");
}

TEST_CASE("variables are set, kept, told and all removed, whatever their names") {
  const auto set = [](const char *name, const char *value, int32_t length, bool overwrites) {
    return pxf(PXFSETENV, name, 0, value, length, overwrites);
  };
  SetEnvironmentVariableW(L"QWPORT_\u4E2D", L"x");
  CHECK(seen({set("QWPORT_PXF", "abc ", 4, true), set("QWPORT_PXF", "other", 0, false),
              answer(PXFGETENV, "QWPORT_PXF...", 10, Room{4}), set("QWPORT_PXF", "other", 0, true),
              answer(PXFGETENV, "QWPORT_PXF", 0, Room{4})}) == "0 0 abc |4|0 0 othe|5|129");
  CHECK(seen({set("A=B", "x", 0, true), set(" ", "x", 0, false), pxf(PXFCLEARENV),
              answer(PXFGETENV, "QWPORT_PXF", 0, Room{1})}) == "22 22 0  |0|22");
  for (const wchar_t *name : {L"PATH", L"QWPORT_\u4E2D"}) CHECK(GetEnvironmentVariableW(name, nullptr, 0) == 0);
}

TEST_CASE_FIXTURE(TestDir, "a unit and its descriptor are one file") {
  constexpr int32_t unit = 21;
  GuardedText letter(2);
  const auto read = [&](int32_t from) { return seen({pxf(PXFFGETC, from, letter), letter.str()}); };
  const int32_t file = value_of(PXFOPEN, "units.txt", 0, _O_CREAT + _O_RDWR + _O_BINARY, _S_IWRITE);
  CHECK(seen({answer(PXFWRITE, file, "abc", 3), answer(PXFLSEEK, file, 0, 0),
              pxf(PXFFDOPEN, file, unit, "FORM=FORMATTED"), read(unit), answer(PXFFTELL, unit),
              pxf(PXFFSEEK, unit, -1, SEEK_END), pxf(PXFFPUTC, unit, "\xE9x"), pxf(PXFFFLUSH, unit),
              file_contents("units.txt"), read(unit)}) == "3|0 0|0 0 0 a# 1|0 0 0 0 ab\xE9 -1 a#");
  write_line(unit, "line");
  CHECK(seen({value_of(PXFFILENO, unit) == file, file_contents("units.txt")}) == "1 ab\xE9line\r\n");
  CHECK(seen({answer(PXFFILENO, 77), pxf(PXFFDOPEN, closed, 77, ""), pxf(PXFFFLUSH, 77), pxf(PXFFSEEK, 77, 0, 0),
              answer(PXFFTELL, 77), read(77), pxf(PXFFPUTC, 77, "x"), GETLASTERROR()}) ==
        "-77|9 9 9 22 -77|22 -9 a# -9 9");
  CHECK(seen({answer(PXFLSEEK, file, 1, 0), pxf(PXFDUP2, file, 0), pxf(PXFGETC, letter), letter.str(),
              answer(PXFPOSIXIO, 1), answer(PXFPOSIXIO, 0)}) == "1|0 0 0 b# 0|0 1|0");
  close_unit(unit);
  CHECK(seen({pxf(PXFCLOSE, 0), pxf(PXFCLOSE, file)}) == "0 9");
}
