! SPDX-License-Identifier: MIT
! Calls for compilers that have no core runtime, of each family those that need none. They do no input or output of
! their own, so that no Fortran run-time is needed to run them either.

! The number of the first check that fails, or 0.
integer(c_int) function first_failure() bind(C)
  use, intrinsic :: iso_c_binding, only: c_int
  use qwport
  implicit none
  character(len=4) :: drive, extension
  character(len=12) :: directory, name
  character(len=64) :: text
  integer(2) :: parts(6)
  integer(4) :: number, error, handle
  integer(8) :: wide
  real(8), target :: values(3), wanted
  logical :: holds(11)

  holds(1) = splitpathqq('C:\lib\units.f90', drive, directory, name, extension) == 5 .and. drive == 'C:' .and. &
    directory == '\lib\' .and. name == 'units' .and. extension == '.f90'
  call packtimeqq(number, 1995_2, 3_2, 1_2, 12_2, 30_2, 15_2)
  call unpacktimeqq(number, parts(1), parts(2), parts(3), parts(4), parts(5), parts(6))
  holds(2) = all(parts == [1995, 3, 1, 12, 30, 15])
  holds(3) = getpid() > 0 .and. hostnm(text) == 0 .and. text /= ' '
  values = [9d0, -1d0, 5d0]
  wanted = 5
  number = 3
  call sortqq(loc(values), number, sort_real8)
  holds(4) = values(1) < 0 .and. bsearchqq(loc(wanted), loc(values), 3, sort_real8) == 2
  holds(5) = bit(5, 32) .and. jdim(7, 3) == 4 .and. abs(dbesj0(1d0) - 0.765197686557966551d0) < 1d-15
  number = 2
  holds(6) = ran(number) < 1e-4 .and. number == 2*48271
  call setcontrolfpqq(int(z'B3F', 2))
  call getcontrolfpqq(parts(1))
  call setcontrolfpqq(int(z'33F', 2))
  holds(7) = parts(1) == int(z'B3F', 2)
  holds(8) = sport_get_handle(77, wide) /= 0
  call pxfstructcreate('utimbuf', handle, error)
  call pxfintset(handle, 'modtime', 1234567, error)
  call pxfintget(handle, 'modtime', number, error)
  holds(9) = error == 0 .and. number == 1234567
  holds(10) = mbindex('au lait', 'lait') == 4 .and. mbleq('same', 'same')
  holds(11) = nlsformatnumber(text, '7') > 0 .and. text(:1) == '7'
  do first_failure = 1, size(holds)
    if (.not. holds(first_failure)) return
  end do
  first_failure = 0
end function first_failure
