! SPDX-License-Identifier: MIT
! The process, its user and machine, times and command line as POSIX gives them. ierror is 0 for success, else an
! error number, which is reported.
module qwport_posix_system
  implicit none
  public

  interface

    ! The numbers of the process and of its parent.
    subroutine pxfgetpid(ipid, ierror)
      integer(4), intent(inout) :: ipid
      integer(4), intent(out) :: ierror
    end subroutine pxfgetpid

    subroutine pxfgetppid(ippid, ierror)
      integer(4), intent(inout) :: ippid
      integer(4), intent(out) :: ierror
    end subroutine pxfgetppid

    ! The user's name and its whole length; 129 if it was cut.
    subroutine pxfgetlogin(s, ilen, ierror)
      character(len=*), intent(inout) :: s
      integer(4), intent(inout) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfgetlogin

    ! Fills a utsname structure but for release.
    subroutine pxfuname(jhandle, ierror)
      integer(4), intent(in) :: jhandle
      integer(4), intent(out) :: ierror
    end subroutine pxfuname

    ! Seconds since 1970-01-01 00:00:00 UTC.
    subroutine pxftime(itime, ierror)
      integer(4), intent(inout), optional :: itime
      integer(4), intent(out) :: ierror
    end subroutine pxftime

    ! A time in local time: second, minute, hour, day, month, year, day of the week from Sunday 0, day of the
    ! year from 1, daylight-saving flag. Error 22 for a time before 1970.
    subroutine pxflocaltime(isecnds, iatime, ierror)
      integer(4), intent(in) :: isecnds
      integer(4), intent(inout) :: iatime(9)
      integer(4), intent(out) :: ierror
    end subroutine pxflocaltime

    ! Fills a tms structure with milliseconds of the process; itime: milliseconds since the system started.
    subroutine pxftimes(jhandle, itime, ierror)
      integer(4), intent(in) :: jhandle
      integer(4), intent(inout) :: itime
      integer(4), intent(out) :: ierror
    end subroutine pxftimes

    ! Word m of the command line, from 1, and its whole length; 22 if there is none, 129 if it was cut.
    subroutine pxfgetarg(m, buf, ilen, ierror)
      integer(4), intent(in) :: m
      character(len=*), intent(inout) :: buf
      integer(4), intent(inout) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfgetarg

    ! How many words there are, the program's name not counted.
    function ipxfargc() result(count)
      integer(4) :: count
    end function ipxfargc

    ! The length without trailing blanks.
    elemental function ipxflentrim(string) result(length)
      character(len=*), intent(in) :: string
      integer(4) :: length
    end function ipxflentrim

    ! Compares numbers without sign: icmpr is -1, 0 or 1; idiff is the absolute value of the signed difference.
    elemental subroutine pxfucompare(i1, i2, icmpr, idiff)
      integer(4), intent(in) :: i1
      integer(4), intent(in) :: i2
      integer(4), intent(out) :: icmpr
      integer(4), intent(out) :: idiff
    end subroutine pxfucompare

  end interface

end module qwport_posix_system
