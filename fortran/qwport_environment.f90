! SPDX-License-Identifier: MIT
! Environment variables and identity.
module qwport_environment
  implicit none
  public

  interface

    ! The value of a variable; blank if there is no such variable, cut if it does not fit. name: ends at its
    ! first blank.
    subroutine getenv(name, value)
      character(len=*), intent(in) :: name
      character(len=*), intent(out) :: value
    end subroutine getenv

    ! The same, but blanks within varname count. Result: the number of characters stored; 0 if there is no such
    ! variable. A value that does not fit is cut and reported as 22.
    function getenvqq(varname, value) result(length)
      character(len=*), intent(in) :: varname
      character(len=*), intent(out) :: value
      integer(4) :: length
    end function getenvqq

    ! Sets a variable of this process and of those it starts. varvalue: 'NAME=VALUE'; 'NAME=' removes it.
    function setenvqq(varvalue) result(done)
      character(len=*), intent(in) :: varvalue
      logical(4) :: done
    end function setenvqq

    ! The next variable whose name begins with envname (case matters): its name and value, both blank when there
    ! is none left, and from then on until another envname is asked for.
    subroutine scanenv(envname, envtext, envvalue)
      character(len=*), intent(in) :: envname
      character(len=*), intent(out) :: envtext
      character(len=*), intent(out) :: envvalue
    end subroutine scanenv

    ! The name of the user; blank if it is not known.
    subroutine getlog(name)
      character(len=*), intent(out) :: name
    end subroutine getlog

    ! The name of the machine. Result: 0; -1 it was cut; 1 it is not known. HOSTNAM is a second name.
    function hostnm(name) result(status)
      character(len=*), intent(out) :: name
      integer(4) :: status
    end function hostnm

    function hostnam(name) result(status)
      character(len=*), intent(out) :: name
      integer(4) :: status
    end function hostnam

    ! The host's number of the process.
    function getpid() result(pid)
      integer(4) :: pid
    end function getpid

    ! The relative identifier of the process's user, and of its primary group; -1 if it is not known.
    function getuid() result(uid)
      integer(4) :: uid
    end function getuid

    function getgid() result(gid)
      integer(4) :: gid
    end function getgid

  end interface

end module qwport_environment
