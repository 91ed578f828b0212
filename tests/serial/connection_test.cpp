// SPDX-License-Identifier: MIT
// Connecting, releasing and the reader's life, on a simulated device.
#include <doctest/doctest.h>

#include <array>
#include <deque>

#include "simulated_device.h"
#include "thread.h"

namespace {

const int32_t number = 7;

int32_t connect() { return SPORT_CONNECT(&number, nullptr); }
int32_t release() { return SPORT_RELEASE(&number); }

}  // namespace

TEST_CASE("a port is opened, purged, given its timeouts, and closed by the second release") {
  const SimulatedDevice simulation;
  CHECK(connect() == 0);
  CHECK(device.calls() == "open:\\\\.\\COM7,c0000000,0,3,40000080 purge:15 ");
  const auto [interval, multiplier, constant, write_multiplier, write_constant] = device.timeouts;
  CHECK(std::array{interval, multiplier, constant, write_multiplier, write_constant} ==
        std::array<DWORD, 5>{200, 0, 200, 2, 2000});
  CHECK(connect() == ERROR_INVALID_PARAMETER);
  CHECK((release() == 0 && device.calls() == "purge:10 "));
  CHECK((release() == 0 && device.calls() == "purge:15 close "));
  CHECK((release() == ERROR_INVALID_PARAMETER && connect() == 0 && !device.calls().empty()));
  CHECK((SPORT_CANCEL_IO(&number) == 0 && device.calls() == "purge:10 purge:15 "));
  CHECK((release() == 0 && SimulatedDevice::held == 0 && pending_transfers == 0));
}

TEST_CASE("a port number that is null, negative or unknown, or another thread's, is 87") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  const int32_t negative = -1, unknown = 8, unknown_large = 2'147'483'647;
  for (const int32_t *bad : {static_cast<const int32_t *>(nullptr), &negative, &unknown, &unknown_large})
    CHECK((SPORT_CANCEL_IO(bad) == ERROR_INVALID_PARAMETER && IERRNO() == ERROR_INVALID_PARAMETER));
  for (const int32_t *bad : {static_cast<const int32_t *>(nullptr), &negative})
    CHECK(SPORT_CONNECT(bad, nullptr) == ERROR_INVALID_PARAMETER);
  CHECK(on_other_thread([](void *) -> DWORD { return SPORT_CANCEL_IO(&number) + connect() == 2 * 87 ? 0 : 1; }) == 0);
}

TEST_CASE("the ring holds what was asked for, at least 4096 bytes") {
  const SimulatedDevice simulation;
  for (const auto &[size, capacity] : {std::pair{-1, 4096}, {4097, 4097}, {0, 16384}}) {  // 0: not given
    CHECK(SPORT_CONNECT_EX(&number, nullptr, size == 0 ? nullptr : &size) == 0);
    device.offer(std::string(static_cast<size_t>(capacity % 2048), 'x'));
    device.offer(std::string(2048 * 9, 'x'));
    int32_t count = 0;
    CHECK(eventually([&] { return SPORT_PEEK_DATA(&number, nullptr, &count) == 0 && count == capacity; }));
    CHECK((release() == 0 && release() == 0));
  }
}

TEST_CASE("a connection that fails leaves no port, but one without its reader does") {
  const SimulatedDevice simulation;
  for (const auto &[call, is_connected] : {std::pair{"SetCommTimeouts", false}, {"CreateThread", true}}) {
    device.fail(call);
    CHECK((connect() == ERROR_GEN_FAILURE && IERRNO() == ERROR_GEN_FAILURE));
    CHECK((release() == (is_connected ? 0 : ERROR_INVALID_PARAMETER) && SimulatedDevice::held == 0));
  }
}

