// SPDX-License-Identifier: MIT
// Comparing INTEGER(4) values as numbers without a sign.
#include "qwport.h"

void PXFUCOMPARE(const int32_t *i1, const int32_t *i2, int32_t *icmpr, int32_t *idiff) {
  const auto left = static_cast<uint32_t>(*i1);
  const auto right = static_cast<uint32_t>(*i2);
  *icmpr = static_cast<int32_t>(left > right) - static_cast<int32_t>(left < right);
  // The absolute value of the signed difference, not of the unsigned one; this is meant.
  const auto difference = static_cast<int32_t>(left - right);
  *idiff = difference < 0 ? static_cast<int32_t>(0U - static_cast<uint32_t>(difference)) : difference;
}
