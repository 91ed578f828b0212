! SPDX-License-Identifier: MIT
! Checks for the Fortran tests: each failed one is printed, and the program's status counts them.
module check
  implicit none
  private
  public :: expect, finish

  interface expect
    module procedure expect_true, expect_integer, expect_integers, expect_text
  end interface expect

  integer :: checks = 0
  integer :: failures = 0

contains

  subroutine expect_true(what, condition)
    character(len=*), intent(in) :: what
    logical, intent(in) :: condition

    checks = checks + 1
    if (condition) return
    failures = failures + 1
    print '(2a)', 'failed: ', what
  end subroutine expect_true

  subroutine expect_integer(what, actual, expected)
    character(len=*), intent(in) :: what
    integer, intent(in) :: actual, expected

    call expect_integers(what, [actual], [expected])
  end subroutine expect_integer

  subroutine expect_integers(what, actual, expected)
    character(len=*), intent(in) :: what
    integer, intent(in) :: actual(:), expected(:)
    logical :: agree

    agree = size(actual) == size(expected)
    if (agree) agree = all(actual == expected)
    call expect_true(what, agree)
    if (.not. agree) print '(a,*(1x,i0))', '  got, then expected:', actual, expected
  end subroutine expect_integers

  subroutine expect_text(what, actual, expected)
    character(len=*), intent(in) :: what, actual, expected

    call expect_true(what, actual == expected)
    if (actual /= expected) print '(5a)', '  got "', actual, '", expected "', expected, '"'
  end subroutine expect_text

  ! Ends the test; a test without any check has failed.
  subroutine finish()
    print '(2(i0,a))', checks, ' checks, ', failures, ' failed'
    if (failures > 0 .or. checks == 0) error stop 1
  end subroutine finish

end module check
