// SPDX-License-Identifier: MIT
// Every host call of the family fails, each at every place where it is made, and eight threads share the table.
#include <doctest/doctest.h>

#include <atomic>

#include "simulated_device.h"
#include "thread.h"

namespace {

// Whether a routine tells the code of a failing host call; every routine is called.
bool is_told() {
  const int32_t port = 300, function = 1, level = 10, baud = 600;
  bool told = false;
  const auto note = [&](int32_t code) { told |= code == ERROR_GEN_FAILURE && IERRNO() == code; };
  char text[4] = "";
  device.at_wait = [] { device.offer("abc"); };
  note(SPORT_CONNECT(&port, nullptr));
  note(SPORT_READ_LINE(&port, text, nullptr, 2));
  note(SPORT_READ_DATA(&port, text, nullptr, 1));
  note(SPORT_WRITE_LINE(&port, "ab", nullptr, 2));
  note(SPORT_SPECIAL_FUNC(&port, &function));
  note(SPORT_PURGE(&port, &function));
  note(SPORT_SET_STATE(&port, &baud, nullptr, nullptr, nullptr));
  note(SPORT_GET_STATE(&port, nullptr, nullptr, nullptr, nullptr));
  note(SPORT_SET_TIMEOUTS(&port, nullptr, nullptr, nullptr));
  note(SPORT_GET_TIMEOUTS(&port, nullptr, nullptr, nullptr));
  note(SPORT_SHOW_STATE(&port, &level));
  note(SPORT_CANCEL_IO(&port));
  for (int32_t code = 0; code != ERROR_INVALID_PARAMETER; note(code)) code = SPORT_RELEASE(&port);
  device.dcb = {};
  return told;
}

}  // namespace

TEST_CASE("whatever host call fails, a routine says so, and nothing is lost") {
  const SimulatedDevice simulation;
  const ImportOverride raise(
      library(), "RaiseException", +[](DWORD, DWORD, DWORD, const ULONG_PTR *) {});
  const struct {
    const char *call, *told;  // at each place in turn; '.': nobody needs to know
  } rows[] = {{"CreateFileA", "!."},       {"PurgeComm", "!!!.!.."},         {"GetCommTimeouts", "!!!!!."},
              {"SetCommTimeouts", "!!!."}, {"GetModuleHandleExA", "!."},     {"CreateEventA", "!!!."},
              {"CreateThread", "!."},      {"SetThreadPriority", "."},       {"ResumeThread", "!."},
              {"ReadFile", "!"},           {"WaitForMultipleObjects", "!."}, {"SetEvent", "!."},
              {"WriteFile", "!!"},         {"GetOverlappedResult", "!!"},    {"EscapeCommFunction", "!."},
              {"GetCommState", "!!!."},    {"SetCommState", "!."},           {"WaitForSingleObject", "!."}};
  for (const auto &[call, told] : rows) {
    std::string outcome;
    for (int place = 0; told[place] != '\0'; ++place) {
      device.fail(call, ERROR_GEN_FAILURE, place, 1);
      outcome += is_told() ? '!' : '.';
      CHECK((eventually([] { return device.held <= 0; }) && device.held == 0 && device.pending == 0));
      CHECK(on_other_thread(+[](void *) -> DWORD { return static_cast<DWORD>(SPORT_CANCEL_IO(nullptr)); }) != 0);
    }
    CAPTURE(call);
    CHECK(outcome == told);
  }
  for (int place = 0; place < 2; ++place) {
    device.fail("HeapAlloc", ERROR_GEN_FAILURE, place);
    const int32_t port = 300;
    CHECK((SPORT_CONNECT(&port, nullptr) == ERROR_NOT_ENOUGH_MEMORY && SPORT_RELEASE(&port) == 87 * (1 - place)));
    CHECK(device.held == 0);
  }
}

TEST_CASE("eight threads share the table") {
  static std::atomic<int> users, faults;
  const SimulatedDevice simulation;
  const auto use_ports = +[](void *own) -> DWORD {
    const auto expect = [](bool holds) { faults += holds ? 0 : 1; };
    const int32_t shared = 300;
    for (int i = 0; i < 20; ++i) {
      const int32_t mine = static_cast<int32_t>(reinterpret_cast<intptr_t>(own)) + i % 2 * 300;
      expect(SPORT_CONNECT(&mine, nullptr) == 0 && SPORT_WRITE_DATA(&mine, "ab", nullptr, 2) == 0);
      const int32_t code = SPORT_CONNECT(&shared, nullptr);
      if (code == 0) {
        expect(users++ == 0 && SPORT_CANCEL_IO(&shared) == 0);
        --users;
        expect(SPORT_RELEASE(&shared) == 0);
      }
      expect(code == 0 || code == ERROR_INVALID_PARAMETER || code == ERROR_NOT_ENOUGH_MEMORY);
      expect(SPORT_RELEASE(&mine) == 0 && SPORT_RELEASE(&mine) == 0);
    }
    return 0;
  };
  HANDLE threads[8];
  for (intptr_t i = 0; i < 8; ++i)
    threads[i] = CreateThread(nullptr, 0, use_ports, reinterpret_cast<void *>(i + 1), 0, nullptr);
  CHECK(WaitForMultipleObjects(8, threads, TRUE, 100'000) == WAIT_OBJECT_0);
  for (HANDLE thread : threads) CloseHandle(thread);
  CHECK((faults == 0 && device.held == 0));
}
