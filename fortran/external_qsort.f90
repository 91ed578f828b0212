! SPDX-License-Identifier: MIT
! QSORT for programs without the module, as the procedures in external_procedures.f90; alone in its object file
! because many a program has a QSORT of its own.

subroutine qsort(array, count, element_size, compare)
  use qwport_sorting, only: qsort_ii
  implicit none
  type(*), intent(inout) :: array(*)
  integer(4), intent(in) :: count, element_size
  integer(2), external :: compare

  call qsort_ii(array, count, element_size, compare)
end subroutine qsort
