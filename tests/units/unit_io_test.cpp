// SPDX-License-Identifier: MIT
// What the unit routines ask of the core runtime, what they make of its answers, and which failures IERRNO shows; errno
// has them all.
#include <vector>

#include "library_test.h"

namespace {

constexpr int32_t unit = 11, earlier_error = 7, earlier_errno = 3;
const std::string kept = " IERRNO 7", failed = ' ' + records(EINVAL);

// A routine, what it asks of the core runtime, and of each answer the outcome and what the core runtime is told then.
using Answers = std::vector<std::tuple<int64_t, std::string, std::string>>;
const std::tuple<std::string (*)(), std::string, Answers> routines[] = {
    {[] { return outcome(FGETC, unit, Room{3}); },
     "__msportlib_d_readchar(11, &, 3)",
     {{'A', "0|A##", kept},
      {0, {"0|\0##", 5}, kept},
      {0xFF, "0|\xFF##", kept},
      {-2, "-1|###", kept},
      {-3, "22|###", failed}}},
    {[] { return outcome(GETC, Room{1}); },
     "__msportlib_d_readchar(5, &, 1)",
     {{'A', "0|A", kept}, {-2, "-1|#", kept}, {-1, "-1|#", kept}}},
    {[] { return outcome(FPUTC, unit, "\xC8z"); },
     "__msportlib_d_writechar(11, -56)",
     {{0, "0", kept}, {-1, "22", failed}}},
    {[] { return outcome(PUTC, "az"); }, "__msportlib_d_writechar(6, 97)", {{1, "0", kept}, {-1, "22", failed}}},
    {[] { return outcome(FSEEK, unit, -100, 2); },
     "__msportlib_d_fseek(11, -100, 2)",
     {{22, "22", " IERRNO 22"}, {-9, "-9", " IERRNO -9"}, {0, "0", ""}}},
    {[] { return outcome(FTELL, unit); },
     "__msportlib_d_curpos(11)",
     {{0, "0", kept}, {2147483647, "2147483647", kept}, {-9, "-9", " IERRNO 9"}}},
    {[] { return outcome(FTELLI8, unit); },  // its low 32 bits
     "__msportlib_d_curpos_i8(11)",
     {{5'000'000'000, "5000000000", kept}, {-22, "-22", " IERRNO 22"}, {-4'294'967'313, "-4294967313", " IERRNO 17"}}},
    {[] { return outcome(GETPOS, unit); }, "__msportlib_d_curpos(11)", {{7, "7", kept}, {-9, "-9", kept}}},
    {[] { return outcome(FLUSH, unit); }, "FLUSHQQ(&)", {{-1, "-1", kept}, {0, "0", kept}}},
    {[] { return std::to_string(FLUSH(nullptr)); }, "FLUSHQQ(null)", {{1, "1", kept}}},
    {[] { return call(EXIT, 3), std::string(); }, "for_exit(&)", {{0, "", kept}}},
    {[] { return EXIT(nullptr), std::string(); }, "for_exit(null)", {{0, "", kept}}},
};

}  // namespace

TEST_CASE("each routine asks the core runtime once, gives its answer, and records what it is to record") {
  RecordingCore core;
  for (const auto &[use, asked, answers] : routines) {
    for (const auto &[value, outcome, told] : answers) {
      core.answer("__msportlib_d_fseek", earlier_error);
      call(FSEEK, 0, 0, 0);
      recording_core()->call_count = 0;
      core.answer(asked.substr(0, asked.find('(')).c_str(), value);
      errno = earlier_errno;
      CHECK(use() == outcome);
      const int32_t expected_errno = told == failed ? EINVAL : earlier_errno;
      CHECK((GETLASTERROR() == expected_errno && GETLASTERRORQQ() == expected_errno));
      CHECK(core.calls() == asked + told);
    }
  }
}

TEST_CASE("failures of other routines are not shown by IERRNO") {
  RecordingCore core;
  for (auto *routine : {CHANGEDIRQQ, MAKEDIRQQ}) CHECK((call(routine, "absent/name") == 0 && IERRNO() == 0));
}

TEST_CASE("ABORT builds its text from the message") {
  RecordingCore core;
  const std::string full(240, 'm');
  const std::pair<std::string, std::string> rows[] = {
      {"no input  ", "no input  "}, {"", ""}, {{"cut\0here", 8}, "cut"}, {full, full}, {full + 'n', full}};
  for (const auto &[message, kept_text] : rows) {
    call(ABORT, message);
    CHECK(core.calls() == "for_abort(\"abort: " + kept_text + "\", " + std::to_string(7 + kept_text.size()) + ')');
  }
  ABORT(nullptr, 0);
  CHECK(core.calls() == R"(for_abort("abort: Fortran Abort Called", 27))");
}
