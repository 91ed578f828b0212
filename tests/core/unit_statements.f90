! SPDX-License-Identifier: MIT
! Units for the C++ tests of the core runtime, by Fortran's own statements.

! Opens an old file for reading, or a new one for reading and writing; a negative unit gets a number by NEWUNIT.
subroutine test_open(unit, for_reading, name)
  implicit none
  integer, intent(inout) :: unit
  integer, intent(in) :: for_reading
  character(len=*), intent(in) :: name
  if (unit < 0) then
    open (newunit=unit, file=name, status='replace')
  else if (for_reading /= 0) then
    open (unit, file=name, status='old', action='read')
  else
    open (unit, file=name, status='replace')
  end if
end subroutine test_open

subroutine test_close(unit)
  implicit none
  integer, intent(in) :: unit
  close (unit)
end subroutine test_close

subroutine test_write_line(unit, line)
  implicit none
  integer, intent(in) :: unit
  character(len=*), intent(in) :: line
  write (unit, '(a)') line
end subroutine test_write_line

! The next line, or "iostat" and its number by an internal file, padded with blanks.
subroutine test_read_line(unit, line)
  implicit none
  integer, intent(in) :: unit
  character(len=*), intent(out) :: line
  integer :: status
  read (unit, '(a)', iostat=status) line
  if (status /= 0) write (line, '(a,i0)') 'iostat', status
end subroutine test_read_line
