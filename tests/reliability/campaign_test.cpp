// SPDX-License-Identifier: MIT
// Every exported routine with each of its host calls failing once: it returns, tells the failure, loses nothing,
// keeps no lock, and touches nothing beyond its arguments.
#include "campaign.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <regex>
#include <set>

#include "failing_imports.h"
#include "handles.h"
#include "library.h"
#include "qwcore.h"
#include "qwport.h"
#include "simulated_device.h"
#include "test_dir.h"

// ---- Arguments and calls ------------------------------------------------------------------------

GuardedBytes::GuardedBytes(size_t size, bool at_end, bool is_input) : size_(size), is_input_(is_input) {
  constexpr size_t page = 4096;
  usable_ = std::max(page, (size + page - 1) / page * page);
  memory_ = static_cast<char *>(VirtualAlloc(nullptr, usable_ + 2 * page, MEM_RESERVE, PAGE_NOACCESS));
  VirtualAlloc(memory_ + page, usable_, MEM_COMMIT, PAGE_READWRITE);
  bytes_ = memory_ + page + (at_end ? usable_ - size : 0);
  std::memset(bytes_, unset, size);
}

GuardedBytes::GuardedBytes(GuardedBytes &&other) noexcept
    : memory_(std::exchange(other.memory_, nullptr)),
      bytes_(other.bytes_),
      size_(other.size_),
      usable_(other.usable_),
      is_input_(other.is_input_) {}

GuardedBytes::~GuardedBytes() {
  if (memory_ != nullptr) VirtualFree(memory_, 0, MEM_RELEASE);
}

void GuardedBytes::protect() const {
  DWORD protection = 0;
  if (is_input_) VirtualProtect(bytes_, std::max<size_t>(size_, 1), PAGE_READONLY, &protection);
}

namespace {
// The core runtime's error status, which reading clears.
int32_t reported_error() {
  int32_t error = 0;
  ERRSNS(nullptr, &error, nullptr, nullptr, nullptr);
  return error;
}
}  // namespace

void Case::begin() const {
  reported_error();
  errno = 0;
  arm_failure(call_to_fail_, failing_, !at_end_);
}

void Case::end(int64_t result) {
  const Injection injection = disarm_failure();
  seen.result = result;
  seen.reported = reported_error();
  seen.calls = injection.calls;
  seen.failed_function = injection.function;
}

