// SPDX-License-Identifier: MIT
// The recording core's DLL: every entry of the contract.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <type_traits>

#include "qwcore.h"
#include "recording.h"

namespace {

Recording recording;

// A text argument with its length, shown in the record.
struct Text {
  const char *characters;
  size_t length;
};

template <class T> int64_t as_number(T value) {
  if constexpr (std::is_pointer_v<T>)
    return reinterpret_cast<int64_t>(value);
  else
    return static_cast<int64_t>(value);
}
int64_t as_number(Text text) { return as_number(text.characters); }

template <class T> std::string as_text(T value) {
  if constexpr (!std::is_pointer_v<T>)
    return std::to_string(value);
  else
    return value == nullptr ? "null" : "&";
}
std::string as_text(Text text) { return '"' + std::string(text.characters, text.length) + '"'; }

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

// What an entry answers, as the type that it gives.
struct Reply {
  int64_t value;
  template <class T> operator T() const {
    if constexpr (std::is_pointer_v<T>)
      return reinterpret_cast<T>(value);
    else
      return static_cast<T>(value);
  }
};

template <class... Parameters> Reply record(const char *entry, Parameters... parameters) {
  if (recording.call_count < std::size(recording.calls)) {
    std::string list;
    ((list += (list.empty() ? "" : ", ") + as_text(parameters)), ...);
    RecordedCall &call = recording.calls[recording.call_count++];
    call = {"", {as_number(parameters)...}};
    std::snprintf(call.line, sizeof call.line, "%s(%s)", entry, list.c_str());
  }
  const Answer *answer = find_answer(entry);
  return {answer == nullptr ? 0 : answer->value};
}

}  // namespace

Recording *recording_core() { return &recording; }

void recording_answer(const char *entry, int64_t value) { answer_for(entry).value = value; }

void recording_text(const char *entry, const char *text) {
  Answer &answer = answer_for(entry);
  std::snprintf(answer.text, sizeof answer.text, "%s", text);
}

void for_abort(const char *text, size_t length) { record(__func__, Text{text, length}, length); }
void for_stop(const char *text, size_t length) { record(__func__, Text{text, length}, length); }
void for_exit(const int32_t *status) { record(__func__, status); }
intptr_t for__signal(int32_t number, intptr_t handler) { return record(__func__, number, handler); }
int32_t for__raise(int32_t number) { return record(__func__, number); }
int32_t for__establish_user_error_handler(intptr_t handler, intptr_t context, intptr_t *third, intptr_t *fourth) {
  return record(__func__, handler, context, third, fourth);
}
double for__process_start_time() { return record(__func__); }
int32_t __msportlib_d_fseek_i8(int32_t unit, int64_t by, int32_t from) { return record(__func__, unit, by, from); }
int32_t __msportlib_d_fseek(int32_t unit, int32_t by, int32_t from) { return record(__func__, unit, by, from); }
int32_t __msportlib_d_readchar(int32_t unit, char *c, size_t c_len) { return record(__func__, unit, c, c_len); }
int32_t COMMITQQ(const int32_t *unit) { return record(__func__, unit); }
int32_t FLUSHQQ(const int32_t *unit) { return record(__func__, unit); }
int32_t __msportlib_d_writechar(int32_t unit, int32_t character) { return record(__func__, unit, character); }
int64_t __msportlib_d_curpos_i8(int32_t unit) { return record(__func__, unit); }
int32_t __msportlib_d_curpos(int32_t unit) { return record(__func__, unit); }
int32_t for_nargs() { return record(__func__); }
intptr_t __msportlib_d_gethandle(int32_t unit, char *name, int32_t *size) {
  if (name != nullptr) {
    std::snprintf(name, static_cast<size_t>(*size), "%s", answer_for(__func__).text);
    *size = static_cast<int32_t>(std::strlen(name));
  }
  return record(__func__, unit, name, size);
}
void for_getarg(const int32_t *number, char *text, int64_t *length, size_t room) {
  record(__func__, number, text, length, room);
}
int32_t for_deallocate(void **address) { return record(__func__, address); }
int32_t for_allocate(size_t size, void **address) { return record(__func__, size, address); }
float for_secnds_t(const float *start) { return record(__func__, start); }
double for_since_epoch_t(const double *start) { return record(__func__, start); }
void __FFresetseed() { record(__func__); }
void __FFsetseed(int32_t seed) { record(__func__, seed); }
double __FFdrand() { return record(__func__); }
int32_t __FFirand() { return record(__func__); }
float __FFfrand() { return record(__func__); }
void __FFgetseed(int32_t *seed) { record(__func__, seed); }
void for_errsns_load(int32_t error, int32_t system, int32_t status, int32_t unit, int32_t last) {
  record(__func__, error, system, status, unit, last);
}
int32_t __msportlib_d_get_POSIX_fd(int32_t unit) { return record(__func__, unit); }
void __msportlib_set_posix_io_flag(const int32_t *new_flag, int32_t *old_flag) { record(__func__, new_flag, old_flag); }
int32_t for_fdopen(int32_t fd, int32_t unit, const char *text, size_t size) {
  return record(__func__, fd, unit, text, size);
}
const char *for__setlocale(int32_t category, const char *locale) { return record(__func__, category, locale); }
const char *for__getenv(const char *name) {
  record(__func__, Text{name, std::strlen(name)});
  const Answer *answer = find_answer(__func__);
  return answer == nullptr ? nullptr : answer->text;
}
int32_t for__putenv(const char *assignment) { return record(__func__, Text{assignment, std::strlen(assignment)}); }
void for__issue_diagnostic(int32_t severity, int32_t code, const char *text) { record(__func__, severity, code, text); }
const char *for_qwcore_version() { return record(__func__); }
