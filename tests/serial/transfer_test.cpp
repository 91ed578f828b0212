// SPDX-License-Identifier: MIT
// Reading, writing and peeking on a simulated device.
#include <doctest/doctest.h>

#include <random>
#include <vector>

#include "simulated_device.h"

namespace {

using Routine = ConnectedPort::Routine;
constexpr Routine line = SPORT_READ_LINE, data = SPORT_READ_DATA;

std::string write(Routine routine, const int32_t &port, const std::string &text, int32_t count) {
  std::string copy = text;
  const int32_t code = routine(&port, copy.data(), &count, copy.size());
  return std::to_string(code) + ':' + std::to_string(count);
}
constexpr Routine write_data = [](const int32_t *port, char *text, int32_t *count, size_t length) {
  return SPORT_WRITE_DATA(port, text, count, length);
};
constexpr Routine write_line = [](const int32_t *port, char *text, int32_t *count, size_t length) {
  return SPORT_WRITE_LINE(port, text, count, length);
};

std::string random_bytes(size_t size) {
  std::minstd_rand generator(42);
  std::string bytes(size, '\0');
  for (char &byte : bytes) byte = static_cast<char>(generator());
  return bytes;
}

DWORD raised_code, raised_flags;
void WINAPI note_exception(DWORD code, DWORD flags, DWORD, const ULONG_PTR *) {
  raised_code = code;
  raised_flags = flags;
}

}  // namespace

TEST_CASE("lines end, and drop and keep their ends, as the line mode says") {
  struct Step {
    Routine routine;
    size_t length;
    const char *outcome;
  };
  const struct {
    int32_t mode;
    std::string input;
    std::vector<Step> steps;
  } cases[] = {
      {23, "AB\r\nCD", {{line, 10, "2:AB        "}, {data, 10, "2:CD        "}}},
      {23, "A\nB\r\r", {{line, 2, "2:AB"}, {line, 3, "0:   "}, {line, 3, "0:   "}}},
      {0, "a\rb\nc", {{line, 5, "5:a\rb\nc"}}},
      {4, "a\n\rb\r", {{line, 9, "3:a\n\r      "}, {line, 2, "2:b\r"}}},
      {8, "a\r\nb\n", {{line, 5, "3:a\r\n  "}, {line, 2, "2:b\n"}}},
      {8 + 2, "a\r\nb\n", {{line, 5, "2:a\r   "}, {line, 9, "1:b        "}}},
      {12, "a\nb\r\nc\r\n", {{line, 9, "5:a\nb\r\n    "}, {line, 3, "3:c\r\n"}}},
      // A CR that filled one call's buffer counts in the next; so does the one before a line's LF.
      {12 + 3, "a\r\n\nb\r\n", {{line, 1, "1:a"}, {line, 1, "0: "}, {line, 1, "0: "}, {line, 2, "1:b "}}},
      {12, "a\r\nb\r\n", {{line, 2, "2:a\r"}, {line, 9, "1:\n        "}, {line, 9, "3:b\r\n      "}}},
      {12, "\n\r\n", {{line, 9, "3:\n\r\n      "}}},
      // Dropped bytes count against the length of data, not of lines.
      {3, "\r\n\rab", {{data, 2, "0:  "}, {data, 2, "1:a "}, {data, 2, "1:b "}}},
      {2, "\r\na", {{data, 9, "2:\ra       "}}},
      {1, "\r\na", {{data, 0, "0:"}, {data, 9, "2:\na       "}}},
  };
  const SimulatedDevice simulation;
  for (const auto &[mode, input, steps] : cases) {
    ConnectedPort port(mode + 64);  // other bits are ignored
    device.offer(input);
    CAPTURE(input);
    for (const auto &[routine, length, outcome] : steps) {
      if (routine == data) eventually([&] { return port.peek(SPORT_PEEK_DATA) != "0:0"; });
      CHECK(port.read(routine, length) == outcome);
    }
  }
}