namespace {

// ---- Runs ---------------------------------------------------------------------------------------

// What runs now, for the watchdog and a crash.
std::atomic<const char *> present_routine = "";
std::atomic<int> present_call;
std::atomic<ULONGLONG> present_start;

[[noreturn]] void give_up(const char *what) {
  std::fprintf(stderr, "%s: %s while call %d failed\n", present_routine.load(), what, present_call.load());
  std::fflush(stderr);
  TerminateProcess(GetCurrentProcess(), 3);
  std::abort();
}

DWORD WINAPI watch_time(void *) {
  constexpr ULONGLONG limit_ms = 60'000;
  for (;; Sleep(500))
    if (GetTickCount64() - present_start > limit_ms) give_up("does not return");
}

LONG WINAPI report_crash(EXCEPTION_POINTERS *exception) {
  char text[60];
  std::snprintf(text, sizeof text, "exception %lx at %p", exception->ExceptionRecord->ExceptionCode,
                exception->ExceptionRecord->ExceptionAddress);
  give_up(text);
}

Observation run(const Row &row, int call_to_fail, bool at_end) {
  present_routine = row.routine;
  present_call = call_to_fail;
  present_start = GetTickCount64();
  Case one(call_to_fail, (row.traits & asserts) != 0 ? Failing::all_but_memory : Failing::all, at_end);
  row.run(one);
  return one.seen;
}

// The same on another thread, which waits for ever where a lock is held.
Observation run_elsewhere(const Row &row) {
  struct Errand {
    const Row &row;
    Observation seen;
  } errand{row, {}};
  HANDLE thread = CreateThread(
      nullptr, 0,
      [](void *argument) -> DWORD {
        auto &its_errand = *static_cast<Errand *>(argument);
        its_errand.seen = run(its_errand.row, 0, false);
        return 0;
      },
      &errand, 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  return errand.seen;
}

struct Resources {
  long held = held_resources();
  DWORD handles = handle_count();
};

// What is still held after a moment in which threads of the library may end.
bool is_all_returned(const Resources &before) {
  return eventually([&] {
           const Resources now;
           return (now.held <= before.held && now.handles <= before.handles) ||
                  GetTickCount64() - present_start > 2'000;
         }) &&
         Resources().held <= before.held && Resources().handles <= before.handles;
}

// ---- Judgement ----------------------------------------------------------------------------------

bool is_filled_with(const std::string &output, char byte) {
  return !output.empty() && output.find_first_not_of(byte) == std::string::npos;
}
bool is_unset(const std::string &output) { return is_filled_with(output, unset); }

// The last argument of a PXF subroutine.
int32_t ierror_of(const Observation &seen) {
  int32_t ierror = 0;
  const std::string &last = seen.outputs.back();
  std::memcpy(&ierror, last.data(), std::min(last.size(), sizeof ierror));
  return ierror;
}

// Its last argument tells a failure, and after one its other outputs hold nothing useful.
bool is_pxf(const Row &row) { return std::string_view(row.routine).starts_with("PXF"); }

bool is_told(const Row &row, const Observation &seen, const Observation &sound) {
  if (is_pxf(row) && !seen.outputs.empty()) return ierror_of(seen) != ierror_of(sound);
  if (!seen.answers_as(sound) || seen.reported != sound.reported) return true;
  const auto tells = [&](const std::string &output) {
    return ((row.traits & tells_by_text) != 0 && is_filled_with(output, ' ')) ||
           ((row.traits & tells_by_minus_one) != 0 && is_filled_with(output, '\xFF'));
  };
  return std::any_of(seen.outputs.begin(), seen.outputs.end(), tells);
}

// What is wrong with a run in which a call failed; empty if nothing is.
std::string fault_of(const Row &row, const Observation &seen, const Observation &sound) {
  const bool told = is_told(row, seen, sound);
  for (size_t i = 0; i < seen.outputs.size(); ++i) {
    const std::string &output = seen.outputs[i];
    const std::string argument = "output " + std::to_string(i + 1);
    if (!told && is_unset(output) && !is_unset(sound.outputs[i])) return "success with " + argument + " unset";
    if (!told && (row.traits & (varies | substitutes)) == 0 && output != sound.outputs[i])
      return "success with a wrong " + argument;
    if (told && !is_pxf(row) && (row.traits & (changes_outputs | varies)) == 0 && output != sound.outputs[i] &&
        !is_unset(output) && !is_filled_with(output, ' ') && !is_filled_with(output, '\xFF'))
      return "a failure with a changed " + argument;
  }
  return "";
}

std::string judge(const Row &row, bool at_end, int &injections) {
  std::string faults;
  const std::filesystem::path directory = std::filesystem::current_path();
  run(row, 0, at_end);  // what a first call sets up for good does not count
  const Resources before;
  const Observation sound = run(row, 0, at_end);
  if (!is_all_returned(before)) return " loses something where nothing fails;";
  for (int call = 1; call <= 200; ++call) {
    const Resources at_start;
    const Observation seen = run(row, call, at_end);
    if (seen.failed_function == nullptr) break;
    ++injections;
    std::string fault = fault_of(row, seen, sound);
    if (fault.empty() && std::filesystem::current_path() != directory) fault = "the current directory is another";
    std::filesystem::current_path(directory);
    if (fault.empty() && (row.traits & keeps) == 0 && !is_all_returned(at_start)) fault = "something is lost";
    if (!fault.empty())
      faults += " " + std::string(seen.failed_function) + ", call " + std::to_string(call) + ": " + fault + ";";
  }
  const Observation again = run_elsewhere(row);
  if ((row.traits & varies) == 0 && !again.answers_as(sound))
    faults += " another thread gets another answer afterwards;";
  return faults;
}

std::set<std::string> listed_exports() {
  const std::string text = file_contents(QWPORT_SOURCE_DIR "/libqwport.def");
  const std::regex name(R"(\n +"?([A-Z0-9_$]+))");
  std::set<std::string> names;
  for (auto match = std::sregex_iterator(text.begin(), text.end(), name); match != std::sregex_iterator(); ++match)
    names.insert((*match)[1]);
  return names;
}

// What a test must never reach: the clock of the machine and the end of a process.
void make_host_harmless() {
  const auto succeed = +[]() -> BOOL { return TRUE; };
  new ImportOverride(library(), "SetLocalTime", succeed);
  new LookupOverride(library(), "AdjustTokenPrivileges", succeed);
  new ImportOverride(library(), "TerminateProcess", succeed);
  new ImportOverride(library(), "Beep", succeed);
}

}  // namespace

TEST_CASE("every routine has a row") {
  std::set<std::string> missing = listed_exports();
  REQUIRE(missing.size() > 300);
  std::string names;
  for (const Row &row : campaign_rows()) missing.erase(row.routine);
  for (const std::string &name : missing) names += name + ' ';
  CHECK(names == "");
}

TEST_CASE("a host call that fails is told, and nothing is lost") {
  make_host_harmless();
  new SimulatedDevice;  // stays behind the serial ports
  watch_imports({library(), GetModuleHandleA("libqwcorert.dll")});
  SetUnhandledExceptionFilter(report_crash);
  present_start = GetTickCount64();
  CloseHandle(CreateThread(nullptr, 0, watch_time, nullptr, 0, nullptr));
  const TestDir dir;
  make_file("a.txt", "first line\nsecond line\n");
  int injections = 0;
  const char *only = std::getenv("QWPORT_CAMPAIGN_ROUTINE");  // to look at one routine alone
  for (const Row &row : campaign_rows()) {
    if ((row.traits & ends) != 0 || (only != nullptr && std::string_view(only) != row.routine)) continue;
    for (const bool at_end : {true, false}) {
      const std::string faults = judge(row, at_end, injections);
      const std::string report = row.routine + std::string(at_end ? "" : ", arguments behind a page") + ':' + faults;
      CHECK_MESSAGE(faults == "", report);
    }
  }
  std::printf("%d failures injected in %d rows\n", injections, static_cast<int>(campaign_rows().size()));
  CHECK(injections > (only == nullptr ? 500 : 0));
}
