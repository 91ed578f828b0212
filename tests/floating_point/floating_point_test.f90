! SPDX-License-Identifier: MIT
! Floating-point traps from end to end: this program, started again, lets an exception trap and must end with
! status 9 after its handler was called, if it has one. Usage: floating_point_test [EXCEPTION]
program floating_point_test
  use check
  use qwport
  implicit none
  character(len=*), parameter :: record = 'floating_point_test.txt'
  character(len=10) :: exception

  call get_command_argument(1, exception)
  if (exception /= ' ') call run_into(trim(exception))
  call test_trap('invalid', [8, int(z'81'), 0])
  call test_trap('division', [8, int(z'83'), 0])
  call test_trap('overflow', [8, int(z'84'), 0])
  call test_trap('underflow', [8, int(z'85'), 0])
  call test_trap('inexact', [8, int(z'86'), 0])
  call test_trap('denormal', [0, 0, 0])
  call test_words()
  call finish()

contains

  subroutine test_trap(name, expected)
    character(len=*), intent(in) :: name
    integer, intent(in) :: expected(3)
    character(len=260) :: program_name
    integer :: unit, seen(3), status

    call get_command_argument(0, program_name)
    call expect('exit status, '//name, int(runqq(program_name, name)), 9)
    seen = 0
    open (newunit=unit, file=record, status='old')
    read (unit, *, iostat=status) seen
    close (unit, status='delete')
    call expect('signal, code and status word, '//name, seen, expected)
  end subroutine test_trap

  ! There is no handler for denormal operands, though their trap is set with all others.
  subroutine run_into(name)
    character(len=*), intent(in) :: name
    character(len=10) :: handled
    real(8), volatile :: zero = 0, smallest = tiny(1d0), largest = huge(1d0), denormal, result

    open (11, file=record, status='replace')
    handled = name
    if (name == 'denormal') handled = 'all'
    denormal = smallest/4
    if (ieee_handler('set', handled, keep_exception) /= 0) error stop 2
    if (name == 'invalid') result = zero/zero
    if (name == 'division') result = smallest/zero
    if (name == 'overflow') result = largest*largest
    if (name == 'underflow') result = smallest*smallest
    if (name == 'inexact') result = largest/3
    if (name == 'denormal') result = denormal + zero
    stop 3
  end subroutine run_into

  ! Finds a clear status word. The unit is closed by the end of the program.
  subroutine keep_exception(signum, code)
    integer(4) :: signum, code
    integer(2) :: status

    call sswrqq(status)
    write (11, *) signum, code, status
  end subroutine keep_exception

  ! Each argument list once.
  subroutine test_words()
    integer(2) :: words(3)
    character(len=10) :: text
    real(8), volatile :: one = 1, zero = 0, result
    integer(4) :: info(2) = [9, 5]

    call expect('set, get', [ieee_flags('set', 'direction', 'positive', text), ieee_flags('get', 'direction', ' ', text)], [0, 2])
    call getcontrolfpqq(words(1))
    call setcontrolfpqq(int(z'33F', 2))
    call scwrqq(words(2))
    call lcwrqq(int(z'23F', 2))
    call expect('words', text == 'positive' .and. all(words(:2) == [int(z'B3F', 2), int(z'33F', 2)]))
    call clearstatusfpqq()
    result = one/zero
    call getstatusfpqq(words(1))
    call sswrqq(words(2))
    call matherrqq('log', 3_2, info, words(3))
    call expect('status words, matherrqq', [int(words), info], [4, 4, 0, 0, 5])
    call expect('no handler', ieee_handler('get', 'invalid') == 0)
  end subroutine test_words

end program floating_point_test
