! SPDX-License-Identifier: MIT
! Positions in texts against GNU Fortran's LEN_TRIM, INDEX, SCAN and VERIFY.
program text_scan
  use qwport
  use timing
  implicit none
  integer, parameter :: length = 2**20, rounds = 31, short_calls = 20000
  integer, parameter :: of_lnblnk = 1, of_rindex = 2, of_mbindex = 3, of_mblen_trim = 4, of_mbscan = 5, of_mbverify = 6
  character(len=length) :: text
  integer :: checksum = 0

  call print_head('a call', 'library', 'intrinsic')
  call compare('LNBLNK, 12 characters', of_lnblnk, 'name.f90', 12, goal=0.8d0)
  call compare('LNBLNK, 80 characters', of_lnblnk, 'a line of a program', 80, goal=0.8d0)
  call compare('RINDEX, 12 characters', of_rindex, 'src/name.f90', 12, '/', 0.8d0)
  call compare('RINDEX, 80 characters', of_rindex, 'the needle of a line', 80, 'needle', 0.8d0)

  call compare('LNBLNK, 1 MB of blanks', of_lnblnk, 'x', length)
  call compare('MBLEN_TRIM, 1 MB of blanks', of_mblen_trim, 'x', length, goal=1.6d0)
  call compare('MBLEN_TRIM, half blanks', of_mblen_trim, repeat('x', length/2), length, goal=1.6d0)
  call compare('RINDEX, not found', of_rindex, 'needle', length, 'zebra', 0.5d0)
  call compare('RINDEX, many beginnings', of_rindex, repeat('need', length/4), length, 'needle', 0.5d0)
  call compare('MBINDEX, many beginnings', of_mbindex, repeat('need', length/4), length, 'needle', 0.5d0)
  call compare('MBINDEX, nearly everywhere', of_mbindex, repeat('a', length), length, &
               repeat('a', 15)//'b'//repeat('a', 16), 0.5d0)
  call compare('MBINDEX, one character', of_mbindex, repeat('abc', length/3), length, 'd', 0.5d0)
  call compare('MBINDEX, UTF-8', of_mbindex, repeat('caf'//char(195)//char(169), 209715), length, &
               char(195)//char(169)//'d', 0.5d0)
  call compare('MBSCAN, 4 characters', of_mbscan, repeat('text', length/4), length, ';,:.', 0.7d0)
  call compare('MBVERIFY, 4 characters', of_mbverify, repeat('text', length/4), length, 'etx ', 0.7d0)
  if (checksum == 0) print '(a)', 'nothing was found'

contains

  ! Times routine for the first count characters of text, which begins with start; of short ones many calls a round.
  subroutine compare(what, routine, start, count, pattern, goal)
    character(len=*), intent(in) :: what, start
    integer, intent(in) :: routine, count
    character(len=*), intent(in), optional :: pattern
    real(8), intent(in), optional :: goal
    real(8), dimension(rounds) :: library, intrinsic
    character(len=:), allocatable :: set
    real(8) :: begin
    integer :: i, calls, ours, theirs

    text = start
    set = ' '
    if (present(pattern)) set = pattern
    calls = merge(short_calls, 1, count < 1000)
    do i = 1, rounds
      begin = now()
      call run_library(routine, text(:count), set, calls, ours)
      library(i) = now() - begin
      begin = now()
      call run_intrinsic(routine, text(:count), set, calls, theirs)
      intrinsic(i) = now() - begin
      if (ours /= theirs) error stop 'the results differ'
      checksum = ieor(checksum, ours)
    end do
    call report(what, library, intrinsic, calls, goal)
  end subroutine compare

  subroutine run_library(routine, string, pattern, calls, last)
    character(len=*), intent(in) :: string, pattern
    integer, intent(in) :: routine, calls
    integer, intent(out) :: last
    integer, volatile :: position
    integer :: i

    position = 0
    do i = 1, calls
      select case (routine)
      case (of_lnblnk)
        position = lnblnk(string)
      case (of_rindex)
        position = rindex(string, pattern)
      case (of_mbindex)
        position = mbindex(string, pattern)
      case (of_mblen_trim)
        position = mblen_trim(string)
      case (of_mbscan)
        position = mbscan(string, pattern)
      case (of_mbverify)
        position = mbverify(string, pattern)
      end select
    end do
    last = position
  end subroutine run_library

  subroutine run_intrinsic(routine, string, pattern, calls, last)
    character(len=*), intent(in) :: string, pattern
    integer, intent(in) :: routine, calls
    integer, intent(out) :: last
    integer, volatile :: position
    integer :: i

    position = 0
    do i = 1, calls
      select case (routine)
      case (of_lnblnk, of_mblen_trim)
        position = len_trim(string)
      case (of_rindex)
        position = index(string, pattern, back=.true.)
      case (of_mbindex)
        position = index(string, pattern)
      case (of_mbscan)
        position = scan(string, pattern)
      case (of_mbverify)
        position = verify(string, pattern)
      end select
    end do
    last = position
  end subroutine run_intrinsic

end program text_scan
