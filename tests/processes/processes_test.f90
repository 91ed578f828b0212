! SPDX-License-Identifier: MIT
! Commands, signals, the alarm and the environment as a Fortran program meets them, with the core runtime for GNU
! Fortran.
program processes_test
  use check
  use qwport
  implicit none

  integer(4), volatile :: handled = 0, alarms = 0

  if (command_argument_count() > 0) call run_as_child()
  call test_commands()
  call test_signals()
  call test_error_handler()
  call test_alarm()
  call test_environment()
  call test_identity()
  call finish()

contains

  ! Ends with the first argument's exit code if the second came in one piece.
  subroutine run_as_child()
    character(len=10) :: arguments(2)
    integer :: code

    call get_command_argument(1, arguments(1))
    call get_command_argument(2, arguments(2))
    read (arguments(1), *) code
    if (arguments(2) == 'x  y') call exit(code)
    call exit(1)
  end subroutine run_as_child

  ! A program's name may have blanks, and no extension; of its exit code RUNQQ gives the low half.
  subroutine test_commands()
    character(len=260) :: own

    call get_command_argument(0, own)
    call expect('system', [system('copy /y "'//trim(own)//'" "a program.exe" > nul'), system('exit 70000  ')], [0, 70000])
    call expect('runqq', int([runqq('a program.exe  ', '40000 "x  y"  '), runqq('.\a program', '65535 "x  y"')]), [-25536, -1])
    call expect('systemqq', systemqq('exit 1  '))
  end subroutine test_commands

  ! Every signal that the host has: installed, raised, still installed, and the default back.
  subroutine test_signals()
    use, intrinsic :: iso_c_binding, only: c_f_procpointer, c_null_funptr
    integer(4), parameter :: signums(*) = [2, 4, 6, 8, 11, 15]
    integer(4), parameter :: unsupported(*) = [-huge(0), -1, 0, 1, 3, 5, 7, 10, 12, 13, 14, 16]
    procedure(keep_value), pointer :: previous
    integer :: i

    do i = 1, size(signums)
      call expect('installed', all(signal(signums(i), keep_signal, -1) /= [-1, 22]))
      handled = 0
      call expect('kill', [kill(getpid(), signums(i)), kill(getpid(), signums(i)), handled], [0, 0, 101*signums(i)])
      call expect('the handler before', signal(signums(i), flag=1) /= 0)
      call expect('kill, ignored', [kill(getpid(), signums(i)), int(signal(signums(i), flag=0))], [0, 1])
    end do
    call expect('none before', signalqq(22, keep_value) == 0 .and. signalqq(8, keep_code) == 0)
    call expect('by value', [raiseqq(22), handled], [0, -22])
    call expect('with a code', [raiseqq(8), handled], [0, 8*1000 + int(z'8C')])
    ! SIGNALQQ puts a handler of SIGNAL back, which is called with SIGNAL's number again.
    call expect('another', signal(6, keep_signal, -1) /= 0)
    call c_f_procpointer(transfer(signalqq(22, keep_value), c_null_funptr), previous)
    call expect('put back', signalqq(22, previous) /= 0)
    handled = 0
    call expect('called again', [raiseqq(22), handled], [0, 6])
    call expect('flag 2', int(signal(2, keep_signal, 2)), 22)
    do i = 1, size(unsupported)
      call expect('unsupported', [int(signal(unsupported(i), keep_signal, -1)), kill(getpid(), unsupported(i)), ierrno()], &
                  [22, 22, 22])
    end do
  end subroutine test_signals

  subroutine keep_signal(signum)
    integer(4) :: signum

    handled = 100*handled + signum
    signum = 99  ! its own copy
  end subroutine keep_signal

  subroutine keep_value(signum)
    integer(4), value :: signum

    handled = -signum
  end subroutine keep_value

  subroutine keep_code(signum, code)
    integer(4) :: signum, code

    handled = signum*1000 + code
  end subroutine keep_code

  subroutine test_error_handler()
    use, intrinsic :: iso_c_binding, only: c_char, c_int32_t
    integer(8) :: previous_handler, previous_context
    interface
      subroutine issue(severity, code, text) bind(C, name='for__issue_diagnostic')
        import :: c_int32_t, c_char
        integer(c_int32_t), value :: severity, code
        character(c_char), intent(in) :: text(*)
      end subroutine issue
    end interface

    call expect('establishqq', establishqq(deal_with_error, 77_8, previous_handler, previous_context))
    call expect('again', establishqq(deal_with_error, 78_8, previous_context=previous_context))
    call expect('none before, then the context', previous_handler == 0 .and. previous_context == 77)
    call issue(2, 1234, 'a text'//char(0))
    call expect('called', handled, 1234 + 78)
  end subroutine test_error_handler

  logical(4) function deal_with_error(code, continuable, text, context)
    integer(4) :: code, continuable
    character(len=*) :: text
    integer(8) :: context

    call expect('continuable', continuable, 1)
    call expect('text', text, 'a text')
    handled = code + int(context)
    deal_with_error = .true.
  end function deal_with_error

  subroutine test_alarm()
    integer :: waits

    call expect('alarm', [alarm(1, count_alarm), alarm(5, count_alarm)], [0, 1])
    do waits = 1, 3000
      if (alarms > 0) exit
      call sleepqq(20)
    end do
    call expect('fired', alarms, 1)
  end subroutine test_alarm

  subroutine count_alarm()
    alarms = alarms + 1
  end subroutine count_alarm

  subroutine test_environment()
    character(len=10) :: value, scanned, own
    character(len=4) :: cut_text
    character(len=20) :: name

    call expect('setenvqq', setenvqq('QWPORT_TEST=0123456789'))
    call getenv('QWPORT_TEST', value)
    call expect('getenvqq', getenvqq('QWPORT_TEST ', cut_text), 4)
    call get_environment_variable('QWPORT_TEST', own)
    call scanenv('QWPORT_T', name, scanned)
    call expect('values', value//cut_text//own//scanned//name, '0123456789012301234567890123456789QWPORT_TEST')
  end subroutine test_environment

  subroutine test_identity()
    character(len=64) :: user, machine

    call getlog(user)
    call expect('known', all([getpid(), getuid(), getgid()] > 0) .and. hostnm(machine) == 0 .and. user /= ' ')
  end subroutine test_identity

end program processes_test
