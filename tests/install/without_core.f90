! SPDX-License-Identifier: MIT
! Calls for compilers that have no core runtime, of each family one that needs none. They do no input or output of their
! own, so that no Fortran run-time is needed to run them either.

! The number of the first call that fails, or 0.
integer(c_int) function first_failure() bind(C)
  use, intrinsic :: iso_c_binding, only: c_int
  use qwport
  implicit none
  character(len=4) :: drive, extension
  character(len=12) :: directory, name
  character(len=64) :: text
  integer(2) :: parts(6)
  integer(4) :: packed, error, handle, seconds
  integer(8) :: wide
  real(8), target :: values(3), wanted

  first_failure = 1
  if (splitpathqq('C:\lib\units.f90', drive, directory, name, extension) /= 5 .or. drive /= 'C:') return
  if (directory /= '\lib\' .or. name /= 'units' .or. extension /= '.f90') return
  first_failure = 2
  call packtimeqq(packed, 1995_2, 3_2, 1_2, 12_2, 30_2, 15_2)
  call unpacktimeqq(packed, parts(1), parts(2), parts(3), parts(4), parts(5), parts(6))
  if (.not. all(parts == [1995, 3, 1, 12, 30, 15])) return
  first_failure = 3
  if (getpid() <= 0 .or. hostnm(text) /= 0 .or. text == ' ') return
  first_failure = 4
  values = [9d0, -1d0, 5d0]
  wanted = 5
  packed = 3
  call sortqq(loc(values), packed, sort_real8)
  if (values(1) >= 0 .or. bsearchqq(loc(wanted), loc(values), 3, sort_real8) /= 2) return
  first_failure = 5
  if (.not. bit(5, 32) .or. jdim(7, 3) /= 4 .or. abs(dbesj0(1d0) - 0.765197686557966551d0) > 1d-15) return
  first_failure = 6
  seconds = 2
  if (ran(seconds) > 1e-4 .or. seconds /= 2*48271) return
  first_failure = 7
  call setcontrolfpqq(int(z'B3F', 2))
  call getcontrolfpqq(parts(1))
  call setcontrolfpqq(int(z'33F', 2))
  if (parts(1) /= int(z'B3F', 2)) return
  first_failure = 8
  if (sport_get_handle(77, wide) == 0) return
  first_failure = 9
  call pxfstructcreate('utimbuf', handle, error)
  call pxfintset(handle, 'modtime', 1234567, error)
  call pxfintget(handle, 'modtime', seconds, error)
  if (error /= 0 .or. seconds /= 1234567) return
  first_failure = 10
  if (mbindex('au lait', 'lait') /= 4 .or. .not. mbleq('same', 'same')) return
  first_failure = 11
  if (nlsformatnumber(text, '7') <= 0 .or. text(:1) /= '7') return
  first_failure = 0
end function first_failure
