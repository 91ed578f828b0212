// SPDX-License-Identifier: MIT
// The mapping of operating-system errors onto errno values.
#include <doctest/doctest.h>

#include <cerrno>
#include <map>

#include <windows.h>

#include "core_entries.h"
#include "errors.h"

namespace {

// Every error number with a mapping of its own.
const std::map<uint32_t, int32_t> single_errors = {
    {1, 22},   {2, 2},    {3, 2},    {4, 24},   {5, 13},   {6, 9},   {7, 12},   {8, 12},   {9, 12},
    {10, 7},   {11, 8},   {12, 22},  {13, 22},  {15, 2},   {16, 13}, {17, 18},  {18, 2},   {33, 13},
    {53, 2},   {65, 13},  {67, 2},   {80, 17},  {82, 13},  {83, 13}, {87, 22},  {89, 11},  {108, 13},
    {109, 9},  {112, 28}, {114, 9},  {128, 10}, {129, 10}, {130, 9}, {131, 22}, {132, 13}, {145, 41},
    {158, 13}, {161, 2},  {164, 11}, {167, 13}, {183, 17}, {206, 2}, {215, 11}, {1816, 12}};

int32_t expected_errno(uint32_t os_error) {
  const auto single = single_errors.find(os_error);
  if (single != single_errors.end()) return single->second;
  if (os_error >= 19 && os_error <= 36) return 13;
  if (os_error >= 188 && os_error <= 202) return 8;
  return 22;
}

int32_t reported;
void keep_report(int32_t, int32_t error, int32_t, int32_t, int32_t) { reported = error; }

}  // namespace

TEST_CASE("44 errors have a mapping of their own, two ranges share one, the rest is 22") {
  for (uint32_t os_error = 0; os_error < 20'000; ++os_error) {
    CAPTURE(os_error);
    REQUIRE(portlib_errno_of_os_error(os_error) == expected_errno(os_error));
  }
  CHECK(portlib_errno_of_os_error(0xFFFFFFFF) == 22);
}

TEST_CASE("the last operating-system error is reported and not recorded") {
  core_entries.for_errsns_load = keep_report;
  portlib_last_error = 7;
  SetLastError(ERROR_SHARING_VIOLATION);
  portlib_map_os_error();
  CHECK((reported == EACCES && errno == EACCES && portlib_last_error == 7));
  SetLastError(ERROR_DISK_FULL);
  CHECK((portlib_fail_by_os_error() == 0 && reported == ENOSPC && portlib_last_error == 7));
  SetLastError(ERROR_FILE_NOT_FOUND);
  CHECK((portlib_record_os_error() == ENOENT && reported == ENOENT && portlib_last_error == ENOENT));
}
