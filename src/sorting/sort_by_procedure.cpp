// SPDX-License-Identifier: MIT
// Sorting with the caller's comparison, by the C run-time's qsort.
#include <cstdlib>

#include "lock.h"
#include "qwport.h"

namespace {

using Compare = int16_t (*)(const void *left, const void *right);

// The comparison of the sort in progress. One that sorts in its turn, be it nothing, replaces it for the outer
// sort too; this is meant.
Compare current_compare;

// Only the low 16 bits of the result count, as in an INTEGER(2) function.
int call_compare(const void *left, const void *right) { return current_compare(left, right); }

// Held for a whole sort, so that those of several threads run one after another.
PortlibLock sort_lock;

}  // namespace

extern "C" {
// Called where a comparison leaves the sort for good, by longjmp or by an exception.
void portlib_release_sort_lock();
__attribute__((used)) void portlib_release_sort_lock() { portlib_release_lock(sort_lock); }
}

namespace {

// A longjmp runs no destructor, but the host's termination handlers (__finally), which GCC can only write so:
// a table of one scope, whose handler has no place to go on at. The nop keeps the call's return in the scope. This
// must stay free of objects with destructors: a function has one handler.
// NOLINTNEXTLINE(clang-diagnostic-unknown-attributes): clang has no noclone and makes no clones
__attribute__((noinline, noclone)) void sort_and_release(void *array, size_t count, size_t element_size) {
  __asm__ volatile(
      ".seh_handler __C_specific_handler, @unwind\n\t"
      ".seh_handlerdata\n\t"
      ".long 1\n\t"
      ".rva .Lsort_begin, .Lsort_end, portlib_release_sort_lock\n\t"
      ".long 0\n\t"
      ".text\n"
      ".Lsort_begin:" ::
          : "memory");
  std::qsort(array, count, element_size, call_compare);
  __asm__ volatile("nop\n.Lsort_end:" ::: "memory");
  portlib_release_sort_lock();
}

void sort_by_procedure(void *array, int64_t count, int64_t element_size, Compare compare) {
  portlib_take_lock(sort_lock);
  current_compare = compare;
  const bool is_array = count > 0 && element_size > 0 && count <= INT64_MAX / element_size;
  if (!is_array) return portlib_release_sort_lock();
  sort_and_release(array, static_cast<size_t>(count), static_cast<size_t>(element_size));
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