TEST_CASE("peeking counts what reading would store, without waiting") {
  const SimulatedDevice simulation;
  const struct {
    int32_t mode;
    const char *input, *all, *first_line;
  } cases[] = {{0, "ab\r\nc", "1:5", "1:5"}, {23, "ab\r\nc", "1:3", "1:2"}, {12, "\na\r\nc", "1:5", "1:4"},
               {8, "\nab", "1:3", "1:1"},    {4, "\rab", "1:3", "1:1"},     {7, "\r\n\rab", "1:2", "0:0"}};
  for (const auto &[mode, input, all, first_line] : cases) {
    ConnectedPort port(mode);
    CHECK(port.peek(SPORT_PEEK_DATA) == "0:0");
    CHECK(port.peek(SPORT_PEEK_LINE) == "0:0");
    device.offer(input);
    CHECK(eventually([&] { return port.peek(SPORT_PEEK_DATA) == all; }));
    CHECK(port.peek(SPORT_PEEK_LINE) == first_line);
    CHECK(SPORT_PEEK_LINE(&port.number, nullptr, nullptr) == 0);
  }
}

TEST_CASE("what waits is dropped when the reader ends, and the next routine starts another") {
  const SimulatedDevice simulation;
  ConnectedPort port;
  for (auto *stop : {SPORT_CANCEL_IO, SPORT_RELEASE}) {
    device.offer("old");
    CHECK(port.has(3));
    CHECK(stop(&port.number) == 0);
    CHECK(port.peek(SPORT_PEEK_DATA) == "0:0");
    device.offer("new");
    CHECK(port.read(line, 3) == "3:new");
  }
}

