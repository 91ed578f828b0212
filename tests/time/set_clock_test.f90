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
    ! The SYSTEMTIME that was set last.
    subroutine last_set(fields) bind(C)
      use, intrinsic :: iso_c_binding, only: c_int16_t
      integer(c_int16_t), intent(out) :: fields(8)
    end subroutine last_set
  end interface

  call simulate_clock()
  call expect_set('setdat', setdat(2031, 12, 24), [2031, 12, 6, 24, 1, 2, 3, 4])
  call expect_set('setdat of INTEGER(2)', setdat(2032_2, 11_2, 23_2), [2032, 11, 6, 23, 1, 2, 3, 4])
  call expect_set('settim', settim(23, 59, 58, 50), [2000, 1, 6, 1, 23, 59, 58, 500])
  call expect_set('settimi2', settimi2(22_2, 58_2, 57_2, 49_2), [2000, 1, 6, 1, 22, 58, 57, 490])
  call finish()

contains

  subroutine expect_set(what, done, expected)
    character(len=*), intent(in) :: what
    logical, intent(in) :: done
    integer, intent(in) :: expected(8)
    integer(2) :: fields(8)

    call last_set(fields)
    call expect(what, done .and. all(fields == expected))
  end subroutine expect_set

end program set_clock_test
