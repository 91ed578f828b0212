// SPDX-License-Identifier: MIT
// Calls the procedures of without_core.f90, which a compiler without a core runtime has compiled. The entries of
// LLVM's Fortran run-time that the module's wrappers for arrays refer to end the program: nothing called here needs
// them, and packages of that run-time for Windows are not found beside a cross compiler.
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

#define FAMILIES(X) \
  X(files)          \
  X(time_of_day) X(processes) X(sorting) X(numeric) X(random) X(floating_point) X(serial) X(posix) X(multibyte) X(nls)
#define DECLARE(family) extern "C" bool family();
FAMILIES(DECLARE)

int main() {
  struct {
    const char *name;
    bool (*check)();
  } const rows[] = {
#define ROW(family) {#family, family},
      FAMILIES(ROW)};
  int failures = 0;
  for (const auto &row : rows) {
    if (row.check()) continue;
    std::printf("%s failed\n", row.name);
    ++failures;
  }
  if (failures == 0) std::puts("qwport");
  return failures;
}
