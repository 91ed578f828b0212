! SPDX-License-Identifier: MIT
! Reading a simulated serial port with SPORT_READ_DATA, against a bare loop of overlapped reads on the same device:
! bytes in a row from a device that is never empty, and a byte's way from its arrival to a caller that waits.
program serial_ports
  use qwport
  use timing
  implicit none

  interface
    subroutine simulate_port() bind(C)
    end subroutine simulate_port
    subroutine set_speed(bytes_a_second) bind(C)
      use, intrinsic :: iso_c_binding, only: c_double
      real(c_double), value :: bytes_a_second
    end subroutine set_speed
    subroutine order_byte() bind(C)
    end subroutine order_byte
    real(c_double) function seconds_since_arrival() bind(C)
      use, intrinsic :: iso_c_binding, only: c_double
    end function seconds_since_arrival
    subroutine bare_reads(bytes) bind(C)
      use, intrinsic :: iso_c_binding, only: c_int64_t
      integer(c_int64_t), value :: bytes
    end subroutine bare_reads
  end interface

  integer, parameter :: port = 7, rounds = 5, waits = 101
  real(8), parameter :: as_fast_as_memory = -1

  call simulate_port()
  call print_head('', 'library', 'bare reads')
  call measure_stream('a KiB, 921600 baud', 92160d0, 48)
  call measure_stream('a KiB, 12 Mbit/s', 1.2d6, 512)
  call measure_stream('a KiB, as fast as memory', as_fast_as_memory, 16384)
  call measure_arrival()

contains

  subroutine check(status)
    integer, intent(in) :: status

    if (status /= 0) call abort('a serial routine failed')
  end subroutine check

  ! A fresh port for each round: a reader goes on reading while the bare loop would want to.
  subroutine measure_stream(what, speed, kibibytes)
    character(len=*), intent(in) :: what
    real(8), intent(in) :: speed
    integer, intent(in) :: kibibytes
    real(8) :: library(rounds), bare(rounds), start
    integer :: i

    call set_speed(speed)
    do i = 1, rounds
      call check(sport_connect(port, 0))
      start = now()
      call read_bytes(kibibytes*1024)
      library(i) = now() - start
      call check(sport_release(port) + sport_release(port))
      start = now()
      call bare_reads(kibibytes*1024_8)
      bare(i) = now() - start
    end do
    call report(what, library, bare, kibibytes)
  end subroutine measure_stream

  subroutine read_bytes(bytes)
    integer, intent(in) :: bytes
    character(len=16384) :: buffer
    integer :: received, count

    received = 0
    do while (received < bytes)
      call check(sport_read_data(port, buffer, count))
      received = received + count
    end do
  end subroutine read_bytes

  subroutine measure_arrival()
    real(8) :: library(waits), bare(waits)
    integer :: i

    call set_speed(0d0)
    call check(sport_connect(port, 0))
    do i = 1, waits
      call order_byte()
      call read_bytes(1)
      library(i) = seconds_since_arrival()
    end do
    call check(sport_release(port) + sport_release(port))
    do i = 1, waits
      call order_byte()
      call bare_reads(1_8)
      bare(i) = seconds_since_arrival()
    end do
    call report('a byte that is waited for', library, bare, 1)
  end subroutine measure_arrival

end program serial_ports
