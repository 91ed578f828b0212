! SPDX-License-Identifier: MIT
! Units for the C++ tests of the core runtime, by Fortran's own statements.

! Opens an old file for reading, or a new one for reading and writing.
subroutine test_open(unit, for_reading, name)
  implicit none
  integer, intent(in) :: unit, for_reading
  character(len=*), intent(in) :: name
  if (for_reading /= 0) open (unit, file=name, status='old', action='read')
  if (for_reading == 0) open (unit, file=name, status='replace', action='readwrite')
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

! The line's length, or GNU Fortran's IOSTAT if that is not 0.
integer function test_read_line(unit, line)
  implicit none
  integer, intent(in) :: unit
  character(len=*), intent(out) :: line
  read (unit, '(a)', iostat=test_read_line) line
  if (test_read_line == 0) test_read_line = len_trim(line)
end function test_read_line

! A unit opened with NEWUNIT on a file of this name.
integer function test_open_newunit(name)
  implicit none
  character(len=*), intent(in) :: name
  open (newunit=test_open_newunit, file=name, status='replace')
end function test_open_newunit

! WRITE of a function's value to a unit, and WRITE to an internal file.
subroutine test_write_value(unit, value)
  implicit none
  integer, intent(in) :: unit
  interface
    integer function value()
    end function value
  end interface
  write (unit, '(i0)') value()
end subroutine test_write_value

subroutine test_write_internal()
  implicit none
  character(len=20) :: text
  write (text, '(i0)') 1
end subroutine test_write_internal
