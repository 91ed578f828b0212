! SPDX-License-Identifier: MIT
! What the benchmarks share: a clock, and medians of alternating rounds.
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

  subroutine print_head(operation, ours, theirs)
    character(len=*), intent(in) :: operation, ours, theirs

    print '(a30,2a15,a8)', 'medians '//operation, ours, theirs, 'ratio'
  end subroutine print_head

  ! Prints the medians of both sides' rounds in nanoseconds an operation, and their ratio.
  subroutine report(what, ours, theirs, operations)
    character(len=*), intent(in) :: what
    real(8), intent(in) :: ours(:), theirs(:)
    integer, intent(in) :: operations
    real(8) :: our_time, their_time

    our_time = median(ours)/operations*1d9
    their_time = median(theirs)/operations*1d9
    print '(a30,2(f12.1,a),f8.2)', what, our_time, ' ns', their_time, ' ns', our_time/their_time
  end subroutine report

  real(8) function median(values)
    real(8), intent(in) :: values(:)
    real(8) :: sorted(size(values)), value
    integer :: i, j

    sorted = values
    do i = 2, size(sorted)
      value = sorted(i)
      do j = i - 1, 1, -1
        if (sorted(j) <= value) exit
        sorted(j + 1) = sorted(j)
      end do
      sorted(j + 1) = value
    end do
    median = sorted((size(sorted) + 1)/2)
  end function median

end module timing
