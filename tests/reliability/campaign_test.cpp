// SPDX-License-Identifier: MIT
// Every exported routine with each of its host calls failing once: it returns, tells the failure, loses nothing,
// keeps no lock, and touches nothing beyond its arguments. And a million calls of a routine of each family.
#include "campaign.h"

#include <doctest/doctest.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>

#include "image.h"
#include "library.h"
#include "qwcore.h"
#include "qwport.h"
#include "resources.h"
#include "simulated_device.h"
#include "test_dir.h"
#include "thread.h"

namespace {

// The core runtime's error status, which reading clears.
int32_t reported_error() {
  int32_t error = 0;
  ERRSNS(nullptr, &error, nullptr, nullptr, nullptr);
  return error;
}

}  // namespace

void Case::begin() {
  reported_error();
  errno = 0;
  arm_failure(failing_);
}

void Case::end() {
  seen.failed_function = disarm_failure();
  seen.reported = reported_error();
  for (const Kept &kept : kept_)
    if (!kept.is_input) seen.outputs.push_back(kept.str());
}

void Case::give_back() {
  for (const Kept &kept : kept_)
    if (kept.give_back != nullptr && number_in(kept_.back().str()) == 0) kept.give_back(number_in(kept.str()));
}

namespace {

// ---- Runs ---------------------------------------------------------------------------------------

Observation run(const Row &row, int call_to_fail, bool at_end) {
  Case one({call_to_fail, (row.traits & asserts) != 0, !at_end}, at_end);
  row.run(one);
  return one.seen;
}

struct Resources {
  int held = held_resources() + pending_transfers;  // transfers too
  DWORD handles = handle_count();
};

// Whether nothing is held any more after a moment in which threads of the library may end.
bool is_all_returned(const Resources &before) {
  for (const ULONGLONG start = GetTickCount64(); GetTickCount64() - start < 2'000; Sleep(1)) {
    const Resources now;
    if (now.held <= before.held && now.handles <= before.handles) return true;
  }
  return false;
}

// ---- Judgement ----------------------------------------------------------------------------------

bool is_filled_with(const std::string &output, char byte) {
  return !output.empty() && output.find_first_not_of(byte) == std::string::npos;
}

// Its last argument tells a failure, and after one its other outputs hold nothing useful.
bool is_pxf(const Row &row) { return row.routine.starts_with("PXF"); }

bool is_told(const Row &row, const Observation &seen, const Observation &sound) {
  if (is_pxf(row) && !seen.outputs.empty()) return number_in(seen.outputs.back()) != number_in(sound.outputs.back());
  if (seen.result != sound.result || seen.reported != sound.reported) return true;
  return std::any_of(seen.outputs.begin(), seen.outputs.end(), [&](const std::string &output) {
    return ((row.traits & tells_by_text) != 0 && is_filled_with(output, ' ')) ||
           ((row.traits & tells_by_minus_one) != 0 && is_filled_with(output, '\xFF'));
  });
}

// What is wrong with a run in which a call failed; empty if nothing is.
std::string fault_of(const Row &row, const Observation &seen, const Observation &sound) {
  const bool told = is_told(row, seen, sound);
  if (row.routine.starts_with("SPORT_") && told && seen.result != ERROR_ACCESS_DENIED &&
      seen.result != ERROR_NOT_ENOUGH_MEMORY)
    return "another code than the host's, " + std::to_string(seen.result);
  for (size_t i = 0; i < seen.outputs.size(); ++i) {
    const std::string &output = seen.outputs[i], argument = "output " + std::to_string(i + 1);
    const bool is_unset = is_filled_with(output, unset);
    if (output == sound.outputs[i]) continue;
    if (!told && (is_unset || (row.traits & (varies | substitutes)) == 0)) return "success with a wrong " + argument;
    if (told && !is_pxf(row) && (row.traits & (changes_outputs | varies)) == 0 && !is_unset &&
        !is_filled_with(output, ' ') && !is_filled_with(output, '\xFF'))
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
    std::putchar('.');
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
  // A lock that is still held lets another thread wait for ever.
  Observation again;
  on_other_thread([&](void *) { return again = run(row, 0, false), 0; });
  if ((row.traits & varies) == 0 && again.result != sound.result)
    faults += " another thread gets another answer afterwards;";
  return faults;
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
  std::set<std::string> missing;
  const auto *exports = table_of<IMAGE_EXPORT_DIRECTORY>(library(), IMAGE_DIRECTORY_ENTRY_EXPORT);
  const auto *names = at_offset<DWORD>(library(), exports->AddressOfNames);
  for (DWORD i = 0; i < exports->NumberOfNames; ++i) missing.insert(at_offset<char>(library(), names[i]));
  REQUIRE(missing.size() > 300);
  for (const Row &row : campaign_rows()) missing.erase(row.routine);
  const std::string first_missing = missing.empty() ? "" : *missing.begin();
  CHECK(first_missing == "");
}

TEST_CASE("a million calls of a routine of each family leave the process as large as it was") {
  const TestDir dir;
  const SimulatedDevice device_behind_all_ports;
  make_file("a.txt", "first line\nsecond line\n");
  const std::set<std::string> routines{"FTELL",           "SPLITPATHQQ",     "FDATE", "GETENVQQ",
                                       "QSORT",           "LNBLNK",          "RAN",   "GETCONTROLFPQQ",
                                       "MBINDEX",         "SPORT_PEEK_DATA", "DRAND", "SETCONTROLFPQQ",
                                       "PXFSTRUCTCREATE", "NLSFORMATNUMBER"};
  for (const Row &row : campaign_rows()) {
    if (!routines.contains(row.routine)) continue;
    CAPTURE(row.routine);
    Case few({}, true, 10'000), many({}, true, 1'000'000);
    row.run(few);
    const size_t before = committed_bytes();
    row.run(many);
    CHECK(committed_bytes() < before + 200'000);
  }
}

TEST_CASE("a host call that fails is told, and nothing is lost") {
  make_host_harmless();
  new SimulatedDevice;  // stays behind the serial ports
  watch_imports({library(), GetModuleHandleA("libqwcorert.dll")});
  const TestDir dir;
  make_file("a.txt", "first line\nsecond line\n");
  // After a crash or an end by force the last line tells the routine, and by its dots the call that failed.
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  int injections = 0;
  const char *only = std::getenv("QWPORT_CAMPAIGN_ROUTINE");  // to look at one routine alone
  for (const Row &row : campaign_rows()) {
    if ((row.traits & ends) != 0 || (only != nullptr && only != row.routine)) continue;
    for (const bool at_end : {true, false}) {
      const std::string name = row.routine + (at_end ? "" : ", arguments behind a page");
      std::printf("\n%s ", name.c_str());
      const std::string faults = judge(row, at_end, injections);
      const std::string report = name + ':' + faults;
      CHECK_MESSAGE(faults == "", report);
    }
  }
  std::printf("\n%d failures injected in %d rows\n", injections, static_cast<int>(campaign_rows().size()));
  CHECK(injections > (only == nullptr ? 500 : 0));
}
