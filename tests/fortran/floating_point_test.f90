! SPDX-License-Identifier: MIT
! Floating-point traps from end to end: this program, started again for each exception, lets it trap and must end
! with status 9 after its handler was called. Usage: floating_point_test [EXCEPTION]
program floating_point_test
  use check
  use qwport
  implicit none
  character(len=*), parameter :: record = 'floating_point_test.txt'
  character(len=10) :: exception

  call get_command_argument(1, exception)
  if (exception /= ' ') call run_into(trim(exception))
  call test_trap('invalid', int(z'81'))
  call test_trap('division', int(z'83'))
  call test_trap('overflow', int(z'84'))
  call test_trap('underflow', int(z'85'))
  call test_trap('inexact', int(z'86'))
  call test_words()
  call finish()

contains

  subroutine test_trap(name, code)
    character(len=*), intent(in) :: name
    integer, intent(in) :: code
    character(len=260) :: program_name
    integer :: unit, seen_signal, seen_code, status

    call get_command_argument(0, program_name)
    call expect('exit status, '//name, int(runqq(program_name, name)), 9)
    open (newunit=unit, file=record, status='old')
    read (unit, *, iostat=status) seen_signal, seen_code
    close (unit, status='delete')
    call expect('handler called, '//name, status, 0)
    call expect('signal, '//name, seen_signal, 8)
    call expect('code, '//name, seen_code, code)
  end subroutine test_trap

  subroutine run_into(name)
    character(len=*), intent(in) :: name
    real(8), volatile :: zero, one, largest, smallest, result

    open (11, file=record, status='replace')
    zero = 0
    one = 1
    largest = huge(one)
    smallest = tiny(one)
    if (ieee_handler('set', name, keep_exception) /= 0) error stop 2
    select case (name)
    case ('invalid')
      result = zero/zero
    case ('division')
      result = one/zero
    case ('overflow')
      result = largest*largest
    case ('underflow')
      result = smallest*smallest
    case ('inexact')
      result = one/3
    end select
    stop 3
  end subroutine run_into

  ! The unit is closed by the end of the program.
  subroutine keep_exception(signum, code)
    integer(4) :: signum, code

    write (11, *) signum, code
  end subroutine keep_exception

  subroutine test_words()
    integer(2) :: word
    character(len=10) :: text
    real(8), volatile :: one = 1, third, zero = 0
    integer(4) :: info(2) = [9, 5]

    call expect('set', ieee_flags('set', 'direction', 'positive', text), 0)
    third = one/3
    call expect('get', ieee_flags('get', 'direction', ' ', text), 2)
    call expect('text', text, 'positive')
    call getcontrolfpqq(word)
    call expect('word', int(word), int(z'B3F'))
    call setcontrolfpqq(int(z'33F', 2))
    call expect('rounded up', third > one/3)
    call scwrqq(word)
    call expect('word', int(word), int(z'33F'))
    call lcwrqq(int(z'23F', 2))

    call clearstatusfpqq()
    third = one/zero
    call getstatusfpqq(word)
    call expect('status', int(word), 4)
    call sswrqq(word)
    call expect('status', int(word), 4)
    call expect('flag', ieee_flags('get', 'exception', 'division', text), 4)
    call expect('clearall', ieee_flags('clearall', ' ', ' ', text), 0)
    call expect('no handler', ieee_handler('get', 'invalid'), 0_8)
    call matherrqq('log', 3_2, info, word)
    call expect('matherrqq', info(1)*100 + info(2)*10 + word, 50)
  end subroutine test_words

end program floating_point_test
