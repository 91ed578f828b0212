// SPDX-License-Identifier: MIT
// Connecting, releasing and the reader's life, on a simulated device.
#include <doctest/doctest.h>

#include <array>
#include <deque>
#include <memory>

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

int failures_left;

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
  CHECK((SPORT_RELEASE(&number) == ERROR_INVALID_PARAMETER && connect() == 0));
  device.fail("CloseHandle", ERROR_GEN_FAILURE);
  CHECK(release() == std::pair{2, int32_t{ERROR_GEN_FAILURE}});
}

TEST_CASE("a port number that is null, negative or unknown, or another thread's, is 87") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  const int32_t negative = -1, unknown = 8, unknown_large = 2'147'483'647;
  for (const int32_t *bad : {static_cast<const int32_t *>(nullptr), &negative, &unknown, &unknown_large})
    CHECK(SPORT_CANCEL_IO(bad) == ERROR_INVALID_PARAMETER);
  CHECK(IERRNO() == ERROR_INVALID_PARAMETER);
  CHECK(SPORT_CONNECT(nullptr, nullptr) == ERROR_INVALID_PARAMETER);
  CHECK(SPORT_CONNECT_EX(&negative, nullptr, nullptr) == ERROR_INVALID_PARAMETER);
  for (const LPTHREAD_START_ROUTINE call : {+[](void *) { return static_cast<DWORD>(SPORT_CANCEL_IO(&number)); },
                                            +[](void *) { return static_cast<DWORD>(connect()); }})
    CHECK(on_other_thread(call) == ERROR_INVALID_PARAMETER);
}

TEST_CASE("the ring holds what was asked for, at least 4096 bytes") {
  const SimulatedDevice simulation;
  for (const auto &[size, capacity] : {std::pair{-1, 4096}, {8192, 8192}, {0, 16384}}) {  // 0: not given
    CHECK(SPORT_CONNECT_EX(&number, nullptr, size == 0 ? nullptr : &size) == 0);
    device.offer(std::string(2048 * 12, 'x'));
    int32_t count = 0;
    CHECK(eventually([&] { return SPORT_PEEK_DATA(&number, nullptr, &count) == 0 && count == capacity; }));
    CHECK(release().first == 3);
  }
}

TEST_CASE("a connection that fails leaves nothing behind") {
  const SimulatedDevice simulation;
  for (const char *call : {"CreateFileA", "PurgeComm", "GetCommTimeouts", "SetCommTimeouts"}) {
    device.fail(call, ERROR_GEN_FAILURE);
    device.calls();
    CHECK((connect() == ERROR_GEN_FAILURE && IERRNO() == ERROR_GEN_FAILURE));
    CHECK((device.calls().ends_with("close ") || std::string(call) == "CreateFileA"));
    CHECK(release() == std::pair{1, int32_t{ERROR_INVALID_PARAMETER}});
    device.fail(call, 0);
    if (std::string(call).ends_with("Timeouts")) CHECK(connect() == 0);  // an error without a number is none
    release();
    device.fail(call);
  }
  const ImportOverride allocation(
      library(), "HeapAlloc", +[](HANDLE heap, DWORD flags, size_t size) -> void * {
        return failures_left-- == 0 ? nullptr : HeapAlloc(heap, flags, size);
      });
  for (int successes = 0; successes < 3; ++successes) {
    failures_left = successes;
    CHECK(connect() == ERROR_NOT_ENOUGH_MEMORY);
    CHECK(release().first == (successes == 0 ? 1 : 2));
  }
}

TEST_CASE("a reader that cannot start or ends at once leaves a port that one release closes") {
  const SimulatedDevice simulation;
  const auto check = [](int32_t code) {
    CHECK(connect() == code);
    CHECK(SPORT_PEEK_DATA(&number, nullptr, nullptr) == code);
    CHECK(release() == std::pair{2, int32_t{ERROR_INVALID_PARAMETER}});
  };
  for (const auto &[call, code, successes] : {std::tuple{"ReadFile", ERROR_GEN_FAILURE, 0},
                                              {"ReadFile", ERROR_INVALID_HANDLE, 0},
                                              {"GetOverlappedResult", ERROR_GEN_FAILURE, 0},
                                              {"SetCommTimeouts", ERROR_NOT_SUPPORTED, 1}}) {
    device.fail(call, static_cast<int>(code), successes);
    check(static_cast<int32_t>(code));
    device.fail(call);
  }
  const auto fail = +[]() -> intptr_t {
    SetLastError(ERROR_TOO_MANY_TCBS);
    return 0;
  };
  for (const char *call : {"CreateEventA", "CreateThread", "ResumeThread"}) {
    const ImportOverride failing(library(), call, fail);
    check(ERROR_TOO_MANY_TCBS);
  }
}

