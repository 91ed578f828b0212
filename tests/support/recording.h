// SPDX-License-Identifier: MIT
// A core runtime that does nothing but record what it is asked and answer what a test told it to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "qwport.h"

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

// The same, and the number stored for IERRNO.
inline std::string records(int32_t code) { return reports(code) + " IERRNO " + std::to_string(code); }

// A fresh recording for one test.
class RecordingCore {
 public:
  RecordingCore() : recording_(*recording_core()) {
    recording_ = {};
    forget();
  }

  static void answer(const char *entry, int64_t value) { recording_answer(entry, value); }

  // The calls since the last look, joined with blanks, and what was stored for IERRNO; forgets them.
  std::string calls() {
    std::string text;
    for (size_t i = 0; i < recording_.call_count; ++i) text += ' ' + std::string(recording_.calls[i].line);
    if (IERRNO() != 0) text += " IERRNO " + std::to_string(IERRNO());
    forget();
    return text.erase(0, 1);
  }

  // An argument of the first call since the last look.
  [[nodiscard]] int64_t first_call_argument(size_t index) const { return recording_.calls[0].arguments[index]; }

 private:
  // An FSEEK that succeeds sets IERRNO to 0.
  void forget() {
    const Recording told = recording_;
    recording_ = {};
    const int32_t zero = 0;
    FSEEK(&zero, &zero, &zero);
    recording_ = told;
    recording_.call_count = 0;
  }

  Recording &recording_;
};
