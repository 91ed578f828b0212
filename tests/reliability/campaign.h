// SPDX-License-Identifier: MIT
// Calls of exported routines with every argument in pages of its own, and what is seen of each.
#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <windows.h>

#include "failing_imports.h"

// ---- Arguments ----------------------------------------------------------------------------------

// Bytes between two inaccessible pages, against the one behind them or the one before them.
class GuardedBytes {
 public:
  GuardedBytes(size_t size, bool at_end, bool is_input);
  GuardedBytes(GuardedBytes &&other) noexcept;
  GuardedBytes(const GuardedBytes &) = delete;
  GuardedBytes &operator=(const GuardedBytes &) = delete;
  ~GuardedBytes();
  [[nodiscard]] char *data() const { return bytes_; }
  [[nodiscard]] size_t size() const { return size_; }
  [[nodiscard]] bool is_input() const { return is_input_; }
  // From now on the bytes of an input cannot be written.
  void protect() const;

 private:
  char *memory_, *bytes_;
  size_t size_, usable_;
  bool is_input_;
};

// An argument that the routine fills: a text of so many characters, or so many elements.
struct Room {
  size_t length;
};
struct Out {
  size_t elements = 1;
};
// An array that goes in, and comes out of a routine that changes it.
template <class T> struct List {
  List(std::initializer_list<T> list) : elements(list) {}
  std::vector<T> elements;
};

// ---- Observations -------------------------------------------------------------------------------

constexpr char unset = 'Z';  // what stands in outputs before the call

struct Observation {
  int64_t result = 0;                // of a function; of a subroutine 0
  int32_t reported = 0;              // what the core runtime was told
  std::vector<std::string> outputs;  // the bytes of each argument that a routine can change
  int calls = 0;
  const char *failed_function = nullptr;

  // The answer of the routine alone, without what it gave out.
  [[nodiscard]] bool answers_as(const Observation &other) const { return result == other.result; }
};

// ---- Calls --------------------------------------------------------------------------------------

class Case {
 public:
  Case(int call_to_fail, Failing failing, bool at_end)
      : call_to_fail_(call_to_fail), failing_(failing), at_end_(at_end) {}

  // Calls the routine with numbers by address, texts with their lengths behind all other arguments.
  template <class Result, class... Parameters, class... Arguments>
  void call(Result (*routine)(Parameters...), Arguments &&...arguments) {
    using Types = std::tuple<Parameters...>;
    constexpr bool has_lengths = sizeof...(Parameters) > sizeof...(Arguments);
    std::vector<GuardedBytes> kept;
    kept.reserve(sizeof...(Arguments));
    std::vector<size_t> lengths;
    [&]<size_t... i>(std::index_sequence<i...>) {
      const auto passed = std::tuple{pass<std::tuple_element_t<i, Types>>(kept, lengths, arguments)...};
      for (const GuardedBytes &bytes : kept) bytes.protect();
      auto all = std::tuple_cat(
          passed, [&]<size_t... k>(std::index_sequence<k...>) {
            return std::tuple{(static_cast<void>(k), lengths.at(k))...};
          }(std::make_index_sequence < has_lengths ? sizeof...(Parameters) - sizeof...(Arguments) : 0 > {}));
      begin();
      if constexpr (std::is_void_v<Result>) {
        std::apply(routine, all);
        end(0);
      } else {
        end(bits_of(std::apply(routine, all)));
      }
    }
    (std::index_sequence_for<Arguments...>{});
    for (const GuardedBytes &bytes : kept)
      if (!bytes.is_input()) seen.outputs.emplace_back(bytes.data(), bytes.size());
  }

  Observation seen;

 private:
  void begin() const;
  void end(int64_t result);

  template <class T> static int64_t bits_of(T value) {
    int64_t bits = 0;
    static_assert(sizeof value <= sizeof bits);
    std::memcpy(&bits, &value, sizeof value);
    return bits;
  }

  GuardedBytes &keep(std::vector<GuardedBytes> &kept, size_t size, bool is_input) const {
    return kept.emplace_back(size, at_end_, is_input);
  }

  // A copy of an argument in guarded bytes as the parameter wants it; what is no address goes as it is.
  template <class Parameter, class Argument>
  Parameter pass(std::vector<GuardedBytes> &kept, std::vector<size_t> &lengths, const Argument &argument) const {
    if constexpr (!std::is_pointer_v<Parameter> || std::is_function_v<std::remove_pointer_t<Parameter>>) {
      return static_cast<Parameter>(argument);
    } else if constexpr (requires { argument.number; }) {
      return pass<Parameter>(kept, lengths, argument.number);
    } else if constexpr (requires { argument.handle; }) {
      return pass<Parameter>(kept, lengths, argument.handle);
    } else {
      using Target = std::remove_const_t<std::remove_pointer_t<Parameter>>;
      constexpr bool is_input = std::is_const_v<std::remove_pointer_t<Parameter>>;
      constexpr bool is_text = std::is_same_v<Target, char>;
      const GuardedBytes *bytes = nullptr;
      if constexpr (std::is_null_pointer_v<Argument>) {
        if (is_text) lengths.push_back(0);
        return nullptr;
      } else if constexpr (std::is_same_v<Argument, Room>) {
        bytes = &keep(kept, argument.length, false);
      } else if constexpr (std::is_same_v<Argument, Out>) {
        using Element = std::conditional_t<std::is_void_v<Target>, int64_t, Target>;
        bytes = &keep(kept, argument.elements * sizeof(Element), false);
      } else if constexpr (std::is_convertible_v<Argument, std::string_view>) {
        const std::string_view text = argument;
        bytes = &keep(kept, text.size(), is_input);
        text.copy(bytes->data(), text.size());
      } else if constexpr (requires { argument.elements.data(); }) {
        const size_t size = argument.elements.size() * sizeof argument.elements[0];
        bytes = &keep(kept, size, is_input);
        std::memcpy(bytes->data(), argument.elements.data(), size);
      } else if constexpr (std::is_pointer_v<Argument>) {
        return static_cast<Parameter>(argument);
      } else {
        const auto value = static_cast<Target>(argument);
        bytes = &keep(kept, sizeof value, is_input);
        std::memcpy(bytes->data(), &value, sizeof value);
      }
      if (is_text) lengths.push_back(bytes->size());
      return reinterpret_cast<Parameter>(bytes->data());
    }
  }

  int call_to_fail_;
  Failing failing_;
  bool at_end_;
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
  const char *routine;
  unsigned traits;
  void (*run)(Case &);
};

const std::vector<Row> &campaign_rows();
