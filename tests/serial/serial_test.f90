! SPDX-License-Identifier: MIT
! The serial routines as a Fortran program meets them: on no port at all, and with the ports that
! QWPORT_SERIAL_PORTS names if there are any.
program serial_test
  use check
  use qwport
  implicit none

  integer, parameter :: none = 250
  integer :: ports(2), length
  character(len=40) :: names

  call test_unknown_port()
  call get_environment_variable('QWPORT_SERIAL_PORTS', names, length)
  if (length > 0) then
    read (names, *) ports
    call test_pair(ports(1), ports(2))
  end if
  call finish()

contains

  subroutine test_unknown_port()
    character(len=4) :: text
    integer(8) :: handle
    integer :: value

    call expect('connect', sport_connect(-1) + sport_connect_ex(-1, sport_end_lf, 8192), 2*87)
    call expect('ierrno', ierrno(), 87)
    call expect('transfer', all([sport_write_data(none, 'a'), sport_write_line(none, 'a', 1), sport_read_data(none, text), &
      sport_read_line(none, text, value), sport_peek_data(none), sport_peek_line(none, value)] == 87))
    call expect('state', all([sport_get_state(none), sport_set_state(none, stopbits=0_1), sport_get_state_ex(none), &
      sport_set_state_ex(none, xonlim=1_2), sport_get_timeouts(none), sport_set_timeouts(none, writeconstant=1), &
      sport_show_state(none)] == 87))
    call expect('control', all([sport_get_handle(none, handle), sport_special_func(none, setbreak), &
      sport_purge(none, purge_rxclear), sport_cancel_io(none), sport_release(none)] == 87))
  end subroutine test_unknown_port

  subroutine test_pair(a, b)
    integer, intent(in) :: a, b
    character(len=8) :: text
    integer(8) :: handle
    integer(1) :: xonchar
    integer :: count, baudrate, stopbits, interval

    call expect('connect both', sport_connect(a) + sport_connect_ex(b, sport_end_lf + sport_out_lf), 0)
    call expect('handle', sport_get_handle(a, handle) == 0 .and. handle /= 0)
    call expect('set', sport_set_state(a, baudrate=9600), 0)
    call expect('set everything', sport_set_state_ex(b, baudrate=19200, xofflim=100_2, xonchar=17_1), 0)
    call expect('get', sport_get_state(a, baudrate, stopbits=stopbits) == 0 .and. baudrate == 9600 .and. stopbits == 0)
    call expect('get everything', sport_get_state_ex(b, baudrate, xonchar=xonchar), 0)
    call expect('what was set', baudrate == 19200 .and. xonchar == 17)
    call expect('timeouts', sport_set_timeouts(a, 150) == 0 .and. sport_get_timeouts(a, interval) == 0 .and. interval == 150)

    ! A constant count stays what it is.
    call expect('write', sport_write_data(a, 'ab  cd', 5), 0)
    count = 0
    call expect('write a line', sport_write_line(a, 'x'//new_line('a')//'yz  ', count) == 0 .and. count == 5)
    call expect('read a line', sport_read_line(b, text, count) == 0 .and. count == 7 .and. text == 'ab  cx'//new_line('a'))
    call expect('read the rest', sport_read_data(b, text, count), 0)
    call expect('the rest', count == 3 .and. text == 'yz'//achar(13))
    call expect('peek', sport_peek_data(b, count=count) == 0 .and. count == 0)
    call expect('stop and release a', sport_cancel_io(a) + sport_release(a), 0)
    call expect('stop and release b', sport_release(b) + sport_release(b), 0)
    call expect('it is released', sport_release(b), 87)
  end subroutine test_pair

end program serial_test
