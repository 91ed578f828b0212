// SPDX-License-Identifier: MIT
// The time of day, the processor time of the process, and comparing counts that start again at 0.
#include <cmath>
#include <ctime>

#include "file_time.h"
#include "handles.h"
#include "qwport.h"

using namespace qwport::posix;

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
  // Times before 1970 are known to some C run-times alone.
  if (*isecnds < 0) return fail(ierror, EINVAL);
  const __time64_t seconds = *isecnds;
  const std::tm *local = _localtime64(&seconds);
  if (local == nullptr) return fail_by_errno(ierror);
  const int32_t elements[] = {local->tm_sec,  local->tm_min,      local->tm_hour,
                              local->tm_mday, local->tm_mon + 1,  local->tm_year + 1900,
                              local->tm_wday, local->tm_yday + 1, local->tm_isdst};
  for (const int32_t element : elements) *iatime++ = element;
  *ierror = 0;
}

void PXFTIMES(const int32_t *jhandle, int32_t *itime, int32_t *ierror) {
  auto *record = record_of<TmsRecord>(*jhandle, ierror);
  if (record == nullptr) return;
  FILETIME creation, exit, kernel, user;
  if (!GetProcessTimes(GetCurrentProcess(), &creation, &exit, &kernel, &user)) return fail_by_host(ierror);
  record->tms_utime = milliseconds(user);
  record->tms_stime = milliseconds(kernel);
  record->tms_cutime = 0;
  record->tms_cstime = 0;
  *itime = static_cast<int32_t>(GetTickCount());
  *ierror = 0;
}

void PXFUCOMPARE(const int32_t *i1, const int32_t *i2, int32_t *icmpr, int32_t *idiff) {
  const auto left = static_cast<uint32_t>(*i1);
  const auto right = static_cast<uint32_t>(*i2);
  *icmpr = static_cast<int32_t>(left > right) - static_cast<int32_t>(left < right);
  // The absolute value of the signed difference, not of the unsigned one; this is meant.
  const auto difference = static_cast<int32_t>(left - right);
  *idiff = difference < 0 ? static_cast<int32_t>(0U - static_cast<uint32_t>(difference)) : difference;
}
