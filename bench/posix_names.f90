! SPDX-License-Identifier: MIT
! The time of a look-up by name, of a structure's field and of constants, and of making and finding one of 100,000
! structures, against the time that each may take. The anchor's column holds that time.
program posix_names
  use qwport
  use timing
  implicit none
  integer, parameter :: rounds = 15, calls = 500000, handles = 100000
  real(8), parameter :: name_goal = 25d-9, create_goal = 200d-9, find_goal = 60d-9
  integer :: handle, error

  call pxfstructcreate('stat', handle, error)
  call pxfintset(handle, 'st_size', 4711, error)
  call print_head('a call', 'library', 'allowed')
  call time_field('st_size')
  call time_constant('SIGBREAK', PXF_SIGBREAK)
  call time_constant('EILSEQ', PXF_EILSEQ)
  call time_constant('_PC_CHOWN_RESTRICTED', PXF_PC_CHOWN_RESTRICTED)
  call time_handles()

contains

  subroutine time_field(name)
    character(len=*), intent(in) :: name
    real(8) :: seconds(rounds), start
    integer :: i, j, value, total

    do i = 1, rounds
      total = 0
      start = now()
      do j = 1, calls
        call pxfintget(handle, name, value, error)
        total = ieor(total, value + j)
      end do
      seconds(i) = now() - start
      if (value /= 4711 .or. error /= 0 .or. total < 0) call abort('wrong value')
    end do
    call report('PXFINTGET of '//name, seconds, allowed(name_goal, calls), calls, 1d0)
  end subroutine time_field

  subroutine time_constant(name, expected)
    character(len=*), intent(in) :: name
    integer, intent(in) :: expected
    real(8) :: seconds(rounds), start
    integer :: i, j, value, total

    do i = 1, rounds
      total = 0
      start = now()
      do j = 1, calls
        call pxfconst(name, value, error)
        total = ieor(total, value + j)
      end do
      seconds(i) = now() - start
      if (value /= expected .or. error /= 0 .or. total < 0) call abort('wrong value')
    end do
    call report('PXFCONST of '//name, seconds, allowed(name_goal, calls), calls, 1d0)
  end subroutine time_constant

  ! Finding is timed by reading a field, one of each structure.
  subroutine time_handles()
    integer, allocatable :: made(:)
    real(8) :: creation(rounds), finding(rounds), start
    integer :: i, j, value

    allocate (made(handles))
    do i = 1, rounds
      start = now()
      do j = 1, handles
        call pxfstructcreate('tms', made(j), error)
      end do
      creation(i) = now() - start
      if (error /= 0 .or. any(made(2:) <= made(:handles - 1))) call abort('wrong handles')
      start = now()
      do j = 1, handles
        call pxfintget(made(j), 'tms_utime', value, error)
      end do
      finding(i) = now() - start
      if (value /= 0 .or. error /= 0) call abort('wrong value')
      do j = 1, handles
        call pxfstructfree(made(j), error)
      end do
    end do
    call report('PXFSTRUCTCREATE, 100,000', creation, allowed(create_goal, handles), handles, 1d0)
    call report('PXFINTGET of one of 100,000', finding, allowed(find_goal, handles), handles, 1d0)
  end subroutine time_handles

  function allowed(goal, operations) result(seconds)
    real(8), intent(in) :: goal
    integer, intent(in) :: operations
    real(8) :: seconds(rounds)

    seconds = goal*operations
  end function allowed

end program posix_names
