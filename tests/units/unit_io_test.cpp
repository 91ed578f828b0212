// SPDX-License-Identifier: MIT
// The unit bridges: what they ask of the core runtime and what they make of its answers.
#include "library_test.h"

namespace {
const int32_t unit = 11;

// IERRNO set to a number that no routine of this file gives.
void set_last_error(RecordingCore &core, int32_t error) {
  core.answer("__msportlib_d_fseek", error);
  call(FSEEK, unit, 0, 0);
  recording_core()->call_count = 0;
}
}  // namespace

TEST_CASE("FGETC and GETC store the character that they are answered; end of file is -1, any other failure 22") {
  RecordingCore core;
  const std::string failed = ' ' + records(EINVAL);
  const std::tuple<int32_t, std::string, std::string> rows[] = {
      {'A', "0|A", ""},     {0, {"0|\0", 3}, ""}, {0xFF, "0|\xFF", ""},         {-2, "-1|#", ""},
      {-1, "22|#", failed}, {-3, "22|#", failed}, {-2147483647, "22|#", failed}};
  for (const auto &[code, expected, record] : rows) {
    core.answer("__msportlib_d_readchar", code);
    errno = 3;
    CHECK(outcome(FGETC, unit, Room{1}) == expected);
    CHECK((core.calls() == "__msportlib_d_readchar(11, &, 1)" + record && errno == (record.empty() ? 3 : EINVAL)));
    if (record.empty())
      CHECK((outcome(GETC, Room{1}) == expected && core.calls() == "__msportlib_d_readchar(5, &, 1)"));
  }
  core.answer("__msportlib_d_readchar", 'A');
  GuardedText text(3);
  CHECK((call(FGETC, unit, text) == 0 && core.first_call_argument(1) == reinterpret_cast<int64_t>(text.data())));
  CHECK((GETC(text.data() + 1, 2) == 0 && text.str() == "AA#"));
}

TEST_CASE("FPUTC and PUTC pass the first character, sign-extended") {
  RecordingCore core;
  CHECK_CALLS(call(FPUTC, unit, "az"), 0, "__msportlib_d_writechar(11, 97)");
  CHECK_CALLS(call(PUTC, "\xC8"), 0, "__msportlib_d_writechar(6, -56)");
  core.answer("__msportlib_d_writechar", 1);
  CHECK_CALLS(call(PUTC, "a"), 0, "__msportlib_d_writechar(6, 97)");
  core.answer("__msportlib_d_writechar", -1);
  CHECK_CALLS(call(PUTC, "a"), EINVAL, "__msportlib_d_writechar(6, 97) " + records(EINVAL));
}

TEST_CASE("FSEEK and FSEEKI8 give and store the core runtime's result, 0 included") {
  RecordingCore core;
  errno = 3;
  for (const int32_t result : {22, -9, 0}) {
    const std::string stored = result == 0 ? "" : " IERRNO " + std::to_string(result);
    core.answer("__msportlib_d_fseek", result);
    CHECK_CALLS(call(FSEEK, unit, -100, 2), result, "__msportlib_d_fseek(11, -100, 2)" + stored);
    set_last_error(core, 7);
    core.answer("__msportlib_d_fseek_i8", result);
    CHECK_CALLS(call(FSEEKI8, unit, -5'000'000'000, 2), result, "__msportlib_d_fseek_i8(11, -5000000000, 2)" + stored);
  }
  CHECK(errno == 3);
}

TEST_CASE("positions pass through; FTELL stores the code of a failure, its low 32 bits, and GETPOS does not") {
  RecordingCore core;
  constexpr int64_t wide_failure = -(4'294'967'296 + 17);
  const auto answer_positions = [&core](int64_t position, int64_t wide_position) {
    core.answer("__msportlib_d_curpos", position);
    core.answer("__msportlib_d_curpos_i8", wide_position);
  };
  set_last_error(core, 7);
  answer_positions(2147483647, 5'000'000'000);
  CHECK((FTELL(&unit) == 2147483647 && FTELLI8(&unit) == 5'000'000'000));
  CHECK((GETPOS(&unit) == 2147483647 && GETPOSI8(&unit) == 5'000'000'000));
  answer_positions(-9, -22);
  CHECK((GETPOS(&unit) == -9 && GETPOSI8(&unit) == -22));
  CHECK(IERRNO() == 7);
  CHECK((FTELL(&unit) == -9 && IERRNO() == 9));
  CHECK((FTELLI8(&unit) == -22 && IERRNO() == 22));
  answer_positions(0, wide_failure);
  CHECK((FTELLI8(&unit) == wide_failure && IERRNO() == 17));
}

TEST_CASE("FLUSH hands its own argument on and gives the answer") {
  RecordingCore core;
  core.answer("FLUSHQQ", -1);
  CHECK((FLUSH(&unit) == -1 && core.first_call_argument(0) == reinterpret_cast<int64_t>(&unit)));
  core.calls();
  FLUSH(nullptr);
  CHECK(core.calls() == "FLUSHQQ(null)");
}

TEST_CASE("a success changes neither IERRNO nor errno, and the two error queries are errno") {
  RecordingCore core;
  set_last_error(core, 7);
  errno = ERANGE;
  CHECK((call(FPUTC, unit, "a") == 0 && call(FGETC, unit, Room{1}) == 0 && FTELL(&unit) == 0));
  CHECK((IERRNO() == 7 && GETLASTERROR() == ERANGE && GETLASTERRORQQ() == ERANGE));
}
