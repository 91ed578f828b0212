// SPDX-License-Identifier: MIT
// Reading, writing and peeking on a simulated device.
#include <doctest/doctest.h>

#include <random>
#include <sstream>

#include "simulated_device.h"

namespace {

constexpr auto line = SPORT_READ_LINE, data = SPORT_READ_DATA;

using WriteRoutine = decltype(SPORT_WRITE_DATA);
std::string write(WriteRoutine *routine, const ConnectedPort &port, std::string_view text, int32_t count) {
  const int32_t code = routine(&port.number, text.data(), &count, text.size());
  return std::to_string(code) + ':' + std::to_string(count) + ' ' + std::exchange(device.output, "");
}

}  // namespace

TEST_CASE("lines end, and reading and peeking drop and keep their ends, as the line mode says") {
  const struct {
    int32_t mode;
    std::string input, steps, outcomes;  // reads of a line or of data and their lengths, peeks
  } cases[] = {
      {23, "AB\r\nCD", "peek peek_line line 10 data 10", "1:4 1:2 2:AB         2:CD         "},
      {23, "A\nB\r\r", "line 2 line 3 line 3", "2:AB 0:    0:    "},
      {0, "a\rb\nc", "peek_line line 5 peek peek_line", "1:5 5:a\rb\nc 0:0 0:0 "},
      {4, "a\n\rb\r", "line 9 line 2", "3:a\n\r       2:b\r "},
      {8 + 2, "a\r\nb\n", "line 5 line 9", "2:a\r    1:b         "},
      {12, "a\nb\r\nc\r\n", "line 9 line 3", "5:a\nb\r\n     3:c\r\n "},
      {12, "\na\r\nc", "peek peek_line", "1:5 1:4 "},
      // A CR that filled one call's buffer counts in the next; so does the one before a line's LF, but for a peek.
      {12 + 3, "a\r\n\nb\r\n", "line 1 line 1 line 1 line 2", "1:a 0:  0:  1:b  "},
      {12, "\n\r\n", "line 9", "3:\n\r\n       "},
      {12, "\r\na", "data 0 line 1 peek_line", "0: 1:\r 1:2 "},
      // Dropped bytes count against the length of data, not of lines.
      {3, "\r\n\rab", "peek_line data 2 data 2 data 2", "1:2 0:   1:a  1:b  "},
      {7, "\r\n\rab", "peek peek_line", "1:2 0:0 "},
      {1, "\r\na", "data 0 data 9", "0: 2:\na        "},
  };
  const SimulatedDevice simulation;
  for (const auto &[mode, input, steps, outcomes] : cases) {
    const ConnectedPort port(mode + 64);  // other bits are ignored
    device.offer(input);
    CAPTURE(input);
    eventually([&] { return port.peek() != "0:0"; });
    std::istringstream words(steps);
    std::string actual;
    size_t length = 0;
    for (std::string step; words >> step; actual += ' ')
      if (step.starts_with("peek"))
        actual += port.peek(step == "peek" ? SPORT_PEEK_DATA : SPORT_PEEK_LINE);
      else if (words >> length)
        actual += port.read(step == "data" ? data : line, length);
    CHECK(actual == outcomes);
  }
}

TEST_CASE("what waits is dropped when the reader ends, and the next routine starts another") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  for (auto *stop : {SPORT_CANCEL_IO, SPORT_RELEASE}) {
    device.offer("old");
    CHECK((port.has(3) && stop(&port.number) == 0 && port.peek() == "0:0"));
    device.offer("new");
    CHECK(port.read(line, 3) == "3:new");
  }
  CHECK((SPORT_PEEK_LINE(&port.number, nullptr, nullptr) == 0 && port.peek() == "0:0"));
}

TEST_CASE("hundreds of KiB pass a ring of 4096 bytes unchanged") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  std::string sent(400'000, '\0'), received;
  std::generate(sent.begin(), sent.end(), [generator = std::minstd_rand(42)]() mutable { return char(generator()); });
  // Room for a chunk to the byte would make the ring look empty: it is not used.
  device.offer(sent.substr(0, 2049));
  CHECK(port.has(2049));
  for (size_t i = 2049, step = 2048; i < sent.size(); i += step, step = step * 7 % 2311)
    device.offer(sent.substr(i, step));
  int32_t count = 0;
  for (size_t length = 1; received.size() < sent.size(); length = length * 5 % 3967 + 1) {
    std::string buffer(std::min(length, sent.size() - received.size()), '#');
    REQUIRE((length % 2 == 0 ? data : line)(&port.number, buffer.data(), &count, buffer.size()) == 0);
    received.append(buffer, 0, static_cast<size_t>(count));
  }
  CHECK((received == sent));
}

