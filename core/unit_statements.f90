#line 1 "core/unit_statements.f90"
! SPDX-License-Identifier: MIT
! The unit operations that libgfortran offers through Fortran statements only.
module qwcore_unit_statements
  use, intrinsic :: iso_c_binding, only: c_char, c_int32_t, c_int64_t
  use, intrinsic :: iso_fortran_env, only: iostat_end, iostat_eor
  implicit none
  private

  type, bind(C) :: open_options
    integer(c_int32_t) :: action
    integer(c_int32_t) :: formatted
    integer(c_int32_t) :: blank_zero
    integer(c_int32_t) :: append
  end type open_options

  character(len=9), parameter :: action_names(3) = [character(len=9) :: 'read', 'write', 'readwrite']

contains

  subroutine rewind_unit(unit) bind(C, name='qwcore_rewind')
    integer(c_int32_t), intent(in) :: unit
    integer :: status

    ! Units opened for direct access refuse; they have no end of file to forget.
    rewind (unit, iostat=status)
  end subroutine rewind_unit

  ! libgfortran keeps a position of its own for stream access, which its seek does not touch.
  subroutine set_stream_position(unit, position) bind(C, name='qwcore_set_stream_position')
    integer(c_int32_t), intent(in) :: unit
    integer(c_int64_t), intent(in) :: position
    character(len=11) :: form
    character(len=9) :: access, action
    integer :: status
    logical :: formatted

    inquire (unit=unit, access=access, action=action, form=form, iostat=status)
    if (status /= 0 .or. access /= 'STREAM') return
    formatted = form == 'FORMATTED'
    if (action == 'WRITE') then
      if (formatted) write (unit, '()', pos=position + 1, advance='no', iostat=status)
      if (.not. formatted) write (unit, pos=position + 1, iostat=status)
    else
      if (formatted) read (unit, '()', pos=position + 1, advance='no', iostat=status)
      if (.not. formatted) read (unit, pos=position + 1, iostat=status)
    end if
  end subroutine set_stream_position

  function unit_name(unit, name, name_size) result(length) bind(C, name='qwcore_unit_name')
    integer(c_int32_t), intent(in) :: unit
    integer(c_int32_t), intent(in) :: name_size
    character(kind=c_char), intent(out) :: name(name_size)
    integer(c_int32_t) :: length
    character(len=name_size) :: text
    integer :: i, status

    text = ' '
    inquire (unit=unit, name=text, iostat=status)
    length = merge(len_trim(text), 0, status == 0)
    do i = 1, length
      name(i) = text(i:i)
    end do
  end function unit_name

  function read_character(unit) result(answer) bind(C, name='qwcore_read_character')
    integer(c_int32_t), intent(in) :: unit
    integer(c_int32_t) :: answer
    integer, parameter :: after_end_of_file = 5001
    character :: c
    integer :: status

    read (unit, '(a1)', advance='no', iostat=status) c
    select case (status)
    case (0)
      answer = iachar(c)
    case (iostat_eor)
      answer = -1
    case (iostat_end, after_end_of_file)
      answer = -2
    case default
      answer = -3
    end select
  end function read_character

  function unit_is_formatted(unit) result(formatted) bind(C, name='qwcore_unit_is_formatted')
    integer(c_int32_t), intent(in) :: unit
    integer(c_int32_t) :: formatted
    character(len=11) :: form
    integer :: status

    inquire (unit=unit, form=form, iostat=status)
    formatted = merge(1, 0, status == 0 .and. form == 'FORMATTED')
  end function unit_is_formatted

  ! An internal file fails while it is in use. After that libgfortran may keep it, not closed but without its
  ! attributes, so that it shows one that OPEN sets only on request, and a record as long as the text was.
  function unit_is_external(unit) result(external) bind(C, name='qwcore_unit_is_external')
    integer(c_int32_t), intent(in) :: unit
    integer(c_int32_t) :: external
    character(len=7) :: share
    integer :: status, record_length
    logical :: opened

    inquire (unit=unit, opened=opened, share=share, recl=record_length, iostat=status)
    external = merge(1, 0, status == 0 .and. opened .and. (share /= 'DENYRW' .or. record_length >= 1073741824))
  end function unit_is_external

  function unit_is_writable(unit) result(writable) bind(C, name='qwcore_unit_is_writable')
    integer(c_int32_t), intent(in) :: unit
    integer(c_int32_t) :: writable
    character(len=9) :: action
    integer :: status

    inquire (unit=unit, action=action, iostat=status)
    writable = merge(0, 1, status == 0 .and. action == 'READ')
  end function unit_is_writable

  function open_unit(unit, path, path_length, options) result(status) bind(C, name='qwcore_open')
    integer(c_int32_t), intent(in) :: unit
    integer(c_int32_t), intent(in) :: path_length
    character(kind=c_char), intent(in) :: path(path_length)
    type(open_options), intent(in) :: options
    integer(c_int32_t) :: status
    character(len=path_length) :: file
    character(len=9) :: action
    character(len=6) :: position
    integer :: i

    do i = 1, path_length
      file(i:i) = path(i)
    end do
    action = action_names(options%action)
    position = merge('append', 'asis  ', options%append /= 0)
    if (options%formatted /= 0) then
      open (unit=unit, file=file, status='old', action=action, position=position, &
            blank=merge('zero', 'null', options%blank_zero /= 0), iostat=status)
    else
      open (unit=unit, file=file, status='old', action=action, position=position, &
            form='unformatted', access='stream', iostat=status)
    end if
  end function open_unit

end module qwcore_unit_statements
