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
void test_open_(int32_t *unit, const int32_t *for_reading, const char *name, size_t name_len);
void test_close_(const int32_t *unit);
void test_write_line_(const int32_t *unit, const char *line, size_t line_len);
void test_read_line_(const int32_t *unit, char *line, size_t line_len);
}

// Opens a unit, for a negative number one that NEWUNIT numbers, and gives its number.
inline int32_t open_unit(int32_t unit, const std::string &name, int32_t for_reading = 0) {
  test_open_(&unit, &for_reading, name.data(), name.size());
  return unit;
}
inline void close_unit(int32_t unit) { test_close_(&unit); }
inline void write_line(int32_t unit, std::string_view line) { test_write_line_(&unit, line.data(), line.size()); }

// A file in a directory of its own, which is current and removed at the end of its block; with a unit, which is open
// so long: for reading, if there is something to read.
class TestFile {
 public:
  explicit TestFile(const std::string &contents = "", int32_t unit = -1) : unit_(unit) {
    make_file(name, contents);
    if (unit_ >= 0) open_unit(unit_, name, contents.empty() ? 0 : 1);
  }
  ~TestFile() {
    if (unit_ >= 0) close_unit(unit_);
  }
  TestFile(const TestFile &) = delete;
  TestFile &operator=(const TestFile &) = delete;
  [[nodiscard]] static std::string contents() { return file_contents(name); }
  static constexpr char name[] = "unit.txt";

 private:
  TestDir dir_;
  int32_t unit_;
};

// Connects a unit to a pipe, and gives the descriptor that writes to it.
inline int open_pipe_unit(int32_t unit) {
  int ends[2] = {-1, -1};
  if (_pipe(ends, 4096, _O_BINARY | _O_NOINHERIT) != 0 || for_fdopen(ends[0], unit, nullptr, 0) != 0) return -1;
  return ends[1];
}
