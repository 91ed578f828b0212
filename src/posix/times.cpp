// SPDX-License-Identifier: MIT
// The time of day and the processor time of the process.
#include <cmath>
#include <ctime>

#include "file_time.h"
#include "posix.h"
#include "qwport.h"

namespace {

// In single precision, which loses milliseconds after some hours; this is meant.
int64_t milliseconds(const FILETIME &duration) {
  constexpr float milliseconds_per_tick = 0.0001F;
  return static_cast<int64_t>(std::ceil(static_cast<float>(portlib_ticks(duration)) * milliseconds_per_tick));
}

}  // namespace

void PXFTIME(int32_t *itime, int32_t *ierror) {
  if (itime != nullptr) *itime = static_cast<int32_t>(std::time(nullptr));
  *ierror = itime != nullptr ? 0 : -1;
}

void PXFLOCALTIME(const int32_t *isecnds, int32_t *iatime, int32_t *ierror) {
  const __time64_t seconds = *isecnds;
  const std::tm *local = _localtime64(&seconds);
  if (local == nullptr) return pxf_settle(ierror, false);
  const int32_t elements[] = {local->tm_sec,  local->tm_min,      local->tm_hour,
                              local->tm_mday, local->tm_mon + 1,  local->tm_year + 1900,
                              local->tm_wday, local->tm_yday + 1, local->tm_isdst};
  for (const int32_t element : elements) *iatime++ = element;
  *ierror = 0;
}

void PXFTIMES(const int32_t *jhandle, int32_t *itime, int32_t *ierror) {
  auto *record = pxf_record<TmsRecord>(*jhandle, ierror);
  if (record == nullptr) return;
  FILETIME creation, exit, kernel, user;
  if (!GetProcessTimes(GetCurrentProcess(), &creation, &exit, &kernel, &user)) return pxf_fail_by_host(ierror);
  record->tms_utime = milliseconds(user);
  record->tms_stime = milliseconds(kernel);
  record->tms_cutime = 0;
  record->tms_cstime = 0;
  *itime = static_cast<int32_t>(GetTickCount());
  *ierror = 0;
}
