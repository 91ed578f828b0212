! SPDX-License-Identifier: MIT
! Programs, signals and the environment of POSIX. What ends a program is seen in this one, started again.
! Usage: posix_processes_test [MODE ARGUMENTS]
program posix_processes_test
  use check
  use qwport
  implicit none
  character(len=*), parameter :: record = 'posix_processes_test.txt'
  character(len=260) :: own_name
  character(len=10) :: mode
  integer(4), volatile :: handled = 0

  call get_command_argument(0, own_name)
  call get_command_argument(1, mode)
  if (mode /= ' ') call run_as_child(trim(mode))
  call test_programs()
  call test_signals()
  call test_alarm()
  call test_environment()
  call finish()

contains

  subroutine run_as_child(what)
    character(len=*), intent(in) :: what
    character(len=300) :: words(5), variables(2)
    integer :: lengths(5), error, left

    ! One length is beyond its element.
    words = [character(len=300) :: own_name, 'report', 'two words', 'q\"uo"te\', ' ']
    lengths = [0, 6, 301, 9, 0]
    select case (what)
    case ('report')
      call report_and_exit()
    case ('execv')
      call pxfexecv(own_name, 0, words, lengths, 5, error)
    case ('execve')
      call getenv('PATH', variables(2)(6:))
      variables(1) = 'QWPORT_ONLY=here'
      variables(2)(:5) = 'PATH='
      call pxfexecve(own_name, 0, words, lengths, 5, variables, [0, 0], 2, error)
    case ('execvp')
      call pxfexecvp('cmd', 0, [character(len=7) :: 'cmd', '/c', 'exit 65'], [0, 0, 0], 3, error)
    case ('exit', 'fastexit')
      open (11, file=record, status='replace')
      write (11, '(a)') 'kept'
      if (what == 'exit') call pxfexit(12)
      call pxffastexit(13)
    case ('alarm')
      call pxfalarm(1, left, error)
      call pxfpause(error)
    end select
    error stop 99
  end subroutine run_as_child

  ! The words of the command line and a variable, one a line.
  subroutine report_and_exit()
    character(len=40) :: word
    integer :: i, length

    open (11, file=record, status='replace')
    do i = 2, command_argument_count()
      call get_command_argument(i, word, length)
      write (11, '(i0,2a)') length, ':', trim(word)
    end do
    call getenv('QWPORT_ONLY', word)
    write (11, '(a)') trim(word)
    call exit(77)
  end subroutine report_and_exit

  ! Runs this program in one of its modes.
  subroutine expect_run(what, status, text)
    character(len=*), intent(in) :: what, text
    integer, intent(in) :: status

    call expect(what, int(runqq(own_name, what)), status)
    call expect('the record of '//what, recorded(), text)
  end subroutine expect_run

  ! The lines of the record, joined with |.
  function recorded() result(text)
    character(len=80) :: text, line
    integer :: unit, status

    text = ' '
    open (newunit=unit, file=record, status='old', iostat=status)
    if (status /= 0) return
    do while (status == 0)
      read (unit, '(a)', iostat=status) line
      if (status == 0) text = trim(text)//trim(line)//'|'
    end do
    close (unit, status='delete', iostat=status)
  end function recorded

  subroutine test_programs()
    character(len=5) :: words(1) = ['x    ']
    integer :: errors(4)

    call expect('set', setenvqq('QWPORT_ONLY=inherited'))
    call expect_run('execv', 77, '300:two words|9:q\"uo"te\|0:|inherited|')
    call expect_run('execve', 77, '300:two words|9:q\"uo"te\|0:|here|')
    call expect_run('execvp', 65, ' ')
    call expect_run('exit', 12, 'kept|')
    call expect_run('fastexit', 13, ' ')
    call pxfexecv('no such program', 0, words, [0], 1, errors(1))
    call pxfexecv(own_name, 0, words, [0], 0, errors(2))
    call pxfexecv(own_name, 0, words, [-1], 1, errors(3))
    call pxfexecve('no such program', 0, words, [0], 1, words, [0], 0, errors(4))
    call expect('no program, no words, a negative length', errors, [PXF_ENOENT, PXF_EINVAL, PXF_EINVAL, PXF_ENOENT])
  end subroutine test_programs

  subroutine test_signals()
    integer, parameter :: signals(*) = [PXF_SIGINT, PXF_SIGILL, PXF_SIGFPE, PXF_SIGSEGV, PXF_SIGTERM, PXF_SIGABRT]
    integer, parameter :: refused(*) = [0, 1, PXF_SIGKILL, 23, -1]
    integer :: action, old, handle, values(3), pid, i, error, errors(size(refused) + 2)

    call pxfstructcreate('sigaction', action, error)
    call pxfstructcreate('sigaction', old, error)
    call pxfgetsubhandle(keep_signal, handle, error)
    call pxfgetpid(pid, error)
    do i = 1, size(signals)
      handled = 0
      call pxfintset(action, 'sa_handler', handle, error)
      call pxfintset(action, 'sa_mask', i, error)
      call pxfsigaction(signals(i), action, 0, error)
      call pxfkill(pid, signals(i), error)
      call expect('handled', handled, signals(i))
      call pxfintset(action, 'sa_handler', PXF_SIG_IGN, error)
      call pxfsigaction(signals(i), action, old, error)
      call pxfintget(old, 'sa_handler', values(1), error)
      call pxfintget(old, 'sa_mask', values(3), error)
      call pxfkill(pid, signals(i), error)
      call pxfsigaction(signals(i), 0, old, error)
      call pxfintget(old, 'sa_handler', values(2), error)
      call expect('the old handler, asked only', values, [handle, PXF_SIG_IGN, i])
      call pxfsigaction(signals(i), old, 0, error)
      call expect('ignored', [handled, error], [signals(i), 0])
    end do
    do i = 1, size(refused)
      call pxfsigaction(refused(i), action, 0, errors(i))
    end do
    ! SIGNAL has a number of its own for this one.
    handled = 0
    call expect('no handler', signal(6, keep_signal, -1) >= 0)
    call pxfsigaction(PXF_SIGABRT, action, old, error)
    call pxfsigaction(PXF_SIGABRT, old, 0, error)
    call pxfkill(pid, PXF_SIGABRT, error)
    call expect('put back', handled, 6)
    call pxfintset(action, 'sa_handler', 5, error)
    call pxfsigaction(PXF_SIGINT, action, 0, errors(6))
    call pxfsigaction(PXF_SIGINT, 9999, 0, errors(7))
    call expect('no such signals, handler and structure', errors, [(PXF_EINVAL, i=1, 6), PXF_ENOHANDLE])
  end subroutine test_signals

  subroutine keep_signal(signum)
    integer(4) :: signum

    handled = handled*100 + signum
  end subroutine keep_signal

  subroutine test_alarm()
    integer :: action, handle, lefts(4), left, error, errors(2)

    call pxfstructcreate('sigaction', action, error)
    call pxfgetsubhandle(keep_signal, handle, error)
    call pxfintset(action, 'sa_handler', handle, error)
    call pxfsigaction(PXF_SIGALRM, action, 0, error)
    handled = 0
    call pxfalarm(1000, lefts(1), error)
    call pxfalarm(0, left, error)
    call expect('the cancelled one', left > 900 .and. left <= 1000)
    call pxfalarm(1000, lefts(2), error)
    call pxfalarm(1, lefts(3), error)
    call pxfpause(error)
    call expect('paused, handled once', [error, handled], [PXF_EINTR, 14])
    call pxfalarm(1, lefts(3), error)
    call pxfsleep(1000, left, error)
    ! The alarm was set before the sleep began, so that less than a whole second may have gone.
    call expect('sleep interrupted', error == 0 .and. left > 900 .and. left <= 1000)
    call pxfsleep(0, lefts(4), error)
    call expect('none before, no sleep', lefts, [0, 0, 0, 0])
    call pxfalarm(-1, left, errors(1))
    call pxfsleep(-1, left, errors(2))
    call expect('negative', errors, [PXF_EINVAL, PXF_EINVAL])
    call expect_run('alarm', 14, ' ')
  end subroutine test_alarm

  subroutine test_environment()
    character(len=4) :: value
    integer :: length, status, error, errors(4)

    call pxfsetenv('QWPORT_PXF', 0, 'abc ', 4, 1, error)
    call pxfgetenv('QWPORT_PXF...', 10, value, length, error)
    call expect('set and got', value == 'abc ' .and. length == 4 .and. error == 0)
    call pxfsetenv('QWPORT_PXF', 0, 'other', 0, 0, error)
    call pxfgetenv('QWPORT_PXF', 0, value, length, error)
    call expect('stays', value, 'abc ')
    call pxfsetenv('QWPORT_PXF', 0, 'other', 0, 1, error)
    call pxfgetenv('QWPORT_PXF', 0, value, length, error)
    call expect('cut', [error, length], [PXF_ETRUNC, 5])
    call pxfsetenv('A=B', 0, 'x', 0, 1, errors(1))
    call pxfsetenv(' ', 0, 'x', 0, 0, errors(2))
    call pxfclearenv(errors(3))
    call pxfgetenv('QWPORT_PXF', 0, value, length, errors(4))
    call expect('no names, all cleared', errors, [PXF_EINVAL, PXF_EINVAL, 0, PXF_EINVAL])
    call get_environment_variable('PATH', status=status)
    call expect('for all', status, 1)
  end subroutine test_environment

end program posix_processes_test
