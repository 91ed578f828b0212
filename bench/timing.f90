! SPDX-License-Identifier: MIT
! What the benchmarks share: a clock, and one row of the table that they print.
!
! A benchmark runs rounds; each times the work with the library and at once, in the same round, with what a
! user would take instead, the anchor. A row tells of the rounds' ratios, library to anchor: the machine's
! other work hits both sides of a round alike.
module timing
  implicit none
  private
  public :: now, print_head, report

contains

  ! Seconds on a clock that only goes forward.
  real(8) function now()
    integer(8) :: count, rate

    call system_clock(count, rate)
    now = real(count, 8)/real(rate, 8)
  end function now

  ! The head of a table. operation: what one time is of, as in 'an element'.
  subroutine print_head(operation, ours, theirs)
    character(len=*), intent(in) :: operation, ours, theirs

    print '(/a36,2a14,a9,3a8)', 'median ns '//operation, ours, theirs, 'minimum', 'median', 'spread', 'goal'
  end subroutine print_head

  ! Prints a row: what the work is; the median time of either side in nanoseconds an operation; of the rounds'
  ! ratios the minimum, the median and half the distance of the quartiles; the goal that the median must not
  ! exceed, and 'over' where it does. ours, theirs: seconds a round; operations: in a round.
  subroutine report(what, ours, theirs, operations, goal)
    character(len=*), intent(in) :: what
    real(8), intent(in) :: ours(:), theirs(:)
    integer, intent(in) :: operations
    real(8), intent(in), optional :: goal
    real(8) :: ratios(size(ours))
    character(len=15) :: aim

    ratios = sorted(ours/theirs)
    aim = ''
    if (present(goal)) write (aim, '(f8.2,a)') goal, trim(merge(' over', '     ', quantile(ratios, 0.5d0) > goal))
    print '(a36,2(f11.1,a),f9.2,2f8.2,a)', what, &
      quantile(sorted(ours), 0.5d0)/operations*1d9, ' ns', quantile(sorted(theirs), 0.5d0)/operations*1d9, ' ns', &
      ratios(1), quantile(ratios, 0.5d0), (quantile(ratios, 0.75d0) - quantile(ratios, 0.25d0))/2, trim(aim)
  end subroutine report

  ! part: 0.5 for the median.
  real(8) function quantile(ascending, part)
    real(8), intent(in) :: ascending(:), part

    quantile = ascending(1 + nint(part*(size(ascending) - 1)))
  end function quantile

  function sorted(values) result(ascending)
    real(8), intent(in) :: values(:)
    real(8) :: ascending(size(values)), value
    integer :: i, j

    ascending = values
    do i = 2, size(ascending)
      value = ascending(i)
      do j = i - 1, 1, -1
        if (ascending(j) <= value) exit
        ascending(j + 1) = ascending(j)
      end do
      ascending(j + 1) = value
    end do
  end function sorted

end module timing
