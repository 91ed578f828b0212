// SPDX-License-Identifier: MIT
// The unit bridges: what they ask of the core runtime and what they make of its answers.
#include <doctest/doctest.h>

#include <cerrno>

#include "guarded_text.h"
#include "qwport.h"
#include "recording.h"

namespace {
const int32_t unit = 11;

// IERRNO set to a number that no routine of this file gives.
void set_last_error(RecordingCore &core, int32_t error) {
  core.answer("__msportlib_d_fseek", error);
  const int32_t zero = 0;
  FSEEK(&unit, &zero, &zero);
  recording_core()->call_count = 0;
}
}  // namespace

TEST_CASE("FGETC stores the character that the core runtime answers in the first position") {
  RecordingCore core;
  GuardedText c(1), text(3);
  for (const char character : {'A', '\0', '\xFF'}) {
    core.answer("__msportlib_d_readchar", static_cast<unsigned char>(character));
    CHECK(FGETC(&unit, c.data(), c.size()) == 0);
    CHECK(c.str() == std::string(1, character));
    CHECK(core.first_call_argument(1) == reinterpret_cast<int64_t>(c.data()));
    CHECK(core.calls() == "__msportlib_d_readchar(11, &, 1)");
  }
  core.answer("__msportlib_d_readchar", 'A');
  CHECK((FGETC(&unit, text.data(), text.size()) == 0 && text.str() == "A##"));
  CHECK((GETC(text.data() + 1, 2) == 0 && text.str() == "AA#"));
}

TEST_CASE("end of file is -1 and changes nothing else") {
  RecordingCore core;
  core.answer("__msportlib_d_readchar", -2);
  errno = 3;
  GuardedText c(1);
  CHECK((FGETC(&unit, c.data(), c.size()) == -1 && core.calls() == "__msportlib_d_readchar(11, &, 1)"));
  CHECK((GETC(c.data(), c.size()) == -1 && core.calls() == "__msportlib_d_readchar(5, &, 1)"));
  CHECK((c.str() == "#" && errno == 3));
}

TEST_CASE("any other failure of FGETC is 22, whatever the core runtime's code") {
  RecordingCore core;
  GuardedText c(1);
  for (const int code : {-1, -3, -2147483647}) {
    core.answer("__msportlib_d_readchar", code);
    CHECK((FGETC(&unit, c.data(), c.size()) == EINVAL && errno == EINVAL));
    CHECK((core.calls() == "__msportlib_d_readchar(11, &, 1) " + records(EINVAL) && c.str() == "#"));
  }
}

TEST_CASE("FPUTC and PUTC pass the first character, sign-extended") {
  RecordingCore core;
  CHECK((FPUTC(&unit, "az", 2) == 0 && core.calls() == "__msportlib_d_writechar(11, 97)"));
  CHECK((PUTC("\xC8", 1) == 0 && core.calls() == "__msportlib_d_writechar(6, -56)"));
  core.answer("__msportlib_d_writechar", 1);
  CHECK((PUTC("a", 1) == 0 && core.calls() == "__msportlib_d_writechar(6, 97)"));
  core.answer("__msportlib_d_writechar", -1);
  CHECK((PUTC("a", 1) == EINVAL && core.calls() == "__msportlib_d_writechar(6, 97) " + records(EINVAL)));
}

TEST_CASE("FSEEK and FSEEKI8 give and store the core runtime's result, 0 included") {
  RecordingCore core;
  const int32_t offset = -100;
  const int64_t wide_offset = -5'000'000'000;
  const int32_t origin = 2;
  errno = 3;
  for (const int32_t result : {22, -9, 0}) {
    const std::string stored = result == 0 ? "" : " IERRNO " + std::to_string(result);
    core.answer("__msportlib_d_fseek", result);
    CHECK(FSEEK(&unit, &offset, &origin) == result);
    CHECK(core.calls() == "__msportlib_d_fseek(11, -100, 2)" + stored);
    set_last_error(core, 7);
    core.answer("__msportlib_d_fseek_i8", result);
    CHECK(FSEEKI8(&unit, &wide_offset, &origin) == result);
    CHECK(core.calls() == "__msportlib_d_fseek_i8(11, -5000000000, 2)" + stored);
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
  CHECK(FLUSH(&unit) == -1);
  CHECK(core.first_call_argument(0) == reinterpret_cast<int64_t>(&unit));
  core.calls();
  FLUSH(nullptr);
  CHECK(core.calls() == "FLUSHQQ(null)");
}

TEST_CASE("a success changes neither IERRNO nor errno, and the two error queries are errno") {
  RecordingCore core;
  set_last_error(core, 7);
  errno = ERANGE;
  GuardedText c(1);
  CHECK((FPUTC(&unit, "a", 1) == 0 && FGETC(&unit, c.data(), 1) == 0 && FTELL(&unit) == 0));
  CHECK((IERRNO() == 7 && GETLASTERROR() == ERANGE && GETLASTERRORQQ() == ERANGE));
}