TEST_CASE("128 ports above 255 fit, and each one's place is used again") {
  const SimulatedDevice simulation;
  const ConnectedPort direct(0, 255), least(0, 0);
  std::deque<ConnectedPort> ports;
  const auto connect_next = [&](int32_t next) {
    ports.emplace_back(0, next);
    CHECK(SPORT_RELEASE(&next) == 0);  // ends the reader: the place is what counts here
  };
  for (int32_t i = 0; i < 128; ++i) connect_next(256 + i);
  const int32_t largest = 2'147'483'647;
  for (int32_t i = 0; i < 128; ++i) {
    CHECK(SPORT_CONNECT(&largest, nullptr) == ERROR_NOT_ENOUGH_MEMORY);
    ports.pop_front();
    connect_next(largest - 1 - i);
    for (const ConnectedPort &port : ports) CHECK(SPORT_GET_HANDLE(&port.number, nullptr) == 0);
  }
}

TEST_CASE("a reader that does not end is ended by force, 12, and one whose end is not seen keeps what it uses") {
  static int bad_waits;                               // for the reader's end
  static std::atomic<bool> holds_back, is_held_back;  // the reader, before a read
  const SimulatedDevice simulation;
  device.at_read = [] {
    for (is_held_back = holds_back.load(); holds_back; Sleep(1)) continue;
  };
  const ImportOverride terminate(library(), "TerminateThread", [](HANDLE, DWORD) -> BOOL {
    if (bad_waits <= 0) holds_back = false;
    return TRUE;
  });
  const ImportOverride wait(library(), "WaitForSingleObject", [](HANDLE object, DWORD ms) -> DWORD {
    return ms == 10'000 && bad_waits-- > 0 ? WAIT_TIMEOUT : WaitForSingleObject(object, ms);
  });
  for (const auto &[waits, held] : {std::pair{1, 0}, {2, 4}}) {  // record, buffer and two events
    CHECK(connect() == 0);
    holds_back = true;
    CHECK(eventually([] { return is_held_back.load(); }));
    bad_waits = waits;
    CHECK(SPORT_CANCEL_IO(&number) == ERROR_INVALID_ACCESS);
    CHECK(SPORT_PEEK_DATA(&number, nullptr, nullptr) == (held == 0 ? 0 : ERROR_INVALID_ACCESS));
    holds_back = false;
    release_port(number);
    CHECK(eventually([held = held] { return SimulatedDevice::held == held; }));
  }
}

TEST_CASE("a loaded library's first connection takes six empty reads, and a reader keeps it loaded") {
  const char copy[] = "held_qwport.dll";
  char path[MAX_PATH];
  GetModuleFileNameA(library(), path, sizeof path);
  REQUIRE(CopyFileA(path, copy, FALSE));
  HMODULE module = LoadLibraryA(copy);
  const auto call = [&](const char *name) {
    return reinterpret_cast<decltype(SPORT_CONNECT) *>(reinterpret_cast<void *>(GetProcAddress(module, name)))(&number,
                                                                                                               nullptr);
  };
  {
    const SimulatedDevice simulation(module);
    std::atomic<int> reads = 0;
    device.at_read = [&] { ++reads; };
    CHECK((call("SPORT_CONNECT") == 0 && reads >= 6));
    FreeLibrary(module);
    CHECK(eventually([&, before = reads.load()] { return reads > before + 1; }));
    REQUIRE(LoadLibraryA(copy) == module);
    CHECK((call("SPORT_RELEASE") == 0 && call("SPORT_RELEASE") == 0 && SimulatedDevice::held == 0));
  }
  FreeLibrary(module);
  CHECK((GetModuleHandleA(copy) == nullptr && DeleteFileA(copy)));
}

TEST_CASE("handle, functions and purges reach the host") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  device.calls();
  int64_t handle = 0;
  CHECK((SPORT_GET_HANDLE(&port.number, &handle) == 0 && reinterpret_cast<HANDLE>(handle) == device.handle));
  const int32_t function = SETRTS;
  CHECK((SPORT_SPECIAL_FUNC(&port.number, &function) == 0 && SPORT_PURGE(&port.number, &function) == 0));
  CHECK(device.calls() == "escape:3 purge:3 ");
  CHECK(SPORT_PURGE(&port.number, nullptr) == ERROR_INVALID_PARAMETER);
}
