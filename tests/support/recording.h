// SPDX-License-Identifier: MIT
// A core runtime that does nothing but record what it is asked and answer what a test told it to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

struct RecordedCall {
  char line[320];        // "entry(1, null, &, \"text\")": & is an address
  int64_t arguments[5];  // the same, addresses as numbers
};

struct Answer {
  char entry[48];
  int64_t value;
  char text[300];  // for an entry that gives out a text
};

// Shared between the test and the recording core's DLL, hence without containers.
struct Recording {
  size_t call_count;
  RecordedCall calls[32];
  size_t answer_count;
  Answer answers[16];
};

// Exported by the recording core, for Fortran tests too.
extern "C" {
Recording *recording_core();
// What an integer entry answers from now on; without it, 0.
void recording_answer(const char *entry, int64_t value);
// The text that an entry gives out.
void recording_text(const char *entry, const char *text);
}

// The call that reports an error number.
inline std::string reports(int32_t code) { return "for_errsns_load(0, " + std::to_string(code) + ", 0, 0, 0)"; }

// A fresh recording for one test.
class RecordingCore {
 public:
  RecordingCore() : recording_(*recording_core()) { recording_ = {}; }

  static void answer(const char *entry, int64_t value) { recording_answer(entry, value); }

  // The calls since the last look, joined with blanks, and forgets them.
  std::string calls() {
    std::string text;
    for (size_t i = 0; i < recording_.call_count; ++i) {
      text += (i == 0 ? "" : " ") + std::string(recording_.calls[i].line);
    }
    recording_.call_count = 0;
    return text;
  }

  // An argument of the first call since the last look.
  [[nodiscard]] int64_t first_call_argument(size_t index) const { return recording_.calls[0].arguments[index]; }

 private:
  Recording &recording_;
};
