! SPDX-License-Identifier: MIT
! Clocks and elapsed time. TIMEF, DTIME and DTIMER8 remember their previous call for the whole process.
module qwport_clocks
  implicit none
  public

  interface

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

    ! The same since the previous call of DTIME or DTIMER8. On a machine with several processors every second
    ! call reads the wall clock.
    function dtime(tarray) result(seconds)
      real(4), intent(inout) :: tarray(2)
      real(4) :: seconds
    end function dtime

    function dtimer8(tarray) result(seconds)
      real(8), intent(inout) :: tarray(2)
      real(8) :: seconds
    end function dtimer8

  end interface

end module qwport_clocks
