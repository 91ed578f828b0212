! SPDX-License-Identifier: MIT
! The serial routines as a Fortran program calls them, on no port at all; the example has one.
program serial_test
  use check
  use qwport
  implicit none

  integer, parameter :: none = 250
  character(len=4) :: text
  integer(8) :: handle
  integer :: value, i

  call expect('unknown ports', [sport_connect(-1), sport_connect_ex(-1, sport_end_lf, 8192), ierrno(), &
    sport_write_data(none, 'a'), sport_write_line(none, 'a', 1), sport_read_data(none, text), &
    sport_read_line(none, text, value), sport_peek_data(none), sport_peek_line(none, value), sport_get_state(none), &
    sport_set_state(none, stopbits=0_1), sport_get_state_ex(none), sport_set_state_ex(none, xonlim=1_2), &
    sport_get_timeouts(none), sport_set_timeouts(none, writeconstant=1), sport_show_state(none), &
    sport_get_handle(none, handle), sport_special_func(none, setbreak), sport_purge(none, purge_rxclear), &
    sport_cancel_io(none), sport_release(none)], [(87, i=1, 21)])
  call finish()

end program serial_test
