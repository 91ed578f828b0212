! SPDX-License-Identifier: MIT
! Programs, signals and the environment as POSIX has them. ierror is 0 for success, else an error number, which is
! reported. Lengths of 0 mean a text without its trailing blanks.
module qwport_posix_processes
  implicit none
  public

  interface

    ! Run another program in place of this one, which ends with its exit code; they return only when it could not be
    ! started. path: its file; PXFEXECVP searches a file without a directory in the PATH. argv: iargc words, the
    ! program's name first, of lengths lenargv. env: ienvc texts 'NAME=VALUE', the program's whole environment.
    subroutine pxfexecv(path, lenpath, argv, lenargv, iargc, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: lenpath
      integer(4), intent(in) :: iargc
      character(len=*), intent(in) :: argv(iargc)
      integer(4), intent(in) :: lenargv(iargc)
      integer(4), intent(out) :: ierror
    end subroutine pxfexecv

    subroutine pxfexecvp(file, lenfile, argv, lenargv, iargc, ierror)
      character(len=*), intent(in) :: file
      integer(4), intent(in) :: lenfile
      integer(4), intent(in) :: iargc
      character(len=*), intent(in) :: argv(iargc)
      integer(4), intent(in) :: lenargv(iargc)
      integer(4), intent(out) :: ierror
    end subroutine pxfexecvp

    subroutine pxfexecve(path, lenpath, argv, lenargv, iargc, env, lenenv, ienvc, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: lenpath
      integer(4), intent(in) :: iargc
      character(len=*), intent(in) :: argv(iargc)
      integer(4), intent(in) :: lenargv(iargc)
      integer(4), intent(in) :: ienvc
      character(len=*), intent(in) :: env(ienvc)
      integer(4), intent(in) :: lenenv(ienvc)
      integer(4), intent(out) :: ierror
    end subroutine pxfexecve

    ! End the program with a status: after closing its units, and at once, with what they hold lost.
    subroutine pxfexit(istatus)
      integer(4), intent(in) :: istatus
    end subroutine pxfexit

    subroutine pxffastexit(istatus)
      integer(4), intent(in) :: istatus
    end subroutine pxffastexit

    ! Sends a signal (PXF_SIGKILL, PXF_SIGINT, ...): 9 ends any process, 0 tells whether it is there, the others
    ! reach this process only.
    subroutine pxfkill(ipid, isig, ierror)
      integer(4), intent(in) :: ipid
      integer(4), intent(in) :: isig
      integer(4), intent(out) :: ierror
    end subroutine pxfkill

    ! Sets what a signal does and tells what it did. jsigact, josigact: handles of sigaction structures, or 0.
    ! sa_handler: PXF_SIG_DFL, PXF_SIG_IGN or the handle of a subroutine with one INTEGER(4) argument.
    subroutine pxfsigaction(isig, jsigact, josigact, ierror)
      integer(4), intent(in) :: isig
      integer(4), intent(in) :: jsigact
      integer(4), intent(in) :: josigact
      integer(4), intent(out) :: ierror
    end subroutine pxfsigaction

    ! Raises PXF_SIGALRM in iseconds seconds, in place of a pending alarm; 0 only cancels that. isecleft: the seconds
    ! that were left.
    subroutine pxfalarm(iseconds, isecleft, ierror)
      integer(4), intent(in) :: iseconds
      integer(4), intent(inout) :: isecleft
      integer(4), intent(out) :: ierror
    end subroutine pxfalarm

    ! Waits until the handler of a signal has returned. ierror: 4, always.
    subroutine pxfpause(ierror)
      integer(4), intent(out) :: ierror
    end subroutine pxfpause

    ! Waits as many seconds, or until the handler of a signal has returned. isecleft: the seconds that were left.
    subroutine pxfsleep(iseconds, isecleft, ierror)
      integer(4), intent(in) :: iseconds
      integer(4), intent(inout) :: isecleft
      integer(4), intent(out) :: ierror
    end subroutine pxfsleep

    ! The value of a variable and its whole length; 22 if there is none, 129 if it was cut.
    subroutine pxfgetenv(name, lenname, value, lenval, ierror)
      character(len=*), intent(in) :: name
      integer(4), intent(in) :: lenname
      character(len=*), intent(inout) :: value
      integer(4), intent(inout) :: lenval
      integer(4), intent(out) :: ierror
    end subroutine pxfgetenv

    ! Sets a variable, or removes it for an empty value. ioverwrite: 0 leaves a variable that there is as it is.
    subroutine pxfsetenv(name, lenname, new, lennew, ioverwrite, ierror)
      character(len=*), intent(in) :: name
      integer(4), intent(in) :: lenname
      character(len=*), intent(in) :: new
      integer(4), intent(in) :: lennew
      integer(4), intent(in) :: ioverwrite
      integer(4), intent(out) :: ierror
    end subroutine pxfsetenv

    ! Removes all variables, those with names outside the code page too. An error number if one stays.
    subroutine pxfclearenv(ierror)
      integer(4), intent(out) :: ierror
    end subroutine pxfclearenv

  end interface

end module qwport_posix_processes
