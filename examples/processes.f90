! A command, a variable that it sees, and a signal that is handled.
program processes
  use qwport
  implicit none
  character(len=12) :: name, value
  integer(8) :: previous

  if (.not. setenvqq('FRUIT_1=apple') .or. .not. setenvqq('FRUIT_2=plum')) call abort('no environment')
  do
    call scanenv('FRUIT', name, value)
    if (name == ' ') exit
    print '(4a)', trim(name), ' is ', trim(value)
  end do
  print '(a,i0)', 'exit code ', system('if "%FRUIT_2%" == "plum" exit 40')

  previous = signal(15, goodbye, -1)
  if (kill(getpid(), 15) == 0) print '(a)', 'and the program goes on'
contains
  subroutine goodbye(signum)
    integer(4) :: signum

    print '(a,i0)', 'asked to end by signal ', signum
  end subroutine goodbye
end program processes
