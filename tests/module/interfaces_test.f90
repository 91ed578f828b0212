! SPDX-License-Identifier: MIT
! What the module's interfaces promise the compiler: memory that is reached through an address, outputs that keep their
! values, procedures without side effects, arguments of either kind.
program interfaces_test
  use check
  use qwport
  implicit none

  call test_addresses()
  call test_kept_outputs()
  call test_pure_procedures()
  call test_kinds()
  call finish()

contains

  subroutine test_addresses()
    integer(2) :: table(2, 3)
    integer(8) :: previous

    call expect('sortqq', nint([middle_of_wide_count(), middle()]), [5, 5])
    call expect('bsearchqq', [place_of_wide_length(), place()], [3, 3])
    table = 7
    call expect('a row', mbconvertmbtounicode('ab', table(1, :)), 2)
    call expect('the row', int(table(1, :)), [97, 98, 32])
    call expect('establishqq', establishqq(count_error, 77_8) .and. establishqq(count_error, 0_8, previous_context=previous))
    call expect('previous context', int(previous), 77)
  end subroutine test_addresses

  ! The address of an array goes nowhere else: the compiler must take the interface's word for what happens to it.

  real(8) function middle_of_wide_count() result(second)
    real(8) :: values(3)
    integer(8) :: count

    values = [9d0, 1d0, 5d0]
    count = 3
    call sortqq(loc(values), count, sort_real8)
    second = values(2)
  end function middle_of_wide_count

  real(8) function middle() result(second)
    real(8) :: values(3)
    integer :: count

    values = [9d0, 1d0, 5d0]
    count = 3
    call sortqq(loc(values), count, sort_real8)
    second = values(2)
  end function middle

  integer function place_of_wide_length() result(position)
    real(8) :: values(3), key

    values = [1d0, 5d0, 9d0]
    key = 9
    position = bsearchqq(loc(key), loc(values), 3_8, sort_real8)
  end function place_of_wide_length

  integer function place() result(position)
    real(8) :: values(3), key

    values = [1d0, 5d0, 9d0]
    key = 9
    position = bsearchqq(loc(key), loc(values), 3, sort_real8)
  end function place

  logical(4) function count_error(code, continuable, text, context)
    integer(4) :: code, continuable
    character(len=*) :: text
    integer(8) :: context

    count_error = code + continuable + len(text) + context < 0
  end function count_error

  subroutine test_kept_outputs()
    integer :: baudrate, parity, number, error
    integer(8) :: wide(2)

    baudrate = 7
    parity = 7
    call expect('sport_get_state', [sport_get_state(99, baudrate, parity), baudrate, parity], [87, 7, 7])
    wide = 7
    call expect('getdrivesizeqqi8', .not. getdrivesizeqqi8('?', wide(1), wide(2)) .and. all(wide == 7))
    number = 7
    call pxffileno(77, number, error)
    call expect('pxffileno', [number, error], [7, PXF_EBADF])
  end subroutine test_kept_outputs

  subroutine test_pure_procedures()
    integer :: sizes(shiftl(1, 3)), i
    character(len=rindex('abcabc', 'bc')) :: text
    integer(2) :: low(2)

    do concurrent(i=1:size(sizes))
      sizes(i) = jdim(i, 4) + lnblnk('ab  ')
    end do
    call expect('pure', [sizes, len(text)], [2, 2, 2, 2, 3, 4, 5, 6, 5])
    call expect('elemental', nint(ddim([3d0, 1d0], 2d0)) + nint(dim([3.0, 1.0], 2.0)), [2, 0])
    low = short([65537, 2])
    call expect('short, long', long(low), [1, 2])
    call expect('mblead, pxfisdir', .not. (any(mblead(['a', 'b'])) .or. any(pxfisdir([0, PXF_S_IFREG]))))
  end subroutine test_pure_procedures

  ! INTEGER(2) inputs take constants and variables of default kind.
  subroutine test_kinds()
    integer :: times(4), year = 1995
    integer(2) :: month = 3, words(2)

    call packtimeqq(times(1), 1995, 3, 1, 12, 0, 0)
    call packtimeqq(times(2), year, month, 1, 12_2, 0, 0_8)
    call packtimeqq(times(3), 1995_2, month, 1_2, 12, 0, 0)
    call packtimeqq(times(4), 1995_2, month, 1_2, 12_2, 0_2, 0_2)
    call expect('packtimeqq', times(1) > 0 .and. all(times == times(1)))
    call expect('ifloati, dfloati', nint([real(ifloati(-3), 8), dfloati(-3)]), [-3, -3])
    call expect('jmod', jmod(-7, 3), -1)
    call getcontrolfpqq(words(1))
    call setcontrolfpqq(int(z'33F'))
    call getcontrolfpqq(words(2))
    call lcwrqq(int(words(1)))
    call expect('setcontrolfpqq', int(words(2)), int(z'33F'))
    call pxfcallsubhandle(0, 5, times(1))
    call expect('pxfcallsubhandle of a constant', times(1), PXF_ENOHANDLE)
  end subroutine test_kinds

end program interfaces_test
