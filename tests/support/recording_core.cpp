// SPDX-License-Identifier: MIT
// The recording core's DLL: every entry of the contract, with the types that qwcore.h gives it.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <type_traits>

#include "qwcore.h"
#include "recording.h"

namespace {

Recording recording;

std::string as_text(auto number) { return std::to_string(number); }
template <class T> std::string as_text(T *address) { return address == nullptr ? "null" : "&"; }
int64_t as_number(auto number) { return static_cast<int64_t>(number); }
template <class T> int64_t as_number(T *address) { return reinterpret_cast<int64_t>(address); }

// A text that comes first, with its length behind it or a NUL at its end, is shown.
std::string first_as_text(const char *text, auto... length) { return '"' + std::string(text, length...) + '"'; }
std::string first_as_text(auto value, auto...) { return as_text(value); }

Answer *find_answer(const char *entry) {
  for (size_t i = 0; i < recording.answer_count; ++i) {
    if (std::strcmp(recording.answers[i].entry, entry) == 0) return &recording.answers[i];
  }
  return nullptr;
}

// The entry's answer, made if it has none yet.
Answer &answer_for(const char *entry) {
  Answer *answer = find_answer(entry);
  if (answer == nullptr) answer = &recording.answers[recording.answer_count++];
  std::snprintf(answer->entry, sizeof answer->entry, "%s", entry);
  return *answer;
}

template <class... Parameters> int64_t record(const char *entry, Parameters... parameters) {
  const Answer *answer = find_answer(entry);
  if (recording.call_count < std::size(recording.calls)) {
    std::string list;
    ((list += (list.empty() ? first_as_text(parameters...) : ", " + as_text(parameters))), ...);
    RecordedCall &call = recording.calls[recording.call_count++];
    call = {"", {as_number(parameters)...}};
    std::snprintf(call.line, sizeof call.line, "%s(%s)", entry, list.c_str());
  }
  return answer == nullptr ? 0 : answer->value;
}

// What stands behind an entry of this type.
template <class Type, const char *name> struct Recorder;
template <class Result, class... Parameters, const char *name> struct Recorder<Result(Parameters...), name> {
  static Result run(Parameters... parameters) {
    const int64_t value = record(name, parameters...);
    if constexpr (std::is_arithmetic_v<Result>) return static_cast<Result>(value);
    if constexpr (std::is_pointer_v<Result>) return reinterpret_cast<Result>(value);
  }
};

}  // namespace

// Defines an entry with the type that its header gives it, which C++ cannot say: a jump to the recorder.
#define ENTRY(name)                                                           \
  static constexpr char name_of_##name[] = #name;                             \
  extern "C" __attribute__((used)) decltype(&name) const recorder_of_##name = \
      Recorder<decltype(name), name_of_##name>::run;                          \
  asm(".text\n.globl " #name "\n" #name ": jmp *recorder_of_" #name "(%rip)");
#include RECORDED_ENTRIES

Recording *recording_core() { return &recording; }

void recording_answer(const char *entry, int64_t value) { answer_for(entry).value = value; }

void recording_text(const char *entry, const char *text) {
  Answer &answer = answer_for(entry);
  std::snprintf(answer.text, sizeof answer.text, "%s", text);
}

intptr_t __msportlib_d_gethandle(int32_t unit, char *name, int32_t *size) {
  if (name != nullptr) {
    std::snprintf(name, static_cast<size_t>(*size), "%s", answer_for(__func__).text);
    *size = static_cast<int32_t>(std::strlen(name));
  }
  return record(__func__, unit, name, size);
}

const char *for__getenv(const char *name) {
  record(__func__, name);
  const Answer *answer = find_answer(__func__);
  return answer == nullptr ? nullptr : answer->text;
}
