! SPDX-License-Identifier: MIT
! Commands, signals, the environment and sorting as a Fortran program meets them, with the core runtime for GNU
! Fortran.
program processes_test
  use check
  use qwport
  implicit none

  integer(4), volatile :: handled = 0, alarms = 0

  call test_commands()
  call test_signals()
  call test_error_handler()
  call test_alarm()
  call test_environment()
  call test_identity()
  call test_sortqq()
  call test_qsort()
  call finish()

contains

  subroutine test_commands()
    character(len=260) :: interpreter

    call getenv('COMSPEC', interpreter)
    call expect('commands', [system('exit 70000  '), int(runqq(interpreter, '/c exit 40000'))], [70000, 40000 - 65536])
    call expect('systemqq', systemqq('exit 1'))
    call expect('runqq of nothing', [int(runqq('no such program.exe', ' ')), getlasterror()], [-1, 2])
  end subroutine test_commands

  ! Every signal that the host has: installed, raised, still installed, and the default back.
  subroutine test_signals()
    integer(4), parameter :: signums(*) = [2, 4, 6, 8, 11, 15]
    integer :: i

    do i = 1, size(signums)
      call expect('installed', all(signal(signums(i), keep_signal, -1) /= [-1, 22]))
      handled = 0
      call expect('kill', [kill(getpid(), signums(i)), kill(getpid(), signums(i)), handled], [0, 0, 101*signums(i)])
      call expect('the handler before', signal(signums(i), flag=1) /= 0)
      call expect('kill, ignored', [kill(getpid(), signums(i)), int(signal(signums(i), flag=0))], [0, 1])
    end do
    call expect('no signal', signal(3, keep_signal, -1) == 22)
    call expect('none before', signalqq(22, keep_value) == 0 .and. signalqq(8, keep_code) == 0)
    call expect('by value', [raiseqq(22), handled], [0, -22])
    call expect('with a code', [raiseqq(8), handled], [0, 8*1000 + int(z'8C')])
    call expect('kill with 9 of nothing', kill(2147483644, 9), 22)
  end subroutine test_signals

  subroutine keep_signal(signum)
    integer(4) :: signum

    handled = 100*handled + signum
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
    call sleep(-1)
    call sleepqq(-1)
  end subroutine test_alarm

  subroutine count_alarm()
    alarms = alarms + 1
  end subroutine count_alarm

  subroutine test_environment()
    character(len=10) :: value, scanned(2), own
    character(len=4) :: cut_text
    character(len=20) :: name(2)

    call expect('setenvqq', setenvqq('QWPORT_TEST=0123456789'))
    call getenv('QWPORT_TEST', value)
    call expect('getenvqq', getenvqq('QWPORT_TEST ', cut_text), 4)
    call get_environment_variable('QWPORT_TEST', own)
    call expect('values', value//cut_text//own, '012345678901230123456789')
    call scanenv('QWPORT_T', name(1), scanned(1))
    call scanenv('QWPORT_T', name(2), scanned(2))
    call expect('scanenv', trim(name(1))//'='//scanned(1)//name(2)//scanned(2), 'QWPORT_TEST=0123456789')
    call expect('removal', setenvqq('QWPORT_TEST=') .and. getenvqq('QWPORT_TEST', value) == 0)
    call expect('no assignment', .not. setenvqq('QWPORT_TEST'))
  end subroutine test_environment

  subroutine test_identity()
    character(len=64) :: user, machine
    character(len=3) :: cut_text

    call getlog(user)
    call expect('names', hostnm(machine) == 0 .and. machine /= ' ' .and. user /= ' ')
    if (len_trim(machine) > 3) call expect('hostnam, cut', hostnam(cut_text), -1)
    call expect('ids', getpid() > 0 .and. getuid() > 0 .and. getgid() > 0)
  end subroutine test_identity

  subroutine test_sortqq()
    real(8) :: reals(5) = [3d0, -1d0, 2.5d0, 0d0, 1d300]
    real(16) :: quadruples(4) = [2.0_16**16000, -1.0_16, 1.0_16/3, -2.0_16**16000]
    character(len=5) :: words(4) = ['pear ', 'apple', 'fig  ', 'Plum ']
    real(8) :: key = 2.5d0, other_key = 2d0
    integer(8) :: count = 5
    integer :: counts(2) = [size(quadruples), size(words)]

    call sortqq(loc(reals), count, sort_real8)
    call expect('reals', all(reals == [-1d0, 0d0, 2.5d0, 3d0, 1d300]))
    call expect('bsearchqq', [bsearchqq(loc(key), loc(reals), count, sort_real8), &
                              bsearchqq(loc(other_key), loc(reals), 5, sort_real8)], [3, 0])
    call sortqq(loc(quadruples), counts(1), sort_real16)
    call expect('quadruples', all(quadruples(1:3) < quadruples(2:4)))
    call sortqq(loc(words), counts(2), len(words))
    call expect('words', words(1)//words(2)//words(3)//words(4), 'Plum applefig  pear ')
    call sortqq(loc(words), counts(2), 40000)
    call expect('refused', [counts(2), getlasterror()], [0, 22])
  end subroutine test_sortqq

  subroutine test_qsort()
    integer(4) :: numbers(6) = [4, 1, 6, 3, 5, 2]
    character(len=3) :: words(3) = ['two', 'one', 'six']

    call qsort(numbers, 6, 4, descending)
    call expect('descending', numbers, [6, 5, 4, 3, 2, 1])
    numbers = [4, 1, 6, 3, 5, 2]
    call qsort(numbers, 6_8, 4_8, descending)
    call expect('with wide counts', numbers, [6, 5, 4, 3, 2, 1])
    numbers = [4, 1, 6, 3, 5, 2]
    call qsort(numbers(3), 4_8, 4, descending)
    call expect('from an element on', all(numbers == [4, 1, 6, 5, 3, 2]))
    call qsort(words, size(words), sizeof(words(1)), by_last_letter)
    call expect('words', words(1)//words(2)//words(3), 'onetwosix')
  end subroutine test_qsort

  integer(2) function descending(left, right)
    integer(4), intent(in) :: left, right

    descending = int(right - left, 2)
  end function descending

  ! The words come without their lengths.
  integer(2) function by_last_letter(left, right)
    character(len=1), intent(in) :: left(3), right(3)

    by_last_letter = int(ichar(left(3)) - ichar(right(3)), 2)
  end function by_last_letter

end program processes_test