TEST_CASE("128 ports above 255 fit, and a freed place is used again") {
  const SimulatedDevice simulation;
  std::deque<std::unique_ptr<ConnectedPort>> ports;
  for (int32_t i = 0; i < 128; ++i) {
    ports.push_back(std::make_unique<ConnectedPort>(0, 4096, 256 + i));
    CHECK(SPORT_RELEASE(&ports.back()->number) == 0);  // ends the reader: the place is what counts here
  }
  const int32_t next = 2'147'483'647;
  CHECK(SPORT_CONNECT(&next, nullptr) == ERROR_NOT_ENOUGH_MEMORY);
  ports.erase(ports.begin() + 60);
  CHECK(SPORT_RELEASE(&next) == ERROR_INVALID_PARAMETER);
  device.calls();
  ports.push_back(std::make_unique<ConnectedPort>(0, 4096, next));
  CHECK(device.calls().starts_with("open:\\\\.\\COM2147483647,"));
  const ConnectedPort direct(0, 4096, 255), least(0, 4096, 0);
  for (const auto *port : {&ports.front(), &ports.back()}) CHECK((*port)->peek(SPORT_PEEK_DATA) == "0:0");
}

TEST_CASE("a reader that does not end in time is ended by force, 12") {
  const SimulatedDevice simulation;
  static DWORD forced_code;
  const ImportOverride terminate(
      library(), "TerminateThread", +[](HANDLE thread, DWORD code) -> BOOL {
        forced_code = code;
        device.fail("ReadFile", ERROR_GEN_FAILURE);
        return WaitForSingleObject(thread, INFINITE) == WAIT_OBJECT_0;
      });
  const auto give_up =
      +[](HANDLE object, DWORD ms) -> DWORD { return ms < 10'000 ? WaitForSingleObject(object, ms) : WAIT_TIMEOUT; };
  const auto give_up_late = +[](HANDLE object, DWORD ms) -> DWORD {
    return WaitForSingleObject(object, ms < 10'000 ? ms : INFINITE) == WAIT_OBJECT_0 ? WAIT_TIMEOUT : WAIT_FAILED;
  };
  for (const auto &[wait, code] : {std::pair{give_up, DWORD(-1)}, {give_up_late, DWORD{0}}}) {
    forced_code = 0;
    CHECK(connect() == 0);
    const ImportOverride waiting(library(), "WaitForSingleObject", wait);
    CHECK((SPORT_CANCEL_IO(&number) == ERROR_INVALID_ACCESS && forced_code == code && release().first == 2));
    device.fail("ReadFile");
  }
}

TEST_CASE("handle, functions and purges reach the host, and its verdict the caller") {
  const SimulatedDevice simulation;
  const ConnectedPort port;
  device.calls();
  int64_t handle = 0;
  CHECK((SPORT_GET_HANDLE(&port.number, &handle) == 0 && reinterpret_cast<HANDLE>(handle) == device.handle));
  static const int64_t constant = 5;
  for (const int64_t *out : {static_cast<const int64_t *>(nullptr), &constant})
    CHECK(SPORT_GET_HANDLE(&port.number, const_cast<int64_t *>(out)) == 0);
  const int32_t function = SETRTS;
  CHECK((SPORT_SPECIAL_FUNC(&port.number, &function) == 0 && SPORT_PURGE(&port.number, &function) == 0));
  CHECK(device.calls() == "escape:3 purge:3 ");
  for (auto *routine : {SPORT_SPECIAL_FUNC, SPORT_PURGE})
    CHECK(routine(&port.number, nullptr) == ERROR_INVALID_PARAMETER);
  device.fail("EscapeCommFunction", ERROR_NOT_SUPPORTED);
  device.fail("PurgeComm", ERROR_GEN_FAILURE);
  CHECK(SPORT_SPECIAL_FUNC(&port.number, &function) == ERROR_NOT_SUPPORTED);
  CHECK(SPORT_PURGE(&port.number, &function) == ERROR_GEN_FAILURE);
  CHECK(SPORT_CANCEL_IO(&port.number) == ERROR_GEN_FAILURE);
}
