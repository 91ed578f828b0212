// SPDX-License-Identifier: MIT
// Units and files for the tests of the core runtime.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <io.h>

#include "qwcore.h"
#include "test_dir.h"

// In unit_statements.f90.
extern "C" {
void test_open_(const int32_t *unit, const int32_t *for_reading, const char *name, size_t name_len);
void test_close_(const int32_t *unit);
void test_write_line_(const int32_t *unit, const char *line, size_t line_len);
int32_t test_read_line_(const int32_t *unit, char *line, size_t line_len);
int32_t test_open_newunit_(const char *name, size_t name_len);
void test_write_value_(const int32_t *unit, int32_t (*value)());
void test_write_internal_();
}

inline void open_unit(int32_t unit, const std::string &name, int32_t for_reading = 0) {
  test_open_(&unit, &for_reading, name.data(), name.size());
}
inline void close_unit(int32_t unit) { test_close_(&unit); }

// A file in a directory of its own, which is current and removed at the end of its block.
class TestFile {
 public:
  explicit TestFile(const char *name, const std::string &contents = "") : name_(name) { make_file(name_, contents); }
  [[nodiscard]] const std::string &name() const { return name_; }
  [[nodiscard]] std::string contents() const { return file_contents(name_); }

 private:
  TestDir dir_;
  std::string name_;
};

// Such a file with a unit, which is open to the end of the block.
class TestUnit : public TestFile {
 public:
  TestUnit(int32_t unit, const char *name, const std::string &contents = "", bool for_reading = false)
      : TestFile(name, contents), unit_(unit) {
    open_unit(unit, name, for_reading);
  }
  ~TestUnit() { close_unit(unit_); }
  TestUnit(const TestUnit &) = delete;
  TestUnit &operator=(const TestUnit &) = delete;

 private:
  int32_t unit_;
};

inline void write_line(int32_t unit, std::string_view line) { test_write_line_(&unit, line.data(), line.size()); }

// The next line, or "iostat N".
inline std::string read_line(int32_t unit) {
  char line[200];
  const int32_t result = test_read_line_(&unit, line, sizeof line);
  return result >= 0 && result <= 200 ? std::string(line, static_cast<size_t>(result))
                                      : "iostat " + std::to_string(result);
}

// Connects a unit to a pipe, and gives the descriptor that writes to it.
inline int open_pipe_unit(int32_t unit) {
  int ends[2] = {-1, -1};
  if (_pipe(ends, 4096, _O_BINARY | _O_NOINHERIT) != 0 || for_fdopen(ends[0], unit, nullptr, 0) != 0) return -1;
  return ends[1];
}
