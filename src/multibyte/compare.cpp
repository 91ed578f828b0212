// SPDX-License-Identifier: MIT
// Comparison of texts by the user's default locale.
#include "multibyte.h"
#include "qwport.h"

using namespace qwport::multibyte;

namespace {

// The orders for which a relation holds, as bits of the host's answers; its failure, 0, is none of them.
constexpr unsigned less = 1U << CSTR_LESS_THAN;
constexpr unsigned equal = 1U << CSTR_EQUAL;
constexpr unsigned greater = 1U << CSTR_GREATER_THAN;

int32_t holds(unsigned orders, const char *string1, const char *string2, const int32_t *flags, size_t string1_len,
              size_t string2_len) {
  if (string1_len == 0 && string2_len == 0) return (orders & equal) != 0 ? 1 : 0;
  const auto length1 = static_cast<int>(text_length(string1_len));
  const auto length2 = static_cast<int>(text_length(string2_len));
  if (length1 < 1 || length2 < 1) return 0;
  const DWORD host_flags = flags == nullptr ? 0 : static_cast<DWORD>(*flags);
  const int order = CompareStringA(GetUserDefaultLCID(), host_flags, string1, length1, string2, length2);
  return (orders >> order & 1U) != 0 ? 1 : 0;
}

}  // namespace

int32_t MBLGE(const char *string1, const char *string2, const int32_t *flags, size_t string1_len, size_t string2_len) {
  return holds(greater | equal, string1, string2, flags, string1_len, string2_len);
}

int32_t MBLGT(const char *string1, const char *string2, const int32_t *flags, size_t string1_len, size_t string2_len) {
  return holds(greater, string1, string2, flags, string1_len, string2_len);
}

int32_t MBLLE(const char *string1, const char *string2, const int32_t *flags, size_t string1_len, size_t string2_len) {
  return holds(less | equal, string1, string2, flags, string1_len, string2_len);
}

int32_t MBLLT(const char *string1, const char *string2, const int32_t *flags, size_t string1_len, size_t string2_len) {
  return holds(less, string1, string2, flags, string1_len, string2_len);
}

int32_t MBLEQ(const char *string1, const char *string2, const int32_t *flags, size_t string1_len, size_t string2_len) {
  return holds(equal, string1, string2, flags, string1_len, string2_len);
}

int32_t MBLNE(const char *string1, const char *string2, const int32_t *flags, size_t string1_len, size_t string2_len) {
  return holds(less | greater, string1, string2, flags, string1_len, string2_len);
}
