// SPDX-License-Identifier: MIT
// ABORT and EXIT, up to what they hand to the core runtime.
#include <doctest/doctest.h>

#include <string>

#include "guarded_text.h"
#include "qwport.h"
#include "recording.h"

TEST_CASE("ABORT builds its text from the message") {
  RecordingCore core;
  const auto abort_with = [&core](std::string_view message) {
    GuardedText text(message);
    ABORT(text.data(), text.size());
    return core.calls();
  };
  CHECK(abort_with("no input") == R"(for_abort("abort: no input", 15))");
  CHECK(abort_with("kept  ") == R"(for_abort("abort: kept  ", 13))");
  CHECK(abort_with("") == R"(for_abort("abort: ", 7))");
  CHECK(abort_with(std::string_view("cut\0here", 8)) == R"(for_abort("abort: cut", 10))");

  const std::string full(240, 'm');
  const std::string full_call = "for_abort(\"abort: " + full + "\", 247)";
  CHECK(abort_with(full) == full_call);
  CHECK(abort_with(full + 'n') == full_call);
  CHECK(abort_with(full + std::string(60, 'n')) == full_call);
}

TEST_CASE("ABORT without a message says so") {
  RecordingCore core;
  ABORT(nullptr, 0);
  CHECK(core.calls() == R"(for_abort("abort: Fortran Abort Called", 27))");
}

TEST_CASE("EXIT hands its own argument on, present or not") {
  RecordingCore core;
  const int32_t status = 3;
  EXIT(&status);
  CHECK(core.first_call_argument(0) == reinterpret_cast<int64_t>(&status));
  core.calls();
  EXIT(nullptr);
  CHECK(core.calls() == "for_exit(null)");
}
