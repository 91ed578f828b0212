! SPDX-License-Identifier: MIT
! Procedures for compilers that have no core runtime: one a family, each of which calls what needs none. They do no
! input or output of their own, so that no Fortran run-time is needed to run them either.
module without_core
  use, intrinsic :: iso_c_binding, only: c_bool
  use qwport
  implicit none
  private

contains

  logical(c_bool) function files() bind(C)
    character(len=4) :: drive, extension
    character(len=12) :: directory, name

    files = splitpathqq('C:\lib\units.f90', drive, directory, name, extension) == 5 .and. drive == 'C:' .and. &
      directory == '\lib\' .and. name == 'units' .and. extension == '.f90'
  end function files

  logical(c_bool) function time_of_day() bind(C)
    integer(4) :: packed
    integer(2) :: parts(6)

    call packtimeqq(packed, 1995_2, 3_2, 1_2, 12_2, 30_2, 15_2)
    call unpacktimeqq(packed, parts(1), parts(2), parts(3), parts(4), parts(5), parts(6))
    time_of_day = all(parts == [1995, 3, 1, 12, 30, 15])
  end function time_of_day

  logical(c_bool) function processes() bind(C)
    character(len=64) :: host

    processes = getpid() > 0 .and. hostnm(host) == 0 .and. host /= ' '
  end function processes

  logical(c_bool) function sorting() bind(C)
    real(8), target :: values(4), wanted
    integer(4) :: count

    values = [9d0, -1d0, 5d0, 0.5d0]
    wanted = 5d0
    count = 4
    call sortqq(loc(values), count, sort_real8)
    sorting = all(values == [-1d0, 0.5d0, 5d0, 9d0]) .and. bsearchqq(loc(wanted), loc(values), count, sort_real8) == 3
  end function sorting

  logical(c_bool) function numeric() bind(C)
    integer(4) :: flags

    flags = 0
    call bis(5, flags)
    numeric = flags == 32 .and. bit(5, flags) .and. rindex('lib/units/a', '/') == 10 .and. lnblnk('ab  ') == 2 .and. &
      jdim(7, 3) == 4 .and. abs(dbesj0(1d0) - 0.765197686557966551d0) < 1d-15
  end function numeric

  logical(c_bool) function random() bind(C)
    integer(4) :: seed

    seed = 2
    random = ran(seed) < 1e-4 .and. seed == 2*48271
  end function random

  logical(c_bool) function floating_point() bind(C)
    integer(2) :: before, changed

    call getcontrolfpqq(before)
    call setcontrolfpqq(ior(iand(before, not(int(z'C00', 2))), int(z'800', 2)))
    call getcontrolfpqq(changed)
    call setcontrolfpqq(before)
    floating_point = iand(before, int(z'C00', 2)) == 0 .and. iand(changed, int(z'C00', 2)) == int(z'800', 2)
  end function floating_point

  logical(c_bool) function serial() bind(C)
    integer(8) :: handle

    handle = 7
    serial = sport_get_handle(77, handle) /= 0
  end function serial

  logical(c_bool) function posix() bind(C)
    integer(4) :: times, error, seconds

    call pxfstructcreate('utimbuf', times, error)
    posix = error == 0
    call pxfintset(times, 'modtime', 1234567, error)
    call pxfintget(times, 'modtime', seconds, error)
    posix = posix .and. error == 0 .and. seconds == 1234567 .and. pxfisdir(int(o'040777'))
    call pxfstructfree(times, error)
    posix = posix .and. error == 0
  end function posix

  logical(c_bool) function multibyte() bind(C)
    multibyte = mbindex('au lait', 'lait') == 4 .and. mbverify('aab', 'a') == 3 .and. mbleq('same', 'same')
  end function multibyte

  logical(c_bool) function nls() bind(C)
    character(len=40) :: number

    nls = nlsformatnumber(number, '7') > 0 .and. number(:1) == '7' .and. number /= '7'
  end function nls

end module without_core
