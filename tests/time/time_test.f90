! SPDX-License-Identifier: MIT
! Calendar and clocks as a Fortran program meets them: each routine against GNU Fortran's DATE_AND_TIME.
program time_test
  use check
  use qwport
  implicit none
  integer :: before(8)
  character(len=4) :: year_text

  ! A day or a minute that ends during the test is taken as it is.
  call date_and_time(values=before)
  write (year_text, '(i4)') before(1)
  call test_dates()
  call test_times()
  call finish()

contains

  subroutine test_dates()
    character(len=24) :: texts(6)
    integer :: a(3), b(3), year, month, day, short_year
    integer(2) :: year2, month2, day2

    call getdat(year, month, day)
    call getdati2(year2, month2, day2)
    call idate(a)
    call f_idate4(b)
    call expect('dates', [int(year2), int(month2), a(2:3), b(2:3)], [year, month, month, mod(year, 100), month, year])
    call expect('getdat', year == before(1) .and. month == before(2) .and. day >= before(3))
    call idate1(month, day, short_year)
    call idate4(month, day, year)
    call expect('years', [short_year, year], [mod(before(1), 100), before(1)])
    call date(texts(1)(1:9))
    call date(texts(2)(1:8))
    call date4(texts(3))
    call jdate(texts(4))
    call jdate4(texts(5))
    call fdate(texts(6))
    call expect('date', texts(1)(3:3)//texts(1)(7:7)//texts(2)(3:3)//texts(2)(6:6), '--//')
    call expect('texts', texts(3)(8:11)//texts(5)(1:4)//texts(6)(21:24)//texts(4)(6:), repeat(year_text, 3))
  end subroutine test_dates

  subroutine test_times()
    integer :: now, packed, local(9), utc(9), a(3), hour, minute, second, hundredths, tv(2), tz
    integer(2) :: year2, month2, day2, hour2, minute2, second2, hundredths2
    character(len=25) :: text
    character(len=8) :: clock_text
    real(8) :: seconds, microseconds, wide(2)
    real :: single(2), elapsed

    now = time()
    call ltime(now, local)
    call gmtime(now, utc)
    call unpacktimeqq(now, year2, month2, day2, hour2, minute2, second2)
    call packtimeqq(packed, year2, month2, day2, hour2, minute2, second2)
    text = ctime(now)
    call expect('packed', [int(year2), int(hour2), utc(1), packed], [local(6) + 1900, local(3), local(1), now])
    call expect('ctime', text(21:), year_text//new_line('a'))

    call itime(a)
    call gettim(hour, minute, second, hundredths)
    call gettimi2(hour2, minute2, second2, hundredths2)
    call expect('times', all([60*hour + minute, 60*hour2 + minute2] - 60*a(1) - a(2) <= 1) .and. hundredths <= 99)
    clock_text = clock()
    call time2(text)
    call expect('clock', clock_text(3:3)//text(6:6), '::')

    seconds = rtc()
    call clockx(microseconds)
    call gettimeofday(tv, tz)
    call expect('now', all(abs([real(time(), 8), microseconds*1d-6, real(tv(1), 8)] - seconds) < 5) .and. tz == 0)
    call expect('timef', timef() == 0d0 .and. timef() >= 0d0 .and. dclock() > 0d0 .and. dclock() < 600d0)
    elapsed = secnds(0.0)
    call expect('secnds', secnds(elapsed) < 60.0)
    elapsed = etime(single)
    call expect('etime', elapsed == single(1) + single(2) .and. elapsed >= 0)
    elapsed = dtime(single)
    seconds = dtimer8(wide)
    call expect('dtime', elapsed == single(1) + single(2) .and. seconds == wide(1) + wide(2))
  end subroutine test_times

end program time_test
