// SPDX-License-Identifier: MIT
// What happens when the core runtime or the host meets an error.
#include <windows.h>

#include "core_entries.h"
#include "qwport.h"

int32_t ESTABLISHQQ(intptr_t handler, intptr_t context, intptr_t *previous_handler, intptr_t *previous_context) {
  return core::for__establish_user_error_handler(handler, context, previous_handler, previous_context) != 0 ? 1 : 0;
}

void SETERRORMODEQQ(const int32_t *pflag) {
  constexpr int32_t report_to_user = 1;
  const UINT mode = SetErrorMode(0);  // which also tells it
  SetErrorMode(*pflag == report_to_user ? mode & ~UINT{SEM_FAILCRITICALERRORS} : mode | SEM_FAILCRITICALERRORS);
}
