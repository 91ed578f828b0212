// SPDX-License-Identifier: MIT
// Sorting arrays of numbers and of byte strings.
//
// What a sort leaves in the array is what a Shell sort with the gaps 1, 4, 13, 40, ... leaves. Where elements
// that compare equal are the same bits every sort leaves that; only reals have others: NaNs and zeros of both
// signs.
#include <cerrno>

#include "element_sorts.h"
#include "errors.h"
#include "qwport.h"

namespace {

using namespace qwport::sorting;

int32_t sort_elements(void *array, int64_t count, int32_t code) {
  const ElementType type = element_type(code);
  if (!is_array(array, count, code)) return EINVAL;
  const auto elements = static_cast<size_t>(count);
  if (type == ElementType::bytes) {
    return sort_strings(static_cast<unsigned char *>(array), elements, static_cast<size_t>(code)) ? 0 : ENOMEM;
  }
  sort_numbers(array, elements, type);
  return 0;
}

}  // namespace

void SORTQQ(const int64_t *arrayAddress, int64_t *count, const int32_t *size) {
  const int32_t error = sort_elements(reinterpret_cast<void *>(*arrayAddress), *count, *size);
  if (error == 0) return;
  *count = 0;
  portlib_report_errno(error);
}
