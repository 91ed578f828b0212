// SPDX-License-Identifier: MIT
// Connecting, releasing and the reader's life, on a simulated device.
#include <doctest/doctest.h>

#include <array>
#include <atomic>
#include <deque>

#include "simulated_device.h"
#include "thread.h"

namespace {

const int32_t number = 7;

int32_t connect() { return SPORT_CONNECT(&number, nullptr); }

// The number of calls until a port is released, and the code of the last.
std::pair<int, int32_t> release() {
  for (int calls = 1;; ++calls) {
    const int32_t code = SPORT_RELEASE(&number);
    if (code != 0 || calls > 2) return {calls, code};
  }
}

}  // namespace

TEST_CASE("a port is opened, purged, given its timeouts, and closed by the second release") {
  const SimulatedDevice simulation;
  CHECK(connect() == 0);
  CHECK(device.calls() == "open:\\\\.\\COM7,c0000000,0,3,40000080 purge:15 ");
  const auto [interval, multiplier, constant, write_multiplier, write_constant] = device.timeouts;
  CHECK(std::array{interval, multiplier, constant, write_multiplier, write_constant} ==
        std::array<DWORD, 5>{200, 0, 200, 2, 2000});
  CHECK(connect() == ERROR_INVALID_PARAMETER);
  CHECK((SPORT_RELEASE(&number) == 0 && device.calls() == "purge:10 "));
  CHECK((SPORT_RELEASE(&number) == 0 && device.calls() == "purge:15 close "));
  CHECK((SPORT_RELEASE(&number) == ERROR_INVALID_PARAMETER && connect() == 0 && !device.calls().empty()));
  CHECK((SPORT_CANCEL_IO(&number) == 0 && device.calls() == "purge:10 purge:15 "));
  device.fail("CloseHandle");
  CHECK(SPORT_RELEASE(&number) == ERROR_GEN_FAILURE);
  device.fail("GetCommTimeouts", ERROR_SUCCESS);  // an error without a number is none
  CHECK((SPORT_RELEASE(&number) == ERROR_INVALID_PARAMETER && connect() == 0));
  CHECK(release() == std::pair{3, int32_t{ERROR_INVALID_PARAMETER}});
}

TEST_CASE("a port number that is null, negative or unknown, or another thread's, is 87") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  const int32_t negative = -1, unknown = 8, unknown_large = 2'147'483'647;
  for (const int32_t *bad : {static_cast<const int32_t *>(nullptr), &negative, &unknown, &unknown_large})
    CHECK((SPORT_CANCEL_IO(bad) == ERROR_INVALID_PARAMETER && IERRNO() == ERROR_INVALID_PARAMETER));
  for (const int32_t *bad : {static_cast<const int32_t *>(nullptr), &negative})
    CHECK(SPORT_CONNECT_EX(bad, nullptr, nullptr) == ERROR_INVALID_PARAMETER);
  CHECK(on_other_thread([](void *) -> DWORD { return SPORT_CANCEL_IO(&number) + connect() == 2 * 87 ? 0 : 1; }) == 0);
}

TEST_CASE("the ring holds what was asked for, at least 4096 bytes") {
  const SimulatedDevice simulation;
  for (const auto &[size, capacity] : {std::pair{-1, 4096}, {4095, 4096}, {4097, 4097}, {0, 16384}}) {  // 0: not given
    CHECK(SPORT_CONNECT_EX(&number, nullptr, size == 0 ? nullptr : &size) == 0);
    device.offer(std::string(static_cast<size_t>(capacity % 2048), 'x'));
    device.offer(std::string(2048 * 9, 'x'));
    int32_t count = 0;
    CHECK(eventually([&] { return SPORT_PEEK_DATA(&number, nullptr, &count) == 0 && count == capacity; }));
    CHECK(release().first == 3);
  }
}

TEST_CASE(
    "a connection that fails is told by its code, also in IERRNO, and without a reader the port stays connected") {
  const std::tuple<const char *, int, int32_t, int32_t> cases[] = {
      {"CreateFileA", 0, 31, 87}, {"PurgeComm", 0, 31, 87}, {"SetCommTimeouts", 0, 31, 87},
      {"CreateThread", 0, 31, 0}, {"HeapAlloc", 0, 8, 87},  {"HeapAlloc", 1, 8, 0}};
  const SimulatedDevice simulation;
  for (const auto &[call, successes, code, code_of_release] : cases) {
    device.fail(call, ERROR_GEN_FAILURE, successes);
    CHECK((connect() == code && IERRNO() == code && SPORT_RELEASE(&number) == code_of_release));
    CHECK((SimulatedDevice::held == 0 && device.pending == 0));
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
    device.calls();
    connect_next(largest - 1 - i);
    CHECK(device.calls().starts_with("open:\\\\.\\COM" + std::to_string(largest - 1 - i) + ','));
    for (const ConnectedPort &port : ports) CHECK(SPORT_GET_HANDLE(&port.number, nullptr) == 0);
  }
}

