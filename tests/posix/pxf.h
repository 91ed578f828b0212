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

// The same for a routine whose last argument before ierror is an output: "output|ierror".
template <class Value = int32_t> std::string answer(auto *routine, auto &&...arguments) {
  Value value = unset;
  const int32_t error = pxf(routine, arguments..., &value);
  return std::to_string(value) + '|' + std::to_string(error);
}

// The same with an output text of this room before it: "text|output|ierror".
std::string text_answer(size_t room, auto *routine, auto &&...arguments) {
  GuardedText text(room);
  const std::string rest = answer(routine, arguments..., text);
  return text.str() + '|' + rest;
}

inline int32_t create(std::string_view structure) {
  int32_t handle = unset;
  return pxf(PXFSTRUCTCREATE, structure, &handle) == 0 ? handle : unset;
}

inline int64_t number(int32_t handle, std::string_view field) {
  int64_t value = unset;
  const int32_t error = pxf(PXFINT8GET, handle, field, &value);
  return error == 0 ? value : -error;
}

inline std::string text(int32_t handle, std::string_view field) {
  std::string whole = text_answer(300, PXFSTRGET, handle, field);
  return whole.substr(0, whole.find_last_not_of(' ', 299) + 1);
}

inline int32_t set_text(int32_t handle, std::string_view field, std::string_view value) {
  return pxf(PXFSTRSET, handle, field, value, static_cast<int32_t>(value.size()));
}
