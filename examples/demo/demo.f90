! The demo: an inventory of a directory tree, a text file copied through Fortran units, and what a failing
! call leaves behind. Usage: demo DIRECTORY SOURCE COPY
program demo
  use inventory
  use qwport
  use unit_copy
  implicit none

  character(len=260) :: directory, source_name, copy_name
  real(8) :: start

  call get_command_argument(1, directory)
  call get_command_argument(2, source_name)
  call get_command_argument(3, copy_name)
  if (copy_name == ' ') then
    print '(a)', 'usage: demo DIRECTORY SOURCE COPY'
    call exit(2)
  end if

  start = timef()
  call show_head()
  call print_inventory(trim(directory), largest=8)
  call copy_and_compare(trim(source_name), trim(copy_name))
  call show_failure()
  print '(a,f5.3,a)', 'Done in ', timef() - start, ' seconds.'

contains

  ! The library's version, and now in several forms.
  subroutine show_head()
    character(len=80) :: text
    character(len=24) :: long_date
    character(len=9) :: short_date
    character(len=7) :: day_of_year
    character(len=64) :: user, machine
    integer :: tab, status

    status = for_qwport_version(text)
    do
      tab = index(text, achar(9))
      if (tab == 0) exit
      text = text(:tab - 1)//', '//text(tab + 1:)
    end do
    print '(a)', trim(text)

    call fdate(long_date)
    call date(short_date)
    call jdate4(day_of_year)
    print '(8a,i0,a)', long_date, ' | ', short_date, ' ', clock(), ' | ', day_of_year, ' | ', time(), ' s since 1970'

    call getlog(user)
    if (hostnm(machine) == 1) machine = 'a machine without a name'
    print '(5a,i0)', 'Run by ', trim(user), ' on ', trim(machine), ' as process ', getpid()
  end subroutine show_head

  subroutine show_failure()
    integer, parameter :: closed_unit = 77
    character :: c
    integer :: status, system

    status = fgetc(closed_unit, c)
    call errsns(system=system)
    print '(4(a,i0))', 'Reading unit ', closed_unit, ', which is not open: result ', status, &
      ', IERRNO ', ierrno(), ', ERRSNS ', system
  end subroutine show_failure

end program demo
