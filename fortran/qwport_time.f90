! SPDX-License-Identifier: MIT
! Calendar, clocks and elapsed time. Times are seconds since 1970-01-01 00:00:00 UTC; local time is the C run-time's
! (the TZ variable counts), which knows times from 1970 on. A two-digit year is the year modulo 100. A "year
! of the 96 rule" is 2000 to 2095 for two digits below 96, and the two digits themselves from 96 on.
module qwport_time
  implicit none
  public

  interface

    ! Now, in seconds.
    function time() result(seconds)
      integer(4) :: seconds
    end function time

    ! A time as "Sun Mar 05 14:07:09 2023" and a line feed, in local time; all blanks for a negative time.
    function ctime(stime) result(text)
      integer(4), intent(in) :: stime
      character(len=25) :: text
    end function ctime

    ! Now as "Sun Mar 05 14:07:09 2023". Declared EXTERNAL it can be called as a CHARACTER function, too.
    subroutine fdate(string)
      character(len=*), intent(out) :: string
    end subroutine fdate

    ! Today: "05-Mar-23" if string has more than 8 characters, else "03/05/23", month first.
    subroutine date(string)
      character(len=*), intent(out) :: string
    end subroutine date

    ! Today: "05-Mar-2023", with the year of the 96 rule.
    subroutine date4(string)
      character(len=*), intent(out) :: string
    end subroutine date4

    ! Today: "23064", two-digit year and day of the year.
    subroutine jdate(string)
      character(len=*), intent(out) :: string
    end subroutine jdate

    ! Today: "2023064", year and day of the year.
    subroutine jdate4(string)
      character(len=*), intent(out) :: string
    end subroutine jdate4

    ! Today: day, month, two-digit year.
    subroutine idate(iarray)
      integer(4), intent(out) :: iarray(3)
    end subroutine idate

    ! Today: day, month, year of the 96 rule.
    subroutine f_idate4(iarray)
      integer(4), intent(out) :: iarray(3)
    end subroutine f_idate4

    ! Today: month, day, two-digit year.
    subroutine idate1(month, day, year)
      integer(4), intent(out) :: month, day, year
    end subroutine idate1

    ! Today: month, day, year of the 96 rule.
    subroutine idate4(month, day, year)
      integer(4), intent(out) :: month, day, year
    end subroutine idate4

    ! The local time: hour, minute, second.
    subroutine itime(iarray)
      integer(4), intent(out) :: iarray(3)
    end subroutine itime

    ! Today: year, month, day.
    subroutine getdat(year, month, day)
      integer(4), intent(out) :: year, month, day
    end subroutine getdat

    subroutine getdati2(year, month, day)
      integer(2), intent(out) :: year, month, day
    end subroutine getdati2

    ! The local time, to hundredths of a second.
    subroutine gettim(hour, minute, second, hundredths)
      integer(4), intent(out) :: hour, minute, second, hundredths
    end subroutine gettim

    subroutine gettimi2(hour, minute, second, hundredths)
      integer(2), intent(out) :: hour, minute, second, hundredths
    end subroutine gettimi2

    ! A time in UTC: second, minute, hour, day, month from 0, years since 1900, day of the week (0 Sunday),
    ! day of the year from 0, daylight-saving flag. A negative time ends the program.
    subroutine gmtime(stime, tarray)
      integer(4), intent(in) :: stime
      integer(4), intent(out) :: tarray(9)
    end subroutine gmtime

    ! A time in local time, as that of GMTIME but with the day of the year from 1; all -1 for a negative time.
    subroutine ltime(stime, tarray)
      integer(4), intent(in) :: stime
      integer(4), intent(out) :: tarray(9)
    end subroutine ltime

    ! The local date and time of a time; all -1 for a negative time.
    subroutine unpacktimeqq(timedate, year, month, day, hour, minute, second)
      integer(4), intent(in) :: timedate
      integer(2), intent(out) :: year, month, day, hour, minute, second
    end subroutine unpacktimeqq

    ! Sets the machine's local time of day; false if the process may not, or for a time that does not exist.
    function settim(hour, minute, second, hundredths) result(done)
      integer(4), intent(in) :: hour, minute, second, hundredths
      logical(4) :: done
    end function settim

    ! Clocks and elapsed time. TIMEF, DTIME and DTIMER8 remember their previous call for the whole process.

    ! Seconds since 1970-01-01 00:00:00 UTC, with fraction.
    function rtc() result(seconds)
      real(8) :: seconds
    end function rtc

    ! 0 on the first call, then seconds since the first call.
    function timef() result(seconds)
      real(8) :: seconds
    end function timef

    ! Microseconds since 1970-01-01 00:00:00 UTC, to the millisecond.
    subroutine clockx(t)
      real(8), intent(out) :: t
    end subroutine clockx

    ! Seconds since 1970-01-01 00:00:00 UTC, and microseconds to the millisecond. tz is always 0.
    subroutine gettimeofday(tv, tz)
      integer(4), intent(out) :: tv(2)
      integer(4), intent(out) :: tz
    end subroutine gettimeofday

    ! The local time as "14:07:09".
    function clock() result(text)
      character(len=8) :: text
    end function clock

    subroutine time2(string)
      character(len=*), intent(out) :: string
    end subroutine time2

    ! Seconds since local midnight less t0, counted over midnight and never below 0; t0 0.0 gives the seconds
    ! since midnight.
    function secnds(t0) result(seconds)
      real(4), intent(in) :: t0
      real(4) :: seconds
    end function secnds

    ! Seconds since the program started.
    function dclock() result(seconds)
      real(8) :: seconds
    end function dclock

    ! Processor seconds of the program: user and system; the result is their sum, -1 if they cannot be told.
    ! On a machine with several processors: the wall-clock time since the program started, and 0.
    function etime(tarray) result(seconds)
      real(4), intent(inout) :: tarray(2)
      real(4) :: seconds
    end function etime

    ! Processor seconds since the previous call of DTIME or DTIMER8, as ETIME gives them. On a machine with several
    ! processors every second call reads the wall clock.
    function dtime(tarray) result(seconds)
      real(4), intent(inout) :: tarray(2)
      real(4) :: seconds
    end function dtime

    function dtimer8(tarray) result(seconds)
      real(8), intent(inout) :: tarray(2)
      real(8) :: seconds
    end function dtimer8

    ! INTEGER(2) inputs of several arguments take any mixture of kinds, as of constants and variables: wider integers
    ! begin with the INTEGER(2) of their value.

    ! The time of a local date and time, which may lie outside the usual ranges: second 90 is half past the next
    ! minute. -1 if there is no such time.
    subroutine packtimeqq(timedate, year, month, day, hour, minute, second)
      integer(4), intent(out) :: timedate
      type(*), intent(in) :: year, month, day  ! INTEGER, not of kind 1
      type(*), intent(in) :: hour, minute, second  ! INTEGER, not of kind 1
    end subroutine packtimeqq

    ! Sets the machine's local date; false as for SETTIM.
    function setdat(year, month, day) result(done)
      type(*), intent(in) :: year, month, day  ! INTEGER, not of kind 1
      logical(4) :: done
    end function setdat

    ! SETTIM of INTEGER(2).
    function settimi2(hour, minute, second, hundredths) result(done)
      type(*), intent(in) :: hour, minute, second, hundredths  ! INTEGER, not of kind 1
      logical(4) :: done
    end function settimi2

  end interface

end module qwport_time
