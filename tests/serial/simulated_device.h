// SPDX-License-Identifier: MIT
// A serial device that stands behind every COM port while the object lives: bytes arrive as a test offers them,
// host calls fail as it says, and what the library asks of the host is recorded.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <windows.h>

#include "import_override.h"

class SimulatedDevice {
 public:
  SimulatedDevice();
  SimulatedDevice(const SimulatedDevice &) = delete;
  SimulatedDevice &operator=(const SimulatedDevice &) = delete;

  // Bytes that arrive, no more of them than this in one read.
  void offer(const std::string &bytes, size_t at_once = 2048);
  // From now on, after so many more successes, a host call fails with this code; without a code it does not.
  static void fail(const std::string &call, int code = -1, int successes = 0);
  // Waits until a call has failed.
  static bool has_failed(const std::string &call);
  // The most bytes that a write takes.
  void take_at_most(size_t bytes);

  std::string written();  // since the last look
  std::string calls();    // the host calls but reads and writes, since the last look, each with a blank behind
  DCB &dcb();
  COMMTIMEOUTS &timeouts();

 private:
  ImportOverride overrides_[12];
};

// Calls a procedure until it gives true; false after a long time.
bool eventually(const std::function<bool()> &condition);

// A connected port, released at the end; a test that cannot connect ends.
class ConnectedPort {
 public:
  explicit ConnectedPort(int32_t mode = 0, int32_t capacity = 4096, int32_t number = 7);
  ~ConnectedPort();
  ConnectedPort(const ConnectedPort &) = delete;
  ConnectedPort &operator=(const ConnectedPort &) = delete;

  // What a reading routine gives: "count:text", or the code with a '!'.
  using Routine = int32_t (*)(const int32_t *, char *, int32_t *, size_t);
  std::string read(Routine routine, size_t length);
  // "present:count".
  std::string peek(int32_t (*routine)(const int32_t *, int32_t *, int32_t *));
  // Waits until so many bytes can be read.
  bool has(int32_t count);

  const int32_t number;
};
