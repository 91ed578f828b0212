// SPDX-License-Identifier: MIT
// Two real ports whose ends are joined, named by QWPORT_SERIAL_PORTS, as in "40 41". Without them this is
// skipped.
#include <doctest/doctest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <windows.h>

#include "qwport.h"

namespace {

struct Ports {
  int32_t number[2];
};

// The ports that the environment names; without them the program ends as CTest's SKIP_RETURN_CODE says.
Ports ports_or_skip() {
  constexpr int skipped = 77;
  Ports ports{};
  const char *names = std::getenv("QWPORT_SERIAL_PORTS");
  if (names != nullptr && std::sscanf(names, "%d %d", &ports.number[0], &ports.number[1]) == 2) return ports;
  std::puts("skipped: QWPORT_SERIAL_PORTS does not name two ports whose ends are joined, as in \"40 41\"");
  std::fflush(stdout);
  std::_Exit(skipped);
}

const Ports ports = ports_or_skip();

void connect(const int32_t &port, int32_t mode, int32_t capacity) {
  REQUIRE(SPORT_CONNECT_EX(&port, &mode, &capacity) == 0);
  const int32_t baud = 115200, parity = 0;
  const int8_t data = 8, stop = 0;
  CHECK(SPORT_SET_STATE(&port, &baud, &parity, &data, &stop) == 0);
  int32_t actual_baud = 0, actual_data = 0;
  CHECK(SPORT_GET_STATE(&port, &actual_baud, nullptr, &actual_data, nullptr) == 0);
  CHECK((actual_baud == baud && actual_data == data));
}

void release(const int32_t &port) {
  for (int i = 0; i < 2; ++i) CHECK(SPORT_RELEASE(&port) == 0);
}

std::string read_line(const int32_t &port) {
  char buffer[80];
  int32_t count = 0;
  CHECK(SPORT_READ_LINE(&port, buffer, &count, sizeof buffer) == 0);
  return {buffer, static_cast<size_t>(count)};
}

// ---- A stream that each end sends and checks ----------------------------------------------------

// Pseudo-random bytes.
struct Stream {
  uint32_t state;
  char next() {
    state = state * 1'664'525 + 1'013'904'223;
    return static_cast<char>(state >> 24);
  }
};

constexpr int32_t packet = 1021;
constexpr int32_t capacity = 64 * packet;
constexpr int64_t most_on_the_way = capacity - 4 * packet;  // so that no write waits for room

// One end of the line: sends its own stream and checks the other's.
struct End {
  int32_t port;
  Stream sent, expected;
  int64_t sent_count = 0, received_count = 0, wrong = 0;

  void send(int64_t most) {
    char bytes[packet];
    auto count = static_cast<int32_t>(std::min<int64_t>(packet, most));
    for (int32_t i = 0; i < count; ++i) bytes[i] = sent.next();
    CHECK(SPORT_WRITE_DATA(&port, bytes, &count, 0) == 0);
    sent_count += count;
  }
  void receive() {
    char bytes[4000];
    int32_t present = 0, count = 0;
    CHECK(SPORT_PEEK_DATA(&port, &present, nullptr) == 0);
    if (present == 0) return;
    CHECK(SPORT_READ_DATA(&port, bytes, &count, sizeof bytes) == 0);
    for (int32_t i = 0; i < count; ++i) wrong += bytes[i] != expected.next();
    received_count += count;
  }
};

// Bytes a direction: as the environment says, or few enough for a real line.
int64_t bytes_to_exchange() {
  const char *text = std::getenv("QWPORT_SERIAL_BYTES");
  return text == nullptr ? 64 * 1024 : std::atoll(text);
}

std::string contents(const char *path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

TEST_CASE("no byte is lost or repeated, in both directions at once") {
  const int64_t total = bytes_to_exchange();
  End ends[] = {{ports.number[0], {1}, {2}}, {ports.number[1], {2}, {1}}};
  for (const End &end : ends) connect(end.port, 0, capacity);
  const ULONGLONG start = GetTickCount64();
  ULONGLONG last_progress = start;
  int64_t received = 0;
  while (received < 2 * total && GetTickCount64() - last_progress < 10'000) {
    for (End &end : ends) {
      const End &other = ends[&end == &ends[0] ? 1 : 0];
      if (end.sent_count < total && end.sent_count - other.received_count < most_on_the_way)
        end.send(total - end.sent_count);
      end.receive();
    }
    const int64_t now_received = ends[0].received_count + ends[1].received_count;
    if (now_received != received) last_progress = GetTickCount64();
    if (now_received == received) Sleep(1);
    received = now_received;
  }
  for (int i = 0; i < 2; ++i) {
    CHECK(ends[i].sent_count == total);
    CHECK(ends[i].received_count == total);
    CHECK(ends[i].wrong == 0);
    release(ends[i].port);
  }
  std::printf("%lld bytes both ways in %llu ms\n", static_cast<long long>(received), GetTickCount64() - start);
}

TEST_CASE("the example asks an instrument for its name") {
  const int32_t port = ports.number[1];
  connect(port, 23, 4096);
  SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = CreateFileA("serial_output.txt", GENERIC_WRITE, 0, &inheritable, CREATE_ALWAYS, 0, nullptr);
  PROCESS_INFORMATION process{};
  std::string command = QWPORT_EXAMPLE " " + std::to_string(ports.number[0]);
  std::replace(command.begin(), command.end(), '/', '\\');
  REQUIRE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process));
  CHECK(read_line(port) == "*IDN?");
  const char answer[] = "Simulated Instruments, model 7";
  CHECK(SPORT_WRITE_LINE(&port, answer, nullptr, sizeof answer - 1) == 0);
  CHECK(WaitForSingleObject(process.hProcess, 60'000) == WAIT_OBJECT_0);
  DWORD status = 1;
  GetExitCodeProcess(process.hProcess, &status);
  CHECK(status == 0);
  for (HANDLE handle : {process.hThread, process.hProcess, startup.hStdOutput}) CloseHandle(handle);
  std::string output = contents("serial_output.txt");
  std::erase(output, '\r');
  CHECK(output == contents(QWPORT_EXAMPLE_OUTPUT));
  release(port);
}
