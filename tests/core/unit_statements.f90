! SPDX-License-Identifier: MIT
! Units for the C++ tests of the core runtime, by Fortran's own statements.
module test_unit_statements
  use, intrinsic :: iso_c_binding, only: c_char, c_int32_t, c_size_t
  implicit none
  private

contains

  ! Opens an old file for reading, or a new one for reading and writing.
  subroutine open_unit(unit, for_reading, name, length) bind(C, name='test_open')
    integer(c_int32_t), value :: unit, for_reading
    integer(c_size_t), value :: length
    character(kind=c_char), intent(in) :: name(length)
    if (for_reading /= 0) open (unit, file=text_of(name), status='old', action='read')
    if (for_reading == 0) open (unit, file=text_of(name), status='replace', action='readwrite')
  end subroutine open_unit

  subroutine close_unit(unit) bind(C, name='test_close')
    integer(c_int32_t), value :: unit
    close (unit)
  end subroutine close_unit

  subroutine write_line(unit, line, length) bind(C, name='test_write_line')
    integer(c_int32_t), value :: unit
    integer(c_size_t), value :: length
    character(kind=c_char), intent(in) :: line(length)
    write (unit, '(a)') text_of(line)
  end subroutine write_line

  ! The line's length, or GNU Fortran's IOSTAT if that is not 0.
  function read_line(unit, line, length) result(stored) bind(C, name='test_read_line')
    integer(c_int32_t), value :: unit
    integer(c_size_t), value :: length
    character(kind=c_char), intent(out) :: line(length)
    integer(c_int32_t) :: stored
    character(len=length) :: text
    integer :: i

    read (unit, '(a)', iostat=stored) text
    if (stored /= 0) return
    stored = len_trim(text)
    do i = 1, stored
      line(i) = text(i:i)
    end do
  end function read_line

  function text_of(characters) result(text)
    character(kind=c_char), intent(in) :: characters(:)
    character(len=size(characters)) :: text
    integer :: i

    do i = 1, size(characters)
      text(i:i) = characters(i)
    end do
  end function text_of

end module test_unit_statements
