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

  ! The addresses of these arrays and keys go nowhere else: the compiler must take the interfaces' word for what happens
  ! to them.
  subroutine test_addresses()
    real(8) :: values(3), other_values(3), key, other_key
    integer :: count
    integer(8) :: wide_count

    values = [9d0, 1d0, 5d0]
    other_values = [9d0, 1d0, 5d0]
    count = 3
    wide_count = 3
    call sortqq(loc(values), count, sort_real8)
    call sortqq(loc(other_values), wide_count, sort_real8)
    call expect('sortqq', nint([values(2), other_values(2)]), [5, 5])
    key = 9
    other_key = 5
    call expect('bsearchqq', [bsearchqq(loc(key), loc(values), 3, sort_real8), &
                              bsearchqq(loc(other_key), loc(other_values), 3_8, sort_real8)], [3, 2])
  end subroutine test_addresses

  subroutine test_kept_outputs()
    integer :: baudrate, parity, number, error

    baudrate = 7
    parity = 7
    call expect('sport_get_state', [sport_get_state(99, baudrate, parity), baudrate, parity], [87, 7, 7])
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
    integer :: times(3), year = 1995
    integer(2) :: month = 3, word

    call packtimeqq(times(1), 1995, 3, 1, 12, 0, 0)
    call packtimeqq(times(2), year, month, 1, 12_2, 0, 0_8)
    call packtimeqq(times(3), 1995_2, month, 1_2, 12, 0, 0)
    call expect('packtimeqq', times(1) > 0 .and. all(times == times(1)))
    call expect('ifloati, dfloati', nint([real(ifloati(-3), 8), dfloati(-3)]), [-3, -3])
    call expect('jmod', jmod(-7, 3), -1)
    call setcontrolfpqq(int(z'33F'))
    call getcontrolfpqq(word)
    call expect('setcontrolfpqq', int(word), int(z'33F'))
    call pxfcallsubhandle(0, 5, times(1))
    call expect('pxfcallsubhandle of a constant', times(1), PXF_ENOHANDLE)
  end subroutine test_kinds

end program interfaces_test
