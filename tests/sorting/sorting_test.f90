! SPDX-License-Identifier: MIT
! Sorting and searching as a Fortran program meets them.
program sorting_test
  use check
  use qwport
  implicit none

  call test_sortqq()
  call test_qsort()
  call finish()

contains

  subroutine test_sortqq()
    real(8) :: reals(5) = [3d0, -1d0, 2.5d0, 0d0, 1d300]
    real(16) :: quadruples(4) = [2.0_16**16000, -1.0_16, 1.0_16/3, -2.0_16**16000]
    character(len=5) :: words(4) = ['pear ', 'apple', 'fig  ', 'Plum ']
    real(8) :: key = 2.5d0, other_key = 2d0
    integer(8) :: count = 5
    integer :: counts(2) = [size(quadruples), size(words)]

    call sortqq(loc(reals), count, sort_real8)
    call expect('reals', all(reals == [-1d0, 0d0, 2.5d0, 3d0, 1d300]))
    call expect('bsearchqq', [bsearchqq(loc(key), loc(reals), count, sort_real8), &
                              bsearchqq(loc(other_key), loc(reals), 5, sort_real8)], [3, 0])
    call sortqq(loc(quadruples), counts(1), sort_real16)
    call expect('quadruples', all(quadruples(1:3) < quadruples(2:4)))
    call sortqq(loc(words), counts(2), len(words))
    call expect('words', words(1)//words(2)//words(3)//words(4), 'Plum applefig  pear ')
  end subroutine test_sortqq

  subroutine test_qsort()
    integer(4) :: numbers(6) = [4, 1, 6, 3, 5, 2]
    character(len=3) :: words(3) = ['two', 'one', 'six']

    call qsort(numbers, 6, 4, descending)
    call expect('descending', numbers, [6, 5, 4, 3, 2, 1])
    numbers = [4, 1, 6, 3, 5, 2]
    call qsort(numbers(3), 4_8, 4, descending)
    call expect('from an element on', all(numbers == [4, 1, 6, 5, 3, 2]))
    call qsort(words, size(words), sizeof(words(1)), by_last_letter)
    call expect('words', words(1)//words(2)//words(3), 'onetwosix')
  end subroutine test_qsort

  integer(2) function descending(left, right)
    integer(4), intent(in) :: left, right

    descending = int(right - left, 2)
  end function descending

  ! The words come without their lengths.
  integer(2) function by_last_letter(left, right)
    character(len=1), intent(in) :: left(3), right(3)

    by_last_letter = int(ichar(left(3)) - ichar(right(3)), 2)
  end function by_last_letter

end program sorting_test
