// SPDX-License-Identifier: MIT
// ABORT and EXIT, up to what they hand to the core runtime.
#include "library_test.h"

TEST_CASE("ABORT builds its text from the message") {
  RecordingCore core;
  const std::string full(240, 'm');
  const std::pair<std::string, std::string> rows[] = {
      {"no input", "no input"},  {"kept  ", "kept  "}, {"", ""},
      {{"cut\0here", 8}, "cut"}, {full, full},         {full + 'n', full}};
  for (const auto &[message, kept] : rows) {
    call(ABORT, message);
    CHECK(core.calls() == "for_abort(\"abort: " + kept + "\", " + std::to_string(7 + kept.size()) + ')');
  }
  ABORT(nullptr, 0);
  CHECK(core.calls() == R"(for_abort("abort: Fortran Abort Called", 27))");
}

TEST_CASE("EXIT hands its own argument on, present or not") {
  RecordingCore core;
  const int32_t status = 3;
  EXIT(&status);
  CHECK(core.first_call_argument(0) == reinterpret_cast<int64_t>(&status));
  EXIT(nullptr);
  CHECK(core.calls() == "for_exit(&) for_exit(null)");
}
