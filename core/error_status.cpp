// SPDX-License-Identifier: MIT
// The error status of the last failure, the user error handler, and diagnostics.
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "format.h"
#include "lock.h"
#include "qwcore.h"

namespace {

using ErrorStatus = std::array<int32_t, 5>;

PortlibLock error_status_lock;
ErrorStatus error_status{};

struct UserErrorHandler {
  intptr_t procedure;
  intptr_t context;
};

PortlibLock user_error_handler_lock;
UserErrorHandler user_error_handler{};

UserErrorHandler exchange_user_error_handler(const UserErrorHandler *wanted) {
  const LockGuard guard(user_error_handler_lock);
  const UserErrorHandler previous = user_error_handler;
  if (wanted != nullptr) user_error_handler = *wanted;
  return previous;
}

bool offer_to_user(int32_t code, const char *text) {
  const UserErrorHandler handler = exchange_user_error_handler(nullptr);
  if (handler.procedure == 0) return false;
  using Procedure = int32_t (*)(const int32_t *code, const int32_t *continuable, const char *text,
                                const intptr_t *context, size_t text_length);
  constexpr int32_t continuable = 1;
  const auto procedure = reinterpret_cast<Procedure>(handler.procedure);
  return (procedure(&code, &continuable, text, &handler.context, std::strlen(text)) & 1) != 0;
}

}  // namespace

void for_errsns_load(int32_t fortran_error, int32_t system_error, int32_t status, int32_t unit, int32_t condition) {
  const LockGuard guard(error_status_lock);
  error_status = {fortran_error, system_error, status, unit, condition};
}

void ERRSNS(int32_t *fortran_error, int32_t *system_error, int32_t *status, int32_t *unit, int32_t *condition) {
  ErrorStatus last;
  {
    const LockGuard guard(error_status_lock);
    last = error_status;
    error_status = {};
  }
  const std::array<int32_t *, 5> targets = {fortran_error, system_error, status, unit, condition};
  for (size_t i = 0; i < targets.size(); ++i) {
    if (targets[i] != nullptr) *targets[i] = last[i];
  }
}

int32_t for__establish_user_error_handler(intptr_t handler, intptr_t context, intptr_t *previous_handler,
                                          intptr_t *previous_context) {
  const UserErrorHandler wanted{handler, context};
  const UserErrorHandler previous = exchange_user_error_handler(&wanted);
  if (previous_handler != nullptr) *previous_handler = previous.procedure;
  if (previous_context != nullptr) *previous_context = previous.context;
  return 1;
}

void for__issue_diagnostic(int32_t severity, int32_t code, const char *text) {
  constexpr int32_t error = 2;
  const char *const severity_names[] = {"info", "warning", "error"};
  if (severity < 0 || severity > error) severity = error;
  if (severity == error && offer_to_user(code, text)) return;

  char head[48];
  portlib_format(head, sizeof head, "libqwcorert: %s (%d): ", severity_names[severity], code);
  const char *const parts[] = {head, text, "\n"};
  for (const char *part : parts) std::fputs(part, stderr);
  std::fflush(stderr);
}
