// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include <ctime>

#include <windows.h>

#include "qwcore.h"

TEST_CASE("the process started a little before now, and the time since a start grows by what the clock counts") {
  const double start = for__process_start_time();
  const auto now = static_cast<double>(std::time(nullptr));
  CHECK((start <= now + 1 && start > now - 600 && for__process_start_time() == start));
  const double before = for_since_epoch_t(&start);
  const auto seconds_before = static_cast<double>(std::time(nullptr));
  Sleep(50);
  const double after = for_since_epoch_t(&start);
  CHECK((before >= 0 && after - before >= 0.045));
  CHECK((start + before < seconds_before + 1.5 && start + before > seconds_before - 1.5));
}

TEST_CASE("seconds since midnight, less a start") {
  const float zero = 0;
  const std::time_t now = std::time(nullptr);
  const std::tm *local = std::localtime(&now);
  const auto expected = static_cast<float>(local->tm_hour * 3600 + local->tm_min * 60 + local->tm_sec);
  const float seconds = for_secnds_t(&zero);
  const bool passed_midnight = seconds < expected;
  CHECK((passed_midnight || seconds - expected < 60));
  CHECK(for_secnds_t(&seconds) < 60);
}
