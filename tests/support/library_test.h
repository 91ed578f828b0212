// SPDX-License-Identifier: MIT
// What the tests of the library's routines share: calls as Fortran makes them, and a host that fails.
#pragma once

#include <doctest/doctest.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include <io.h>

#include "child.h"
#include "guarded_text.h"
#include "import_override.h"
#include "library.h"
#include "qwport.h"
#include "recording.h"
#include "test_dir.h"

// ---- Calls --------------------------------------------------------------------------------------

// An argument that a routine fills with a text of this length.
struct Room {
  size_t length;
};

namespace calls {

struct Output : GuardedText {
  using GuardedText::GuardedText;
};

template <class Parameter> decltype(auto) hold(auto &&argument) {
  using Argument = std::remove_cvref_t<decltype(argument)>;
  using Target = std::remove_const_t<std::remove_pointer_t<Parameter>>;
  if constexpr (std::is_same_v<Argument, Room>)
    return Output(argument.length);
  else if constexpr (std::is_same_v<Argument, GuardedText>)
    return (argument);
  else if constexpr (std::is_same_v<Target, char> && std::is_convertible_v<Argument, std::string_view>)
    return GuardedText(std::string_view(argument));
  else if constexpr (std::is_pointer_v<Parameter> && (std::is_arithmetic_v<Argument> || std::is_enum_v<Argument>))
    return std::array{static_cast<Target>(argument)};
  else
    return static_cast<Parameter>(argument);
}

auto passed(auto &held) {
  if constexpr (requires { held.data(); })
    return held.data();
  else
    return held;
}

auto length(auto &held) {
  if constexpr (std::is_base_of_v<GuardedText, std::remove_reference_t<decltype(held)>>)
    return std::tuple(held.size());
  else
    return std::tuple<>();
}

std::string shown(auto &held) {
  if constexpr (std::is_same_v<std::remove_reference_t<decltype(held)>, Output>) return '|' + held.str();
  return "";
}

template <bool with_texts> auto make(auto routine, auto &&...held) {
  const auto call = [&] { return std::apply(routine, std::tuple_cat(std::tuple(passed(held)...), length(held)...)); };
  if constexpr (!with_texts) {
    return call();
  } else if constexpr (std::is_void_v<decltype(call())>) {
    call();
    return (std::string() + ... + shown(held)).erase(0, 1);
  } else {
    const auto result = call();
    return (std::to_string(result) + ... + shown(held));
  }
}

template <bool with_texts, class Result, class... Parameters, class... Arguments>
auto convert(Result (*routine)(Parameters...), Arguments &&...arguments) {
  return [&]<size_t... i>(std::index_sequence<i...>) {
    return make<with_texts>(routine, hold<std::tuple_element_t<i, std::tuple<Parameters...>>>(arguments)...);
  }
  (std::index_sequence_for<Arguments...>{});
}

}  // namespace calls

// The result of a call with numbers by address and texts in guarded buffers, their lengths behind all else.
auto call(auto routine, auto &&...arguments) { return calls::convert<false>(routine, arguments...); }

// The same with the texts that it gave: "result|text|text", or "text|text" of a subroutine.
std::string outcome(auto routine, auto &&...arguments) { return calls::convert<true>(routine, arguments...); }

// A test that looks at the core runtime's calls, in a directory of its own. What the library allocates and the
// listings that it opens must be gone at the end.
class InTestDir {
 public:
  InTestDir() { held_ = 0; }
  ~InTestDir() { CHECK(held_ == 0); }
  InTestDir(const InTestDir &) = delete;
  InTestDir &operator=(const InTestDir &) = delete;

 protected:
  RecordingCore core;
  TestDir dir;

 private:
  static bool choose(HostCall &call) {
    for (const char *name : {"malloc", "FindFirstFileA", "_findfirst64"})
      if (call.name == name) call.holding = Holding::gives;
    for (const char *name : {"free", "FindClose", "_findclose"})
      if (call.name == name) call.holding = Holding::takes;
    if (call.name != "malloc") call.failure = -1;
    return call.holding != Holding::none;
  }
  static inline std::atomic<int> held_;
  HostCalls calls_{library(), held_, [](const HostCall &) { return false; }, choose};
};

// Checks a result, and then the calls that "core" has recorded.
#define CHECK_CALLS(expression, expected, recorded) \
  do {                                              \
    CHECK((expression) == (expected));              \
    CHECK(core.calls() == (recorded));              \
  } while (false)

// ---- Failures -----------------------------------------------------------------------------------

// A host call that fails; without parameters it stands for a call with any.
class FailingCall {
 public:
  explicit FailingCall(const char *function, DWORD error = 0, intptr_t result = 0)
      : override_(library(), function, fail) {
    host_error = error;
    failure = result;
  }

 private:
  static inline DWORD host_error;
  static inline intptr_t failure;
  static intptr_t fail() {
    SetLastError(host_error);
    return failure;
  }
  ImportOverride override_;
};

// The child program ends with this assertion.
inline void check_assertion(const std::string &child, const std::string &assertion) {
  const ChildResult result = run_child(child);
  CHECK(result.exit_code == 3);
  CHECK(result.output.find("Assertion failed: " + assertion) != std::string::npos);
}
