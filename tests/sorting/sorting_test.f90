! SPDX-License-Identifier: MIT
! Sorting and searching as a Fortran program meets them, with counts and sizes of both kinds.
program sorting_test
  use check
  use qwport
  implicit none
  real(16) :: quadruples(4) = [2.0_16**16000, -1.0_16, 1.0_16/3, -2.0_16**16000]
  character(len=5) :: words(4) = ['pear ', 'apple', 'fig  ', 'Plum ']
  integer(4) :: numbers(6) = [4, 1, 6, 3, 5, 2]
  integer :: four = 4

  call sortqq(loc(quadruples), four, sort_real16)
  call expect('quadruples', all(quadruples(1:3) < quadruples(2:4)))
  call sortqq(loc(words), four, len(words))
  call expect('words', words(1)//words(2)//words(3)//words(4), 'Plum applefig  pear ')

  call qsort(numbers(3), 4_8, 4, descending)
  call expect('from an element on', numbers, [4, 1, 6, 5, 3, 2])
  call qsort(numbers, 5, 4, descending)
  call expect('but for the last', numbers, [6, 5, 4, 3, 1, 2])
  call qsort(numbers, 6_8, 4_8, descending)
  call expect('descending', numbers, [6, 5, 4, 3, 2, 1])
  call qsort(words, size(words), sizeof(words(1)), by_second_letter)
  call expect('words', words(1)//words(2)//words(3)//words(4), 'pear fig  Plum apple')
  call finish()

contains

  integer(2) function descending(left, right)
    integer(4), intent(in) :: left, right

    descending = int(right - left, 2)
  end function descending

  ! The words come without their lengths.
  integer(2) function by_second_letter(left, right)
    character(len=1), intent(in) :: left(5), right(5)

    by_second_letter = int(ichar(left(2)) - ichar(right(2)), 2)
  end function by_second_letter

end program sorting_test
