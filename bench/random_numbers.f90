! SPDX-License-Identifier: MIT
! RAN against the C++ standard library's minstd_rand behind the same kind of call, and against GNU Fortran's
! intrinsic RAN.
module generators
  use qwport, only: library_ran => ran
  implicit none
  interface
    function standard_ran(state) bind(C)
      use, intrinsic :: iso_c_binding, only: c_float, c_int64_t
      integer(c_int64_t), intent(inout) :: state
      real(c_float) :: standard_ran
    end function standard_ran
  end interface
contains
  real function sum_of_library(count) result(total)
    integer, intent(in) :: count
    integer :: i, seed

    seed = 12345
    total = 0
    do i = 1, count
      total = total + library_ran(seed)
    end do
  end function sum_of_library

  real function sum_of_standard(count) result(total)
    integer, intent(in) :: count
    integer :: i
    integer(8) :: state

    state = 12345
    total = 0
    do i = 1, count
      total = total + standard_ran(state)
    end do
  end function sum_of_standard

  real function sum_of_intrinsic(count) result(total)
    integer, intent(in) :: count
    intrinsic :: ran
    integer :: i

    total = 0
    do i = 1, count
      total = total + ran(0)
    end do
  end function sum_of_intrinsic
end module generators

program random_numbers
  use generators
  use timing
  implicit none
  integer, parameter :: rounds = 101, count = 200000
  real(8), dimension(rounds) :: library, standard, intrinsic
  real(8) :: start
  real :: total
  integer :: i

  total = 0
  do i = 1, rounds
    start = now()
    total = total + sum_of_library(count)
    library(i) = now() - start
    start = now()
    total = total + sum_of_standard(count)
    standard(i) = now() - start
    start = now()
    total = total + sum_of_intrinsic(count)
    intrinsic(i) = now() - start
  end do
  if (total < 0) error stop 'sums'

  call print_head('a number', 'library', 'other')
  call report('RAN, std::minstd_rand', library, standard, count, 0.6d0)
  call report('RAN, intrinsic RAN', library, intrinsic, count, 0.2d0)
end program random_numbers
