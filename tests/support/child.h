// SPDX-License-Identifier: MIT
// Routines that end the program run in a child: the test program itself, started again.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

using Arguments = std::vector<std::string>;

struct ChildResult {
  uint32_t exit_code;
  // Standard output and standard error, lines ending in \n, and the message boxes that it showed.
  std::string output;
};

// Starts this program again to run the named child program, presses the buttons of its message boxes, and
// waits for its end.
ChildResult run_child(const std::string &name, const Arguments &arguments = {});

// The path of this program.
std::string own_path();

// Registers a procedure as a child program; its result is the exit status.
struct ChildProgram {
  ChildProgram(const char *name, int (*procedure)(const Arguments &));
};

// Runs the child program that the command line asks for; false if it asks for none.
bool run_as_child(int argument_count, char **arguments, int &status);

// CHILD_PROGRAM(closes_its_units) { ...; return 0; }
#define CHILD_PROGRAM(name)                                                  \
  static int child_##name(const Arguments &);                                \
  static const ChildProgram child_registration_##name(#name, &child_##name); \
  static int child_##name([[maybe_unused]] const Arguments &arguments)
