// SPDX-License-Identifier: MIT
// Two real ports whose ends are joined, named by QWPORT_SERIAL_PORTS, as in "40 41". Without them this is
// skipped.
#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include <windows.h>

#include "qwport.h"
#include "test_dir.h"

namespace {

// The ports that the environment names; without them the program ends as CTest's SKIP_RETURN_CODE says.
std::array<int32_t, 2> ports_or_skip() {
  constexpr int skipped = 77;
  std::array<int32_t, 2> ports{};
  const char *names = std::getenv("QWPORT_SERIAL_PORTS");
  if (names != nullptr && std::sscanf(names, "%d %d", &ports[0], &ports[1]) == 2) return ports;
  std::puts("skipped: QWPORT_SERIAL_PORTS does not name two ports whose ends are joined, as in \"40 41\"");
  std::fflush(stdout);
  std::_Exit(skipped);
}

const std::array<int32_t, 2> ports = ports_or_skip();

void connect(const int32_t &port, int32_t mode, int32_t capacity) {
  REQUIRE(SPORT_CONNECT_EX(&port, &mode, &capacity) == 0);
  const int32_t baud = 115200, parity = 0;
  const int8_t data = 8, stop = 0;
  CHECK(SPORT_SET_STATE(&port, &baud, &parity, &data, &stop) == 0);
}

void release(const int32_t &port) {
  for (int i = 0; i < 2; ++i) CHECK(SPORT_RELEASE(&port) == 0);
}

}  // namespace

TEST_CASE("no byte is lost or repeated, in both directions at once") {
  constexpr int32_t packet = 1021, chunk = 2048, burst = 30 * chunk;  // a part of a chunk comes late
  std::minstd_rand generator;
  for (const int32_t &port : ports) connect(port, 0, burst + chunk);
  const char *text = std::getenv("QWPORT_SERIAL_BYTES");
  const int64_t total = text == nullptr ? 64 * 1024 : std::atoll(text);  // few enough for a real line
  for (int64_t exchanged = 0; exchanged < total; exchanged += burst) {
    std::string sent[] = {std::string(burst, '\0'), std::string(burst, '\0')};
    for (std::string &bytes : sent)
      for (char &byte : bytes) byte = static_cast<char>(generator() >> 8);
    for (int32_t i = 0; i < burst; i += packet) {
      int32_t count = std::min(packet, burst - i);
      for (const size_t end : {0, 1})
        CHECK(SPORT_WRITE_DATA(&ports[end], &sent[end][static_cast<size_t>(i)], &count, 0) == 0);
    }
    for (const size_t end : {0, 1}) {
      std::string received(burst, '\0');
      int32_t count = 0;
      for (size_t i = 0; i < received.size(); i += static_cast<size_t>(count))
        REQUIRE(SPORT_READ_DATA(&ports[end], &received[i], &count, received.size() - i) == 0);
      REQUIRE((received == sent[1 - end]));
    }
  }
  for (const int32_t &port : ports) release(port);
}

TEST_CASE("the example asks an instrument for its name") {
  const int32_t port = ports[1];
  connect(port, 23, 4096);
  std::string command = QWPORT_EXAMPLE " " + std::to_string(ports[0]), output;
  std::replace(command.begin(), command.end(), '/', '\\');
  FILE *example = _popen(command.c_str(), "r");
  std::string question(80, ' ');
  int32_t length = 0;
  CHECK((SPORT_READ_LINE(&port, question.data(), &length, question.size()) == 0 && question.starts_with("*IDN? ")));
  const std::string answer = "Simulated Instruments, model 7";
  CHECK((length == 5 && SPORT_WRITE_LINE(&port, answer.data(), nullptr, answer.size()) == 0));
  for (int c = 0; (c = std::fgetc(example)) != EOF;) output += static_cast<char>(c);
  CHECK((_pclose(example) == 0 && output == file_contents(QWPORT_EXAMPLE_OUTPUT)));
  release(port);
}