TEST_CASE("a reader that does not end is ended by force, 12, and one whose end is not seen keeps what it uses") {
  struct Row {
    bool is_stuck;
    int bad_waits;  // for the reader's end
    DWORD wait_result, code, forced_code;
    int held;
  };
  const Row rows[] = {{true, 1, WAIT_TIMEOUT, ERROR_INVALID_ACCESS, DWORD(-1), 0},
                      {false, 1, WAIT_TIMEOUT, ERROR_INVALID_ACCESS, 0, 0},  // ends late
                      {false, 1, WAIT_FAILED, ERROR_GEN_FAILURE, 0, 0},
                      {true, 2, WAIT_TIMEOUT, ERROR_INVALID_ACCESS, DWORD(-1), 4}};  // record, buffer and two events
  static Row now;
  static DWORD forced_code;
  static std::atomic<bool> holds_back, is_held_back;  // the reader, before a read
  const SimulatedDevice simulation;
  device.at_read = [] {
    for (is_held_back = holds_back.load(); holds_back; Sleep(1)) continue;
  };
  const ImportOverride terminate(library(), "TerminateThread", [](HANDLE thread, DWORD code) -> BOOL {
    forced_code = code;
    if (now.bad_waits > 0) return TRUE;
    holds_back = false;
    return WaitForSingleObject(thread, INFINITE) == WAIT_OBJECT_0;
  });
  const auto wait = +[](HANDLE object, DWORD ms) -> DWORD {
    if (ms < 10'000) return WaitForSingleObject(object, ms);
    if (now.bad_waits-- <= 0) return WaitForSingleObject(object, INFINITE);
    if (!now.is_stuck && now.wait_result == WAIT_TIMEOUT) WaitForSingleObject(object, INFINITE);
    SetLastError(ERROR_GEN_FAILURE);
    return now.wait_result;
  };
  for (const Row &row : rows) {
    now = row;
    forced_code = 0;
    CHECK(connect() == 0);
    holds_back = row.is_stuck;
    CHECK(eventually([&] { return is_held_back == row.is_stuck; }));
    {
      const ImportOverride waiting(library(), "WaitForSingleObject", wait);
      CHECK((SPORT_CANCEL_IO(&number) == static_cast<int32_t>(row.code) && forced_code == row.forced_code));
    }
    if (row.held > 0) CHECK(SPORT_PEEK_DATA(&number, nullptr, nullptr) == ERROR_INVALID_ACCESS);
    CHECK(release().first == 2);
    holds_back = false;
    CHECK(eventually([&] { return SimulatedDevice::held == row.held; }));
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
    std::atomic<bool> is_connected = false;
    std::atomic<int> reads = 0, early_or_late = 0;
    // The sixth read must not begin, and the seventh not end, with the connection made and still waited for.
    device.at_read = [&] {
      ++reads;
      if (reads == 6) Sleep(100);
      if (reads == 6 ? is_connected.load() : reads == 7 && !eventually([&] { return is_connected.load(); }))
        early_or_late = reads.load();
    };
    CHECK(call("SPORT_CONNECT") == 0);
    is_connected = true;
    CHECK((eventually([&] { return reads > 7; }) && early_or_late == 0));
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
  static const int64_t constant = 5;
  CHECK((SPORT_GET_HANDLE(&port.number, nullptr) == 0 &&
         SPORT_GET_HANDLE(&port.number, const_cast<int64_t *>(&constant)) == 0));
  const int32_t function = SETRTS;
  CHECK((SPORT_SPECIAL_FUNC(&port.number, &function) == 0 && SPORT_PURGE(&port.number, &function) == 0));
  CHECK(device.calls() == "escape:3 purge:3 ");
  for (auto *routine : {SPORT_SPECIAL_FUNC, SPORT_PURGE})
    CHECK(routine(&port.number, nullptr) == ERROR_INVALID_PARAMETER);
}
