// SPDX-License-Identifier: MIT
// Calls of exported routines with every argument in pages of its own, and what is seen of each.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <windows.h>

#include "guarded_text.h"

// ---- Failures -----------------------------------------------------------------------------------

// Puts a counter before every import of these modules, for good.
void watch_imports(const std::vector<HMODULE> &modules);

// Which call of the calling thread fails, counted from 1.
struct Failing {
  int call = 0;                // with 0 none does
  bool has_memory = false;     // calls for memory succeed, and do not count
  bool without_errno = false;  // some C run-times leave errno alone where others set it
};
void arm_failure(const Failing &failing);
// The function that failed, or null if there was no such call.
const char *disarm_failure();

// Blocks of memory, listings and environment copies that the modules hold.
int held_resources();

// ---- Arguments ----------------------------------------------------------------------------------
// Numbers, texts and arrays are copied to guarded pages, and so is what converts to the parameter's type. An argument
// that is not given stands for a number 1, the text "a.txt" or an output.

constexpr char unset = '#';  // what stands in outputs before the call

// What the routine fills: so many elements, for a text its length.
struct Out {
  size_t elements = 1;
};
// An output for a number or a handle, and how what has got it is given back.
struct Made : Out {
  explicit Made(void (*procedure)(int32_t made)) : give_back(procedure) {}
  void (*give_back)(int32_t made);
};
struct Default {};

template <class T> std::string bytes_of(const T *elements, size_t count) {
  return {reinterpret_cast<const char *>(elements), count * sizeof(T)};
}

// The bytes of an argument for a parameter that is the address of a Target.
template <class Target, bool is_input, class Argument> std::string bytes_for(const Argument &argument) {
  using Element = std::conditional_t<std::is_void_v<Target>, int64_t, Target>;
  if constexpr (std::is_base_of_v<Out, Argument>) {
    return std::string(argument.elements * sizeof(Element), unset);
  } else if constexpr (std::is_same_v<Argument, Default>) {
    if constexpr (!is_input) return bytes_for<Target, false>(Out{std::is_same_v<Target, char> ? 260U : 1});
    if constexpr (std::is_same_v<Target, char>) return "a.txt";
    return bytes_for<Target, true>(1);
  } else if constexpr (std::is_convertible_v<Argument, std::string_view>) {
    return std::string(std::string_view(argument));
  } else if constexpr (requires { argument.size(); }) {
    return bytes_of(argument.data(), argument.size());
  } else {
    const auto value = static_cast<Element>(argument);
    return bytes_of(&value, 1);
  }
}

// ---- Calls --------------------------------------------------------------------------------------

struct Observation {
  int64_t result = 0;                // of a function; of a subroutine 0
  int32_t reported = 0;              // what the core runtime was told
  std::vector<std::string> outputs;  // the bytes of each argument that a routine can change
  const char *failed_function = nullptr;
};

// An INTEGER at the beginning of an argument's bytes.
inline int32_t number_in(const std::string &bytes) {
  int32_t number = 0;
  std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
  return number;
}

class Case {
 public:
  Case(const Failing &failing, bool at_end, int calls = 1) : failing_(failing), at_end_(at_end), calls_(calls) {}

  // Calls the routine with numbers by address, texts with their lengths behind all other arguments.
  template <class Result, class... Parameters, class... Arguments>
  void call(Result (*routine)(Parameters...), const Arguments &...given) {
    constexpr size_t lengths = (size_t{std::is_same_v<Parameters, size_t>} + ... + 0);
    constexpr size_t missing = sizeof...(Parameters) - lengths - sizeof...(Arguments);
    const auto arguments = std::tuple_cat(std::tie(given...), std::array<Default, missing>());
    const auto passed = [&]<size_t... i>(std::index_sequence<i...>) {
      return std::tuple{pass<std::tuple_element_t<i, std::tuple<Parameters...>>>(std::get<i>(arguments))...};
    }
    (std::make_index_sequence<sizeof...(Parameters) - lengths>());
    const auto all = [&]<size_t... i>(std::index_sequence<i...>) {
      return std::tuple_cat(passed, std::tuple{lengths_.at(i)...});
    }
    (std::make_index_sequence<lengths>());
    for (int i = 1; i < calls_; ++i, give_back()) std::apply(routine, all);
    begin();
    if constexpr (std::is_void_v<Result>) {
      std::apply(routine, all);
    } else {
      const Result result = std::apply(routine, all);
      std::memcpy(&seen.result, &result, sizeof result);
    }
    end();
    give_back();
  }

  Observation seen;

 private:
  struct Kept : GuardedText {
    Kept(std::string_view bytes, bool at_end, bool is_const) : GuardedText(bytes, at_end), is_input(is_const) {
      if (is_input) protect();
    }
    bool is_input;
    void (*give_back)(int32_t made) = nullptr;
  };

  // The address of a copy as the parameter wants it; what is no address goes as it is.
  template <class Parameter, class Argument> Parameter pass(const Argument &argument) {
    using Target = std::remove_const_t<std::remove_pointer_t<Parameter>>;
    constexpr bool is_input = std::is_const_v<std::remove_pointer_t<Parameter>>;
    constexpr bool is_address =
        std::is_null_pointer_v<Argument> ||
        (std::is_pointer_v<std::decay_t<Argument>> && !std::is_convertible_v<Argument, std::string_view>);
    if constexpr (!std::is_pointer_v<Parameter> || is_address) {
      if (std::is_same_v<Target, char>) lengths_.push_back(0);
      return static_cast<Parameter>(argument);
    } else {
      Kept &kept = kept_.emplace_back(bytes_for<Target, is_input>(argument), at_end_, is_input);
      if constexpr (std::is_same_v<Argument, Made>) kept.give_back = argument.give_back;
      if (std::is_same_v<Target, char>) lengths_.push_back(kept.size());
      return reinterpret_cast<Parameter>(kept.data());
    }
  }
  void begin();
  void end();
  // What the call has made and stands in its outputs.
  void give_back();

  Failing failing_;
  bool at_end_;
  int calls_;
  std::deque<Kept> kept_;
  std::vector<size_t> lengths_;
};

// ---- Rows ---------------------------------------------------------------------------------------

// What is known of a routine besides what holds for all.
enum Trait : unsigned {
  plain = 0,
  varies = 1,              // a clock or the like: outputs differ from call to call
  tells_by_text = 2,       // a blank text is how it tells a failure
  tells_by_minus_one = 4,  // outputs of -1 are
  changes_outputs = 8,     // the header says what outputs hold after a failure
  substitutes = 16,        // the header says what stands for an answer that the host does not give
  keeps = 32,              // handles stay open on purpose where it cannot know that nobody uses them
  asserts = 64,            // a lack of memory ends the program, which its family's tests see in a child
  ends = 128               // it ends the program, likewise
};

struct Row {
  std::string routine;
  unsigned traits;
  std::function<void(Case &)> run;
};

const std::vector<Row> &campaign_rows();