TEST_CASE("hundreds of KiB pass a ring of 4096 bytes unchanged") {
  const SimulatedDevice simulation;
  ConnectedPort port;
  const std::string sent = random_bytes(400'000);
  // Room for a chunk to the byte would make the ring look empty: it is not used.
  device.offer(sent.substr(0, 2049));
  CHECK(port.has(2049));
  device.offer(sent.substr(2049, 2048));
  CHECK(!eventually([&] { return port.peek(SPORT_PEEK_DATA) != "1:2049"; }, 30));
  for (size_t i = 4097, step = 1; i < sent.size(); i += step, step = step * 7 % 2311) {
    device.offer(sent.substr(i, step));
  }
  std::string received;
  for (size_t length = 1; received.size() < sent.size(); length = length * 5 % 3967 + 1) {
    std::string buffer(std::min(length, sent.size() - received.size()), '#');
    int32_t count = 0;
    REQUIRE((length % 2 == 0 ? data : line)(&port.number, buffer.data(), &count, buffer.size()) == 0);
    received.append(buffer, 0, static_cast<size_t>(count));
  }
  CHECK((received == sent));
}

TEST_CASE("a reader that ended is no reason to wait") {
  const SimulatedDevice simulation;
  for (const auto &[call, code] : {std::pair{"ReadFile", ERROR_GEN_FAILURE},
                                   {"GetOverlappedResult", ERROR_DEVICE_NOT_CONNECTED},
                                   {"ReadFile", ERROR_INVALID_HANDLE}}) {
    ConnectedPort port;
    device.offer("ab");
    CHECK(port.has(2));
    device.fail(call, static_cast<int>(code));
    CHECK(port.read(data, 2) == "2:ab");
    for (const Routine routine : {data, line}) CHECK(port.read(routine, 2) == std::to_string(code) + '!');
    CHECK(IERRNO() == static_cast<int32_t>(code));
    device.fail(call);
    CHECK(SPORT_RELEASE(&port.number) == 0);
    device.offer("cd");
    CHECK(port.read(line, 2) == "2:cd");
  }
}

TEST_CASE("a read that a purge aborted, before or in a wait, is followed by another") {
  const SimulatedDevice simulation;
  ConnectedPort port;
  static const auto was_aborted = [] {
    const Locked lock;
    return device.failures["GetOverlappedResult"].count > 0;
  };
  device.fail("GetOverlappedResult", ERROR_OPERATION_ABORTED);
  CHECK(eventually(was_aborted));
  device.offer("ab");
  CHECK(port.read(line, 2) == "2:ab");
  device.fail("GetOverlappedResult", ERROR_OPERATION_ABORTED, 3);
  const auto offer_late = [](void *) -> DWORD {
    if (eventually(was_aborted)) device.offer("cd");
    return 0;
  };
  CloseHandle(CreateThread(nullptr, 0, offer_late, nullptr, 0, nullptr));
  CHECK(port.read(line, 2) == "2:cd");
}

TEST_CASE("a lost event is the error of every reading routine") {
  const SimulatedDevice simulation;
  ConnectedPort port;
  const ImportOverride event(
      library(), "SetEvent", +[](HANDLE) -> BOOL {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
      });
  device.offer("ab");
  CHECK(eventually([&] { return port.peek(SPORT_PEEK_LINE) == "5!"; }));
  CHECK(port.read(data, 2) == "5!");
  CHECK(port.read(line, 2) == "5!");
}

TEST_CASE("a wait that fails raises the host's error") {
  const SimulatedDevice simulation;
  ConnectedPort port;
  const ImportOverride raise(library(), "RaiseException", note_exception);
  const ImportOverride wait(
      library(), "WaitForMultipleObjects", +[](DWORD, const HANDLE *, BOOL, DWORD) -> DWORD {
        SetLastError(ERROR_NOT_OWNER);
        return WAIT_FAILED;
      });
  CHECK(port.read(line, 2) == std::to_string(ERROR_NOT_OWNER) + '!');
  CHECK(raised_code == ERROR_NOT_OWNER);
  CHECK(raised_flags == EXCEPTION_NONCONTINUABLE);
}

TEST_CASE("writing sends the count, or the text without trailing blanks, and the line end") {
  const struct {
    Routine routine;
    int32_t mode;
    const char *text;
    int32_t count;
    const char *outcome, *written;
  } cases[] = {{write_data, 48, "ab  ", 0, "0:2", "ab"},     {write_data, 48, "a b  ", 4, "0:4", "a b "},
               {write_data, 48, "    ", 0, "0:0", ""},       {write_data, 48, "    ", 3, "0:3", "   "},
               {write_line, 48, "ab  ", 0, "0:4", "ab\r\n"}, {write_line, 16, "ab", 1, "0:2", "a\r"},
               {write_line, 32, "  ", 0, "0:1", "\n"},       {write_line, 0, "ab", 0, "0:2", "ab"}};
  const SimulatedDevice simulation;
  for (const auto &[routine, mode, text, count, outcome, written] : cases) {
    const ConnectedPort port(mode);
    CHECK(write(routine, port.number, text, count) == outcome);
    CHECK(device.written() == written);
  }
  const ConnectedPort port(48);
  CHECK(SPORT_WRITE_DATA(&port.number, "ab", nullptr, 2) == 0);
  const int32_t longer = 3;
  CHECK(SPORT_WRITE_LINE(&port.number, "abc", const_cast<int32_t *>(&longer), 1) == 0);
  CHECK(device.written() == "ababc\r\n");
}

TEST_CASE("a write that is cut is 996, one that fails is the host's error") {
  const SimulatedDevice simulation;
  const ConnectedPort port(48);
  device.write_limit = 3;
  for (const Routine routine : {write_data, write_line}) {
    CHECK(write(routine, port.number, "abcdef", 0) == "996:3");
    CHECK(device.written() == "abc");
  }
  device.write_limit = 1;
  CHECK(write(write_line, port.number, "a", 0) == "0:2");  // a cut line end is not told
  device.fail("WriteFile", ERROR_GEN_FAILURE, 1);
  CHECK(write(write_line, port.number, "a", 0) == "31:1");
  CHECK(write(write_data, port.number, "a", 1) == "31:1");
  device.fail("WriteFile");
  const ImportOverride event(
      library(), "CreateEventA", +[](SECURITY_ATTRIBUTES *, BOOL, BOOL, const char *) -> HANDLE {
        SetLastError(ERROR_TOO_MANY_OPEN_FILES);
        return nullptr;
      });
  CHECK(write(write_data, port.number, "a", 0) == "4:0");
}
