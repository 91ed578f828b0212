! Sorts numbers and finds one; sorts names by their length.
program sorting
  use qwport
  implicit none
  real(8) :: values(5) = [2.5d0, -1d0, 1d9, 0d0, 7d0], wanted = 7d0
  character(len=6) :: names(4) = [character(len=6) :: 'pear', 'fig', 'banana', 'apple']
  integer :: count = size(values)

  call sortqq(loc(values), count, sort_real8)
  print '(5f14.1)', values
  print '(a,i0)', 'found at ', bsearchqq(loc(wanted), loc(values), count, sort_real8)

  call qsort(names, size(names), len(names), by_length)
  print '(4(a,1x))', names
contains
  integer(2) function by_length(left, right)
    character(len=1), intent(in) :: left(6), right(6)

    by_length = int(count_letters(left) - count_letters(right), 2)
  end function by_length

  integer function count_letters(text)
    character(len=1), intent(in) :: text(:)

    count_letters = findloc(text /= ' ', .true., dim=1, back=.true.)
  end function count_letters
end program sorting
