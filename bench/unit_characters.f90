! SPDX-License-Identifier: MIT
! FGETC and FPUTC on a unit against GNU Fortran's intrinsic FGETC and FPUTC.
module library_side
  use qwport
  implicit none
contains
  subroutine library_write(unit, count)
    integer, intent(in) :: unit, count
    integer :: i, status
    do i = 1, count
      status = fputc(unit, 'x')
      if (status /= 0) error stop 'fputc'
    end do
  end subroutine library_write

  subroutine library_read(unit, count)
    integer, intent(in) :: unit, count
    character :: c
    integer :: i, status
    do i = 1, count
      status = fgetc(unit, c)
      if (status /= 0 .or. c /= 'x') error stop 'fgetc'
    end do
  end subroutine library_read
end module library_side

module intrinsic_side
  implicit none
  intrinsic :: fgetc, fputc
contains
  subroutine intrinsic_write(unit, count)
    integer, intent(in) :: unit, count
    integer :: i, status
    do i = 1, count
      status = fputc(unit, 'x')
      if (status /= 0) error stop 'fputc'
    end do
  end subroutine intrinsic_write

  subroutine intrinsic_read(unit, count)
    integer, intent(in) :: unit, count
    character :: c
    integer :: i, status
    do i = 1, count
      status = fgetc(unit, c)
      if (status /= 0 .or. c /= 'x') error stop 'fgetc'
    end do
  end subroutine intrinsic_read
end module intrinsic_side

program unit_characters
  use timing
  use library_side
  use intrinsic_side
  implicit none
  integer, parameter :: rounds = 201, count = 100000, unit = 11
  real(8) :: start
  real(8), dimension(rounds) :: write_ours, write_theirs, read_ours, read_theirs
  integer :: i

  open (unit, status='scratch', access='stream')
  do i = 1, rounds
    rewind (unit)
    start = now()
    call library_write(unit, count)
    write_ours(i) = now() - start
    rewind (unit)
    start = now()
    call intrinsic_write(unit, count)
    write_theirs(i) = now() - start
    rewind (unit)
    start = now()
    call library_read(unit, count)
    read_ours(i) = now() - start
    rewind (unit)
    start = now()
    call intrinsic_read(unit, count)
    read_theirs(i) = now() - start
  end do
  close (unit)

  call print_head('a character', 'library', 'intrinsic')
  call report('FPUTC', write_ours, write_theirs, count, 2.05d0)
  call report('FGETC', read_ours, read_theirs, count, 2.05d0)
end program unit_characters
