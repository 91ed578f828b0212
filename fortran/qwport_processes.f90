! SPDX-License-Identifier: MIT
! Commands, signals, the alarm, sleeping, the environment and identity.
module qwport_processes
  implicit none
  public
  private :: seterrormodeqq_logical

  interface

    ! Runs a command line by the host's command interpreter and waits. Result: its exit code, or -1 if it could
    ! not be run.
    function system(command) result(exit_code)
      character(len=*), intent(in) :: command
      integer(4) :: exit_code
    end function system

    ! Runs a command line by the C run-time, with the interpreter that COMSPEC names. Result: false only if no
    ! interpreter could be started.
    function systemqq(commandline) result(started)
      character(len=*), intent(in) :: commandline
      logical(4) :: started
    end function systemqq

    ! Runs a program without an interpreter and waits. filename: its path; directories are not searched.
    ! commandline: its arguments. Result: the low 16 bits of its exit code, or -1 if it could not be started.
    function runqq(filename, commandline) result(exit_code)
      character(len=*), intent(in) :: filename
      character(len=*), intent(in) :: commandline
      integer(2) :: exit_code
    end function runqq

    ! Sets what a signal does. signum: 2 interrupt, 4 illegal instruction, 6 abort, 8 floating-point exception,
    ! 11 segmentation violation, 15 termination. proc: a procedure with one argument, the signal's number, an
    ! INTEGER(4); needed for a negative flag only. flag: negative to call proc, 0 default action, 1 ignore.
    ! Result: the previous handler (0 default, 1 ignored), -1 if the host has no such signal; 22, reported, for
    ! a number or flag that does not exist.
    function signal(signum, proc, flag) result(previous)
      integer(4), intent(in) :: signum
      optional :: proc
      external :: proc
      integer(4), intent(in) :: flag
      integer(8) :: previous
    end function signal

    ! Sets what a signal does, by the C run-time's numbers (abort is 22). func: a procedure with the signal's number as
    ! its argument, INTEGER(4) and VALUE; for signal 8 with two INTEGER(4) arguments, 8 and the floating-point
    ! code; left out for the default action.
    function signalqq(sig, func) result(previous)
      integer(4), intent(in) :: sig
      optional :: func
      external :: func
      integer(8) :: previous
    end function signalqq

    ! Raises a signal, a C run-time number, in this process. Result: 0, or an error code.
    function raiseqq(sig) result(error)
      integer(4), intent(in) :: sig
      integer(4) :: error
    end function raiseqq

    ! Sends a signal to a process: 9 ends any process, with exit code 9; others only to this process. Result: 0;
    ! 22 for a signal or process that does not exist, or a signal to another process; 13 for one that may not be
    ! ended; recorded.
    function kill(pid, signum) result(error)
      integer(4), intent(in) :: pid
      integer(4), intent(in) :: signum
      integer(4) :: error
    end function kill

    ! Has a function called when the core runtime reports an error:
    !   logical(4) function handler(code, continuable, text, context)
    ! with INTEGER(4) code and continuable, CHARACTER(*) text, INTEGER(8) context; it gives .true. for an error
    ! that is dealt with. context: handed to it as it is. The previous function's address and context come back.
    function establishqq(handler, context, previous_handler, previous_context) result(done)
      logical(4), external :: handler
      integer(8), value, target :: context
      integer(8), intent(inout), optional :: previous_handler
      integer(8), intent(inout), optional :: previous_context
      logical(4) :: done
    end function establishqq

    ! Calls proc, a subroutine without arguments, on a thread of its own after time seconds (1 or more; at most
    ! 49 days). Result: 0; or, while an alarm is pending, the seconds until it: the new one is then ignored.
    function alarm(time, proc) result(seconds_left)
      integer(4), intent(in) :: time
      external :: proc
      integer(4) :: seconds_left
    end function alarm

    ! Waits as many seconds; not at all for a negative time.
    subroutine sleep(time)
      integer(4), intent(in) :: time
    end subroutine sleep

    ! Waits. duration: milliseconds, none for a negative one.
    subroutine sleepqq(duration)
      integer(4), intent(in) :: duration
    end subroutine sleepqq

    ! Sounds the speaker. frequency: hertz; duration: milliseconds.
    subroutine beepqq(frequency, duration)
      integer(4), intent(in) :: frequency
      integer(4), intent(in) :: duration
    end subroutine beepqq

    ! Environment and identity.

    ! The value of a variable; blank if there is no such variable, cut if it does not fit. name: ends at its
    ! first blank.
    subroutine getenv(name, value)
      character(len=*), intent(in) :: name
      character(len=*), intent(out) :: value
    end subroutine getenv

    ! The value of a variable, where blanks within varname count. Result: the number of characters stored; 0 if there
    ! is no such variable. A value that does not fit is cut and reported as 22.
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

  ! Whether the host shows critical errors to the user. pflag: 1 or .true. to show them, any other value to have them
  ! fail silently.
  interface seterrormodeqq
    subroutine seterrormodeqq(pflag)
      integer(4), intent(in) :: pflag
    end subroutine seterrormodeqq
    procedure seterrormodeqq_logical
  end interface seterrormodeqq

contains

  subroutine seterrormodeqq_logical(pflag)
    logical(4), intent(in) :: pflag

    call seterrormodeqq(merge(1_4, 0_4, pflag))
  end subroutine seterrormodeqq_logical

end module qwport_processes
