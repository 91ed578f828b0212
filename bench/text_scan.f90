! SPDX-License-Identifier: MIT
! LNBLNK, RINDEX and MBINDEX on texts of 1 MB against GNU Fortran's LEN_TRIM and INDEX.
program text_scan
  use qwport
  use timing
  implicit none
  integer, parameter :: length = 2**20
  character(len=length) :: text

  call print_head('a text of 1 MB', 'library', 'intrinsic')
  text = 'x'
  call compare_trim('LNBLNK, all blanks but one')
  text(length/2:length/2) = 'x'
  call compare_trim('LNBLNK, half blanks')
  text = 'needle'
  call compare_index('RINDEX, found at the start', 'needle')
  call compare_index('RINDEX, not found', 'zebra')
  text = repeat('need', length/4)
  call compare_index('RINDEX, many beginnings', 'needle')

  call compare_mbindex('MBINDEX, many beginnings', 'needle')
  call compare_mbindex('MBINDEX, many, back', 'needle', .true.)
  text = 'x'
  text(length - 5:) = 'needle'
  call compare_mbindex('MBINDEX, found at the end', 'needle')
  call compare_mbindex('MBINDEX, one character', 'd')
  text = repeat('a', length)
  call compare_mbindex('MBINDEX, nearly everywhere', repeat('a', 15)//'b'//repeat('a', 16))
  text = repeat('caf'//char(195)//char(169), 209715)
  call compare_mbindex('MBINDEX, UTF-8', char(195)//char(169)//'d')

contains

  subroutine compare_trim(what)
    character(len=*), intent(in) :: what
    integer, parameter :: rounds = 101
    real(8), dimension(rounds) :: library, intrinsic
    real(8) :: start
    integer :: i, position

    do i = 1, rounds
      start = now()
      position = lnblnk(text)
      library(i) = now() - start
      start = now()
      if (len_trim(text) /= position) error stop 'lnblnk'
      intrinsic(i) = now() - start
    end do
    call report(what, library, intrinsic, 1)
  end subroutine compare_trim

  subroutine compare_index(what, pattern)
    character(len=*), intent(in) :: what, pattern
    integer, parameter :: rounds = 31
    real(8), dimension(rounds) :: library, intrinsic
    real(8) :: start
    integer :: i, position

    do i = 1, rounds
      start = now()
      position = rindex(text, pattern)
      library(i) = now() - start
      start = now()
      if (index(text, pattern, back=.true.) /= position) error stop 'rindex'
      intrinsic(i) = now() - start
    end do
    call report(what, library, intrinsic, 1)
  end subroutine compare_index

  subroutine compare_mbindex(what, pattern, back)
    character(len=*), intent(in) :: what, pattern
    logical(4), intent(in), optional :: back
    integer, parameter :: rounds = 31
    real(8), dimension(rounds) :: library, intrinsic
    logical(4) :: from_the_end
    real(8) :: start
    integer :: i, position

    from_the_end = present(back)
    do i = 1, rounds
      start = now()
      position = mbindex(text, pattern, back)
      library(i) = now() - start
      start = now()
      if (index(text, pattern, back=from_the_end) /= position) error stop 'mbindex'
      intrinsic(i) = now() - start
    end do
    call report(what, library, intrinsic, 1)
  end subroutine compare_mbindex

end program text_scan
