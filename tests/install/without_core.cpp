// SPDX-License-Identifier: MIT
// Calls without_core.f90, which a compiler without a core runtime has compiled. The entries of LLVM's Fortran run-time
// that the module's wrappers for arrays refer to end the program: nothing called here needs them, and packages of that
// run-time for Windows are not found beside a cross compiler.
#include <cstdio>
#include <cstdlib>

#define ABSENT(entry) \
  extern "C" void entry() { std::abort(); }
ABSENT(_FortranAAllocatableAllocate)
ABSENT(_FortranAAllocatableSetBounds)
ABSENT(_FortranAAssign)
ABSENT(_FortranACopyInAssign)
ABSENT(_FortranACopyOutAssign)
ABSENT(_FortranAIsContiguous)
ABSENT(_FortranAPointerDeallocate)

extern "C" int first_failure();

int main() {
  const int failure = first_failure();
  if (failure == 0) std::puts("qwport");
  return failure;
}
