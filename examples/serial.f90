! Asks the instrument on a serial port for its name. On COM3: serial_instrument 3
program serial_instrument
  use qwport
  implicit none
  character(len=20) :: argument
  character(len=80) :: answer
  integer :: port, count

  call get_command_argument(1, argument)
  read (argument, *) port
  call check('connect', sport_connect(port))
  call check('set', sport_set_state(port, baudrate=9600, parity=0, databits=8, stopbits=0))
  ! No count here: on entry it would say how many bytes to write.
  call check('write to', sport_write_line(port, '*IDN?'))
  call check('read from', sport_read_line(port, answer, count))
  print '(3a,i0,a)', 'The instrument says "', answer(:count), '", ', count, ' characters'
  ! The first release ends the port's reader, the second closes the port.
  call check('stop', sport_release(port))
  call check('release', sport_release(port))
contains
  subroutine check(action, status)
    character(len=*), intent(in) :: action
    integer, intent(in) :: status
    if (status == 0) return
    print '(3a,i0,a,i0)', 'Cannot ', action, ' port ', port, ': Windows error ', status
    call exit(1)
  end subroutine check
end program serial_instrument
