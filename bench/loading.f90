! SPDX-License-Identifier: MIT
! The first load of the library in a console program against that of an empty DLL, each in a process of its own.
! Wine looks for a module that is not loaded on the disk, so there most of it is the search for a core runtime: five
! names in all directories of the path. Windows does not look there.
program loading
  use timing
  implicit none
  integer, parameter :: rounds = 15
  real(8), dimension(rounds) :: library, empty
  character(len=1024) :: own_path
  character(len=:), allocatable :: directory
  integer :: i

  call get_command_argument(0, own_path)
  directory = own_path(:scan(own_path, '\/', back=.true.))
  call print_head('a load', 'library', 'an empty DLL')
  do i = 1, rounds
    library(i) = load_time(directory//'..\libqwport.dll')
    empty(i) = load_time(directory//'empty.dll')
  end do
  call report('first load', library, empty, 1, 7.5d0)  ! 1.2 ms to 0.16 ms

contains

  ! In seconds; the program tells tenths of microseconds by its exit status.
  real(8) function load_time(dll)
    character(len=*), intent(in) :: dll
    integer :: status

    call execute_command_line(directory//'loading\time_load.exe '//dll, exitstat=status)
    if (status <= 0) error stop 'no load'
    load_time = status*1d-7
  end function load_time

end program loading
