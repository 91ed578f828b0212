// SPDX-License-Identifier: MIT
// The texts of math-library errors.
#include <algorithm>
#include <cstdio>
#include <iterator>

#include "qwport.h"
#include "text.h"

namespace {

constexpr const char *error_texts[] = {
    "Unknown error",
    "Domain error",
    "Singularity error",
    "Overflow error",
    "Underflow error",
    "Total loss of precision",
    "Partial loss of precision",
};

}  // namespace

void MATHERRQQ(const char *name, const int16_t *nameLength, int32_t *info, int16_t *retcode) {
  const HeapText routine = portlib_own_text(name, static_cast<size_t>(std::max<int16_t>(*nameLength, 0)));
  *retcode = 0;
  if (*info < 1 || *info >= static_cast<int32_t>(std::size(error_texts))) *info = 0;
  if (routine == nullptr) return;
  const char *const parts[] = {routine.get(), ": ", error_texts[*info], "\n"};
  for (const char *part : parts) std::fputs(part, stdout);
  std::fflush(stdout);
}
