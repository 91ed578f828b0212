! SPDX-License-Identifier: MIT
! SETDAT, SETTIM and SETTIMI2 from Fortran, on a host whose clock calls are overridden.
program set_clock_test
  use check
  use qwport
  implicit none

  interface
    ! In simulated_clock.cpp: overrides the host's calls, or ends the program.
    subroutine simulate_clock() bind(C)
    end subroutine simulate_clock
    ! The year, month, day, hour, minute, second and millisecond that were set last.
    subroutine last_set(fields) bind(C)
      use, intrinsic :: iso_c_binding, only: c_int32_t
      integer(c_int32_t), intent(out) :: fields(7)
    end subroutine last_set
  end interface

  call simulate_clock()
  call expect('setdat', setdat(2031, 12, 24))
  call expect_set('setdat sets the date', [2031, 12, 24, 1, 2, 3, 4])
  call expect('setdat of INTEGER(2)', setdat(2032_2, 11_2, 23_2))
  call expect_set('the same', [2032, 11, 23, 1, 2, 3, 4])
  call expect('settim', settim(23, 59, 58, 50))
  call expect_set('settim sets the time', [2000, 1, 1, 23, 59, 58, 500])
  call expect('settimi2', settimi2(22_2, 58_2, 57_2, 49_2))
  call expect_set('settimi2 sets the time', [2000, 1, 1, 22, 58, 57, 490])
  call finish()

contains

  subroutine expect_set(what, expected)
    character(len=*), intent(in) :: what
    integer, intent(in) :: expected(7)
    integer :: fields(7)

    call last_set(fields)
    call expect(what, fields, expected)
  end subroutine expect_set

end program set_clock_test