TEST_CASE("what a reader had read comes first, then what ended it, until another starts") {
  const SimulatedDevice simulation;
  for (const auto &[call, code] : {std::pair{"ReadFile", ERROR_GEN_FAILURE},
                                   {"GetOverlappedResult", ERROR_DEVICE_NOT_CONNECTED},
                                   {"ReadFile", ERROR_INVALID_HANDLE}}) {
    const ConnectedPort port;
    device.offer("ab");
    CHECK(port.has(2));
    const int held = SimulatedDevice::held;
    device.fail(call, code);
    CHECK(eventually([&] { return SimulatedDevice::held < held; }));  // it gave the library back
    CHECK((port.peek() == "1:2" && port.read(data, 2) == "2:ab"));
    const std::string told = std::to_string(code) + '!';
    CHECK((port.read(data, 2) == told && port.read(line, 2) == told && port.peek() == told));
    CHECK((IERRNO() == static_cast<int32_t>(code) && pending_transfers == 0));
    device.fail();
    CHECK(SPORT_RELEASE(&port.number) == 0);
    device.offer("cd");
    CHECK(port.read(line, 2) == "2:cd");
  }
}

TEST_CASE("a read that was aborted is followed by another, unless the line's error cannot be cleared") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  device.has_line_error = true;
  CHECK(eventually([] { return !device.has_line_error; }));
  device.offer("ab");
  CHECK(port.read(line, 2) == "2:ab");
  device.fail("ClearCommError");
  device.has_line_error = true;
  CHECK(port.read(line, 2) == "31!");
}

TEST_CASE("a wait that fails raises the host's error") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  static std::pair<DWORD, DWORD> raised;  // the code and the flags
  const ImportOverride wait(library(), "WaitForMultipleObjects", [](DWORD, const HANDLE *, BOOL, DWORD) -> DWORD {
    return SetLastError(ERROR_NOT_OWNER), WAIT_FAILED;
  });
  const ImportOverride raise(library(), "RaiseException", [](DWORD code, DWORD flags, DWORD, const ULONG_PTR *) {
    raised = {code, flags};
  });
  CHECK((port.read(line, 2) == "288!" && raised == std::pair<DWORD, DWORD>(288, EXCEPTION_NONCONTINUABLE)));
}

TEST_CASE("writing sends the count, or the text without trailing blanks, and the line end") {
  constexpr auto write_data = SPORT_WRITE_DATA, write_line = SPORT_WRITE_LINE;
  const std::tuple<WriteRoutine *, int32_t, const char *, int32_t, const char *> cases[] = {
      {write_data, 48, "ab  ", 0, "0:2 ab"},     {write_data, 48, "a b  ", 4, "0:4 a b "},
      {write_data, 48, "    ", 0, "0:0 "},       {write_data, 48, "    ", 3, "0:3    "},
      {write_line, 48, "ab  ", 0, "0:4 ab\r\n"}, {write_line, 16, "ab", 1, "0:2 a\r"},
      {write_line, 32, "  ", 0, "0:1 \n"},       {write_data, 48, "ab", -1, "87:-1 "}};
  const SimulatedDevice simulation;
  for (const auto &[routine, mode, text, count, outcome] : cases)
    CHECK(write(routine, ConnectedPort(mode), text, count) == outcome);
  const ConnectedPort port(48);
  static const int32_t longer = 3;
  CHECK(SPORT_WRITE_DATA(&port.number, "ab", nullptr, 2) == 0);
  CHECK(SPORT_WRITE_LINE(&port.number, "abc", const_cast<int32_t *>(&longer), 1) == 0);
  CHECK(device.output == "ababc\r\n");
}

TEST_CASE("a write that is cut is 996, however the host says so, and one that fails is the host's error") {
  const SimulatedDevice simulation;
  const ConnectedPort port(48);
  device.write_limit = 3;
  for (const DWORD end : std::initializer_list<DWORD>{ERROR_SUCCESS, ERROR_TIMEOUT, WAIT_TIMEOUT}) {
    device.end_in_time = end;
    CHECK(write(SPORT_WRITE_LINE, port, "abcdef", 0) == "996:3 abc");
  }
  device.write_limit = 1;
  CHECK(write(SPORT_WRITE_LINE, port, "a", 0) == "0:2 a\r");  // a cut line end is not told
  device.fail("WriteFile");
  CHECK(write(SPORT_WRITE_DATA, port, "a", 1) == "31:1 ");
}
