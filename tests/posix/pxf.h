// SPDX-License-Identifier: MIT
// PXF routines called with plain values and texts, as a Fortran program writes them.
#pragma once

#include "library_test.h"

constexpr int32_t unset = -77;
const int32_t no_handle = 9999, closed = 1500;

// What the core runtime has been told, in a directory of the test's own.
struct Posix {
  RecordingCore core;
  TestDir dir;
};

// Calls the routine with the arguments and ierror, and gives ierror.
int32_t pxf(auto *routine, auto &&...arguments) {
  int32_t error = unset;
  call(routine, arguments..., &error);
  return error;
}

// The same for a routine with an output before ierror: "output|ierror", after what it put into Rooms.
template <class Value = int32_t> std::string answer(auto *routine, auto &&...arguments) {
  Value value = unset;
  int32_t error = unset;
  const std::string texts = outcome(routine, arguments..., &value, &error);
  return texts + (texts.empty() ? "" : "|") + std::to_string(value) + '|' + std::to_string(error);
}

// That output, or ierror as a negative number.
template <class Value = int32_t> Value value_of(auto *routine, auto &&...arguments) {
  Value value = unset;
  const int32_t error = pxf(routine, arguments..., &value);
  return error == 0 ? value : -error;
}

inline int32_t create(std::string_view structure) { return value_of(PXFSTRUCTCREATE, structure); }

inline int64_t number(int32_t handle, std::string_view field) { return value_of<int64_t>(PXFINT8GET, handle, field); }

inline std::string text(int32_t handle, std::string_view field) {
  const std::string whole = answer(PXFSTRGET, handle, field, Room{300});
  return whole.substr(0, whole.find_last_not_of(' ', 299) + 1);
}

inline int32_t set_text(int32_t handle, std::string_view field, std::string_view value) {
  return pxf(PXFSTRSET, handle, field, value, static_cast<int32_t>(value.size()));
}

// What calls gave, one after the other: texts, numbers and whether something is so.
struct Shown {
  std::string text;
  Shown(std::string given) : text(std::move(given)) {}
  Shown(int64_t number) : text(std::to_string(number)) {}
};
inline std::string seen(std::initializer_list<Shown> results) {
  std::string all;
  for (const Shown &result : results) all += (all.empty() ? "" : " ") + result.text;
  return all;
}
