! SPDX-License-Identifier: MIT
! Calendar and clocks as a Fortran program meets them: each routine against GNU Fortran's DATE_AND_TIME.
program time_test
  use check
  use qwport
  implicit none
  integer :: before(8), after(8)

  ! A day or a minute that ends during the test is taken as it is.
  call date_and_time(values=before)
  call test_calendar()
  call test_time_of_day()
  call test_time_values()
  call test_clocks()
  call date_and_time(values=after)
  call expect('the test took no day', after(1) - before(1) <= 1)
  call finish()

contains

  subroutine test_calendar()
    character(len=11) :: text
    character(len=24) :: long_text
    integer :: a(3), year, month, day
    integer(2) :: year2, month2, day2

    call getdat(year, month, day)
    call expect('getdat', year == before(1) .and. month == before(2) .and. day >= before(3))
    call getdati2(year2, month2, day2)
    call expect('getdati2', year2 == year .and. month2 == month)
    call idate(a)
    call expect('idate', a(2) == month .and. a(3) == mod(year, 100))
    call f_idate4(a)
    call expect('f_idate4', a(2) == month .and. a(3) == year)
    call idate1(month, day, year)
    call expect('idate1', year == mod(before(1), 100))
    call idate4(month, day, year)
    call expect('idate4', year == before(1))
    call date(text(1:9))
    call expect('date, long form', text(3:3) == '-' .and. text(7:7) == '-')
    call date(text(1:8))
    call expect('date, short form', text(3:3) == '/' .and. text(6:6) == '/')
    call date4(text)
    call expect('date4', text(8:11) == year_text(before(1)))
    call jdate(text)
    call expect('jdate', len_trim(text), 5)
    call jdate4(text)
    call expect('jdate4', text(1:4) == year_text(before(1)))
    call fdate(long_text)
    call expect('fdate', long_text(21:24) == year_text(before(1)))
  end subroutine test_calendar

  subroutine test_time_of_day()
    integer :: a(3), hour, minute, second, hundredths, status
    integer(2) :: hour2, minute2, second2, hundredths2
    character(len=8) :: text

    call itime(a)
    call gettim(hour, minute, second, hundredths)
    call expect('gettim', minutes(hour, minute) - minutes(a(1), a(2)) <= 1)
    call expect('hundredths', hundredths >= 0 .and. hundredths <= 99)
    call gettimi2(hour2, minute2, second2, hundredths2)
    call expect('gettimi2', minutes(int(hour2), int(minute2)) - minutes(hour, minute) <= 1)
    text = clock()
    call time2(text)
    read (text, '(i2,1x,i2,1x,i2)', iostat=status) hour, minute, second
    call expect('clock and time2', status == 0 .and. minutes(hour, minute) - minutes(a(1), a(2)) <= 1)
  end subroutine test_time_of_day

  subroutine test_time_values()
    integer :: now, packed, local(9), utc(9)
    integer(2) :: year, month, day, hour, minute, second
    character(len=25) :: text

    now = time()
    call ltime(now, local)
    call gmtime(now, utc)
    call expect('ltime', local(6) + 1900 == before(1) .and. local(1) == utc(1))
    call unpacktimeqq(now, year, month, day, hour, minute, second)
    call expect('unpacktimeqq', year == local(6) + 1900 .and. hour == local(3) .and. second == local(1))
    call packtimeqq(packed, year, month, day, hour, minute, second)
    call expect('packtimeqq', packed, now)
    text = ctime(now)
    call expect('ctime', text(25:25) == new_line('a') .and. text(21:24) == year_text(int(year)))
  end subroutine test_time_values

  subroutine test_clocks()
    real(8) :: seconds, microseconds, wide(2)
    real :: single(2), elapsed
    integer :: tv(2), tz

    seconds = rtc()
    call clockx(microseconds)
    call gettimeofday(tv, tz)
    call expect('rtc and time', abs(seconds - time()) < 5)
    call expect('clockx', abs(microseconds*1d-6 - seconds) < 5)
    call expect('gettimeofday', abs(tv(1) - seconds) < 5 .and. tz == 0)
    call expect('timef starts at 0', timef() == 0d0)
    call expect('timef goes on', timef() >= 0d0)
    call expect('dclock', dclock() > 0d0 .and. dclock() < 600d0)
    elapsed = secnds(0.0)
    call expect('secnds', secnds(elapsed) < 60.0)
    elapsed = etime(single)
    call expect('etime', elapsed == single(1) + single(2) .and. elapsed >= 0)
    elapsed = dtime(single)
    call expect('dtime', elapsed == single(1) + single(2))
    call expect('dtimer8', dtimer8(wide) == wide(1) + wide(2))
  end subroutine test_clocks

  function year_text(year)
    integer, intent(in) :: year
    character(len=4) :: year_text

    write (year_text, '(i4)') year
  end function year_text

  ! Minutes since midnight.
  integer function minutes(hour, minute)
    integer, intent(in) :: hour, minute

    minutes = 60*hour + minute
  end function minutes

end program time_test
