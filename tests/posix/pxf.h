// SPDX-License-Identifier: MIT
// PXF routines called with plain values and texts, as a Fortran program writes them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>

#include "guarded_text.h"
#include "qwport.h"

constexpr int32_t unset = -77;
const int32_t no_handle = 9999;

inline auto address(const int32_t &value) { return std::tuple(&value); }
inline auto address(const int64_t &value) { return std::tuple(&value); }
inline auto address(int32_t *output) { return std::tuple(output); }
inline auto address(int64_t *output) { return std::tuple(output); }
inline auto address(void (*procedure)(int32_t *)) { return std::tuple(procedure); }
inline auto address(std::string_view text) { return std::tuple(text.data()); }
inline auto address(GuardedText &text) { return std::tuple(text.data()); }

template <class Argument> auto length([[maybe_unused]] Argument &argument) {
  if constexpr (std::is_convertible_v<Argument &, std::string_view>) {
    return std::tuple(std::string_view(argument).size());
  } else if constexpr (std::is_same_v<Argument, GuardedText>) {
    return std::tuple(argument.size());
  } else {
    return std::tuple<>();
  }
}

// Calls the routine with the arguments, ierror and the hidden lengths; gives ierror.
template <class Routine, class... Arguments> int32_t pxf(Routine *routine, Arguments &&...arguments) {
  int32_t error = unset;
  std::apply(routine, std::tuple_cat(address(arguments)..., std::tuple(&error), length(arguments)...));
  return error;
}

// The same for a routine whose last argument before ierror is an output: "output|ierror".
template <class Value = int32_t, class Routine, class... Arguments>
std::string answer(Routine *routine, Arguments &&...arguments) {
  Value value = unset;
  const int32_t error = pxf(routine, arguments..., &value);
  return std::to_string(value) + '|' + std::to_string(error);
}

// The same with an output text of this room before it: "text|output|ierror".
template <class Routine, class... Arguments>
std::string text_answer(size_t room, Routine *routine, Arguments &&...arguments) {
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
