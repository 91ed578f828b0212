! SPDX-License-Identifier: MIT
! Calendar, clocks and setting the clock as a Fortran program meets them, on a simulated host.
module simulated_clock
  use, intrinsic :: iso_c_binding, only: c_char, c_int16_t, c_int32_t, c_int64_t
  implicit none
  integer(c_int64_t), bind(C) :: now, ticks
  ! Year, month, day of the week, day, hour, minute, second, milliseconds: what the host tells, and what was set last.
  integer(c_int16_t), bind(C) :: local_time(8), time_set(8)
  integer(c_int32_t), bind(C) :: is_refused  ! other than 0: the host does not set the clock

  interface
    subroutine set_zone(zone) bind(C)
      import :: c_char
      character(c_char), intent(in) :: zone(*)
    end subroutine set_zone
  end interface
end module simulated_clock

program time_test
  use check
  use qwport
  use simulated_clock
  implicit none
  integer(4), parameter :: march_5_2023 = 1678025229  ! 14:07:09 UTC
  integer(4), parameter :: february_29_2000 = 951786123

  call set_zone('UTC0'//char(0))
  call test_dates()
  call test_times()
  call test_time_values()
  call test_packing()
  call test_seconds()
  call test_setting()
  call finish()

contains

  subroutine test_dates()
    type :: day
      integer(8) :: time
      character(len=11) :: texts(5)  ! DATE of 9 and of 8 characters, DATE4, JDATE, JDATE4
      integer :: numbers(5)          ! day, month, year, two digits of it, and the year by the rule of 96
    end type day
    type(day), parameter :: days(*) = [ &
      day(march_5_2023, ['05-Mar-23  ', '03/05/23   ', '05-Mar-2023', '23064      ', '2023064    '], [5, 3, 2023, 23, 2023]), &
      day(february_29_2000, ['29-Feb-00  ', '02/29/00   ', '29-Feb-2000', '00060      ', '2000060    '], [29, 2, 2000, 0, 2000]), &
      day(946684799, ['31-Dec-99  ', '12/31/99   ', '31-Dec-99  ', '99365      ', '1999365    '], &
          [31, 12, 1999, 99, 99]), &
      day(1735603200, ['31-Dec-24  ', '12/31/24   ', '31-Dec-2024', '24366      ', '2024366    '], [31, 12, 2024, 24, 2024]), &
      day(3976146367_8, ['31-Dec-95  ', '12/31/95   ', '31-Dec-2095', '95365      ', '2095365    '], &
          [31, 12, 2095, 95, 2095]), &
      day(3976214400_8, ['01-Jan-96  ', '01/01/96   ', '01-Jan-96  ', '96001      ', '2096001    '], [1, 1, 2096, 96, 96])]
    integer, parameter :: order(18) = [1, 2, 4, 1, 2, 5, 2, 1, 4, 2, 1, 5, 3, 2, 1, 3, 2, 1]
    character(len=11) :: texts(5)
    integer :: a(15), i, error
    integer(2) :: short(3)

    do i = 1, size(days)
      now = days(i)%time
      texts = ' '
      call date(texts(1)(:9))
      call date(texts(2)(:8))
      call date4(texts(3)(:len_trim(days(i)%texts(3))))
      call jdate(texts(4)(:5))
      call jdate4(texts(5)(:7))
      call expect(days(i)%texts(3), all(texts == days(i)%texts))
      call idate(a(1:3))
      call f_idate4(a(4:6))
      call idate1(a(7), a(8), a(9))
      call idate4(a(10), a(11), a(12))
      call getdat(a(13), a(14), a(15))
      call getdati2(short(1), short(2), short(3))
      call expect(days(i)%texts(3), [a, int(short)], days(i)%numbers(order))
    end do
    call errsns(system=error)
    call expect('no text was cut', error, 0)
  end subroutine test_dates

  subroutine test_times()
    integer :: a(7), tv(2), tz, i
    integer(2) :: short(4)
    character(len=10) :: text
    real(8) :: microseconds
    real(8), parameter :: seconds_of_timef(3) = [0d0, 2.5d0, -1d0]
    integer(8), parameter :: ticks_of_timef(3) = [10000000000_8, 10025000000_8, 9990000000_8]

    now = march_5_2023
    call itime(a(:3))
    call gettim(a(4), a(5), a(6), a(7))
    call gettimi2(short(1), short(2), short(3), short(4))
    call expect('times', [a, int(short)], [14, 7, 9, 14, 7, 9, 67, 14, 7, 9, 67])
    call time2(text)
    call expect('texts', clock()//text, '14:07:0914:07:09  ')
    call expect('time', time(), march_5_2023)

    now = 5000000123_8
    call clockx(microseconds)
    call gettimeofday(tv, tz)
    call expect('clockx', microseconds == 5000000123678000d0)
    call expect('gettimeofday', [tv, tz], [705032827, 678000, 0])  ! the seconds' low half
    ticks = 12345678
    call expect('rtc', abs(rtc() - 1.2345678d0) < 1d-15)
    ! From its first call on, backwards if the clock is set back.
    do i = 1, 3
      ticks = ticks_of_timef(i)
      call expect('timef', abs(timef() - seconds_of_timef(i)) < 1d-6)
    end do
  end subroutine test_times

  subroutine test_time_values()
    integer :: utc(9, 2), local(9, 2)
    character(len=26) :: text

    call gmtime(february_29_2000, utc(:, 1))
    call gmtime(huge(0), utc(:, 2))
    call expect('gmtime', [utc], [3, 2, 1, 29, 1, 100, 2, 59, 0, 7, 14, 3, 19, 0, 138, 2, 18, 0])
    call ltime(february_29_2000, local(:, 1))
    call ltime(-1, local(:, 2))
    call expect('ltime, from day 1 on', [local], [3, 2, 1, 29, 1, 100, 2, 60, 0, -1, -1, -1, -1, -1, -1, -1, -1, -1])
    call expect('ctime', ctime(february_29_2000), 'Tue Feb 29 01:02:03 2000'//new_line('a'))
    call expect('ctime before 1970', ctime(-1), ' ')
    now = march_5_2023
    call fdate(text)
    call expect('two digits for the day', text, 'Sun Mar 05 14:07:09 2023')
  end subroutine test_time_values

  ! Packed times come apart as they were put together, in the local time of the TZ variable.
  subroutine test_packing()
    call set_zone('ABC5'//char(0))
    call expect_packed([2023, 3, 5, 9, 7, 9], march_5_2023)
    call set_zone('EST5EDT'//char(0))
    call expect_packed([2023, 1, 15, 12, 0, 0], 1673802000)
    call expect_packed([2023, 7, 15, 12, 0, 0], 1689436800)  ! 16:00 UTC
    call set_zone('UTC0'//char(0))
    call expect_packed([1970, 1, 1, 0, 0, 0], 0)
    call expect_packed([2038, 1, 19, 3, 14, 7], huge(0))
    call expect('1 March', packed([2023, 2, 29, 0, 0, 0]), 1677628800)
    call expect('before 1970', [packed([1960, 1, 1, 0, 0, 0]), packed([1969, 12, 31, 20, 0, 0])], [-1, -1])
    call expect('cut to 32 bits', packed([2040, 1, 1, 0, 0, 0]), -2085978496)
    call expect('before 1970', all(unpacked(-100000) == -1))
  end subroutine test_packing

  integer function packed(fields)
    integer, intent(in) :: fields(6)

    call packtimeqq(packed, fields(1), int(fields(2), 2), fields(3), fields(4), fields(5), fields(6))
  end function packed

  function unpacked(time) result(fields)
    integer, intent(in) :: time
    integer(2) :: fields(6)

    call unpacktimeqq(time, fields(1), fields(2), fields(3), fields(4), fields(5), fields(6))
  end function unpacked

  subroutine expect_packed(fields, time)
    integer, intent(in) :: fields(6), time
    integer :: local(9), utc(9)

    call ltime(time, local)
    call gmtime(time, utc)
    call expect('packed', [packed(fields), int(unpacked(time)), local(3), utc(3)], &
                [time, fields, fields(4), mod(time/3600, 24)])
  end subroutine expect_packed

  ! SECNDS counts from midnight, without the first two milliseconds, over the next and never below 0.
  subroutine test_seconds()
    real, parameter :: not_a_number = transfer(int(z'7FC00000'), 0.0)
    integer(2), parameter :: clocks(4, 10) = reshape([integer(2) :: 0, 0, 0, 1, 0, 0, 0, 2, 10, 0, 0, 500, 23, 59, 59, 999, &
      10, 0, 0, 0, 0, 0, 0, 0, 10, 0, 1, 0, 10, 0, 0, 0, 10, 0, 0, 0, 10, 0, 0, 0], [4, 10])
    real, parameter :: starts(10) = [0.0, 0.0, 0.0, 0.0, not_a_number, 86399.0, 36000.0, 36000.0, 200000.0, -1.0]
    real, parameter :: seconds(10) = [0.0, 0.002, 36000.5, 86400.0, 36000.0, 1.0, 1.0, 0.0, 0.0, 36001.0]
    real :: single(3)
    real(8) :: double(3)
    integer :: i

    do i = 1, 10
      local_time(5:8) = clocks(:, i)
      call expect('secnds', secnds(starts(i)) == seconds(i))
    end do
    single(3) = etime(single(:2))
    call expect('etime', single(3) == sum(single(:2)) .and. single(3) >= 0)
    single(3) = dtime(single(:2))
    double(3) = dtimer8(double(:2))
    call expect('dtime', single(3) == sum(single(:2)) .and. double(3) == sum(double(:2)))
    call expect('dclock', dclock() > 0d0 .and. dclock() < 600d0)
  end subroutine test_seconds

  ! The date is set and the time of day kept, or the other way round; the host checks the values.
  subroutine test_setting()
    integer(2), parameter :: date_set(8) = [2031_2, 12_2, 6_2, 24_2, 14_2, 7_2, 9_2, 123_2]
    integer(2), parameter :: clock_set(8) = [2023_2, 3_2, 6_2, 5_2, 23_2, 59_2, 58_2, 500_2]

    local_time = [2023_2, 3_2, 6_2, 5_2, 14_2, 7_2, 9_2, 123_2]  ! with a day of the week that no Sunday has
    call expect_set('setdat', setdat(2031, 12, 24), date_set)
    call expect_set('setdat of INTEGER(2)', setdat(2031_2, 12_2, 24_2), date_set)
    call expect_set('settimi2', settimi2(23_2, 59_2, 58_2, 50_2), clock_set)
    ! SETTIM takes the low halves of its first three arguments.
    call expect_set('settim', settim(23 + 458752, 59 - 65536, 58, 50), clock_set)
    call expect_set('settim', settim(99, -1, -1, -1), [clock_set(:4), 99_2, -1_2, -1_2, -10_2])
    is_refused = 1
    call expect_set('refused', .not. setdat(2031, 12, 24), date_set)
  end subroutine test_setting

  subroutine expect_set(what, done, fields)
    character(len=*), intent(in) :: what
    logical, intent(in) :: done
    integer(2), intent(in) :: fields(8)

    call expect(what, done .and. all(time_set == fields))
    time_set = 0
  end subroutine expect_set

end program time_test
