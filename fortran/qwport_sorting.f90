! SPDX-License-Identifier: MIT
! Sorting and searching arrays.
module qwport_sorting
  use, intrinsic :: iso_c_binding, only: c_funloc, c_funptr, c_int32_t, c_int64_t
  implicit none
  public
  private :: c_funloc, c_funptr, c_int32_t, c_int64_t
  private :: bsearchqq_i4, bsearchqq_i8, qsort_i8, qsort_li, sortqq_i4, sortqq_i8

  ! Element types of SORTQQ and BSEARCHQQ. A number from 1 to 32766 is the length of CHARACTER elements.
  integer(4), parameter :: sort_real4 = int(z'10000')
  integer(4), parameter :: sort_real8 = int(z'20000')
  integer(4), parameter :: sort_int1 = int(z'30000')
  integer(4), parameter :: sort_int2 = int(z'40000')
  integer(4), parameter :: sort_int4 = int(z'50000')
  integer(4), parameter :: sort_int8 = int(z'60000')
  integer(4), parameter :: sort_real16 = int(z'80000')

  ! Sorts an array in ascending order: call sortqq(loc(a), count, sort_real8). array_address: INTEGER(8). count:
  ! INTEGER(8) or INTEGER(4), the number of elements, 1 or more; becomes 0 after a failure, reported (22, or 12
  ! for no memory for one long string), the array then being as it was. size: an element type, INTEGER(4).
  interface sortqq
    procedure sortqq_i4, sortqq_i8
  end interface sortqq

  ! Searches an array that SORTQQ sorted: i = bsearchqq(loc(key), loc(a), size(a), sort_real8). length: INTEGER(8)
  ! or INTEGER(4). Result: the index, from 1, of an element equal to the key, or 0; 22 is reported for a length
  ! or type that is not valid.
  interface bsearchqq
    function bsearchqq_i8(key_address, array_address, length, size) result(index) bind(C, name='BSEARCHQQ')
      import :: c_int32_t, c_int64_t
      integer(c_int64_t), intent(in), target :: key_address
      integer(c_int64_t), intent(in), target :: array_address
      integer(c_int64_t), intent(in) :: length
      integer(c_int32_t), intent(in) :: size
      integer(c_int32_t) :: index
    end function bsearchqq_i8
    procedure bsearchqq_i4
  end interface bsearchqq

  interface

    ! Sort an array of any type by a comparison of the program's own. element_size: bytes an element. compare: an
    ! INTEGER(2) function of two elements, negative if the first comes first, 0 if it does not matter, else positive.
    subroutine qsort_ii(array, count, element_size, compare)
      !GCC$ ATTRIBUTES NO_ARG_CHECK :: array
      type(*), intent(inout) :: array(*)
      integer(4), intent(in) :: count
      integer(4), intent(in) :: element_size
      integer(2), external :: compare
    end subroutine qsort_ii

    subroutine qsort_il(array, count, element_size, compare)
      !GCC$ ATTRIBUTES NO_ARG_CHECK :: array
      type(*), intent(inout) :: array(*)
      integer(4), intent(in) :: count
      integer(8), intent(in) :: element_size
      integer(2), external :: compare
    end subroutine qsort_il

  end interface

  ! Sorts an array of any type as QSORT_II does, with any mixture of kinds.
  interface qsort
    procedure qsort_i8, qsort_ii, qsort_il, qsort_li
  end interface qsort

contains

  ! The names sortqq_, bsearchqq_ and qsort_ are those of procedures for programs without the module.

  subroutine sortqq_i8(array_address, count, size)
    integer(8), intent(in), target :: array_address
    integer(8), intent(inout) :: count
    integer(4), intent(in) :: size
    interface
      subroutine sortqq_export(array_address, count, size) bind(C, name='SORTQQ')
        import :: c_int32_t, c_int64_t
        integer(c_int64_t), intent(in), target :: array_address
        integer(c_int64_t), intent(inout) :: count
        integer(c_int32_t), intent(in) :: size
      end subroutine sortqq_export
    end interface

    call sortqq_export(array_address, count, size)
  end subroutine sortqq_i8

  subroutine qsort_i8(array, count, element_size, compare)
    !GCC$ ATTRIBUTES NO_ARG_CHECK :: array
    type(*), intent(inout) :: array(*)
    integer(8), intent(in) :: count
    integer(8), intent(in) :: element_size
    integer(2), external :: compare
    interface
      subroutine qsort_export(array, count, element_size, compare) bind(C, name='QSORT')
        import :: c_funptr, c_int64_t
        type(*), intent(inout) :: array(*)
        integer(c_int64_t), intent(in) :: count
        integer(c_int64_t), intent(in) :: element_size
        type(c_funptr), value :: compare
      end subroutine qsort_export
    end interface

    call qsort_export(array, count, element_size, c_funloc(compare))
  end subroutine qsort_i8

  subroutine qsort_li(array, count, element_size, compare)
    !GCC$ ATTRIBUTES NO_ARG_CHECK :: array
    type(*), intent(inout) :: array(*)
    integer(8), intent(in) :: count
    integer(4), intent(in) :: element_size
    integer(2), external :: compare

    call qsort(array, count, int(element_size, 8), compare)
  end subroutine qsort_li

  subroutine sortqq_i4(array_address, count, size)
    integer(8), intent(in), target :: array_address
    integer(4), intent(inout) :: count
    integer(4), intent(in) :: size
    integer(8) :: long_count

    long_count = count
    call sortqq(array_address, long_count, size)
    count = int(long_count, 4)
  end subroutine sortqq_i4

  function bsearchqq_i4(key_address, array_address, length, size) result(index)
    integer(8), intent(in), target :: key_address
    integer(8), intent(in), target :: array_address
    integer(4), intent(in) :: length
    integer(4), intent(in) :: size
    integer(4) :: index

    index = bsearchqq(key_address, array_address, int(length, 8), size)
  end function bsearchqq_i4

end module qwport_sorting
