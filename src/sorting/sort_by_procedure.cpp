// SPDX-License-Identifier: MIT
// Sorting with the caller's comparison, by the C run-time's qsort.
#include <cstdlib>

#include "lock.h"
#include "qwport.h"

namespace {

using Compare = int16_t (*)(const void *left, const void *right);

// The comparison of the sort in progress. One that sorts in its turn replaces it for the outer sort too;
// this is meant.
Compare current_compare;

// Only the low 16 bits of the result count, as in an INTEGER(2) function.
int call_compare(const void *left, const void *right) { return current_compare(left, right); }

// Sorts of several threads run one after another.
void sort_by_procedure(void *array, int64_t count, int64_t element_size, Compare compare) {
  static PortlibLock lock;
  if (count < 1 || element_size < 1) return;
  const LockGuard guard(lock);
  current_compare = compare;
  std::qsort(array, static_cast<size_t>(count), static_cast<size_t>(element_size), call_compare);
}

}  // namespace

void QSORT(void *array, const int64_t *count, const int64_t *elementSize, Compare compare) {
  sort_by_procedure(array, *count, *elementSize, compare);
}

void QSORT_II(void *array, const int32_t *count, const int32_t *elementSize, Compare compare) {
  sort_by_procedure(array, *count, *elementSize, compare);
}

void QSORT_IL(void *array, const int32_t *count, const int64_t *elementSize, Compare compare) {
  sort_by_procedure(array, *count, *elementSize, compare);
}
