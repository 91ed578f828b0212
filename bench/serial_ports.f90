! SPDX-License-Identifier: MIT
! Reading and writing a serial port against the host's own calls on the same handle, over the two ports of
! QWPORT_SERIAL_PORTS, whose ends are joined: the first is measured, the second is the far end.
program serial_ports
  use qwport
  use timing
  implicit none

  interface
    subroutine open_far_end(port) bind(C)
      use, intrinsic :: iso_c_binding, only: c_int32_t
      integer(c_int32_t), value :: port
    end subroutine open_far_end
    subroutine send_from_far_end(bytes) bind(C)
      use, intrinsic :: iso_c_binding, only: c_int64_t
      integer(c_int64_t), value :: bytes
    end subroutine send_from_far_end
    subroutine bare_reads(device, bytes) bind(C)
      use, intrinsic :: iso_c_binding, only: c_int64_t
      integer(c_int64_t), value :: device, bytes
    end subroutine bare_reads
    subroutine bare_writes(device, writes) bind(C)
      use, intrinsic :: iso_c_binding, only: c_int32_t, c_int64_t
      integer(c_int64_t), value :: device
      integer(c_int32_t), value :: writes
    end subroutine bare_writes
  end interface

  integer, parameter :: writes = 500, kibibytes = 512
  integer :: ports(2), length
  integer(8) :: device
  character(len=40) :: names

  call get_environment_variable('QWPORT_SERIAL_PORTS', names, length)
  if (length == 0) then
    print '(/a)', 'serial_ports: skipped, QWPORT_SERIAL_PORTS names no two ports whose ends are joined'
    stop
  end if
  read (names, *) ports
  call open_far_end(ports(2))
  call check(sport_connect(ports(1), 0))
  call check(sport_set_state(ports(1), 115200, 0, 8, 0))
  call check(sport_get_handle(ports(1), device))
  call print_head('', 'library', 'bare calls')
  call measure_writes(21)
  call check(sport_cancel_io(ports(1)))
  call measure_reads('a KiB read, nothing dropped', 0, 15)
  call measure_reads('a KiB read, CR and LF dropped', 23, 15)
  call check(sport_release(ports(1)))

contains

  subroutine check(status)
    integer, intent(in) :: status

    if (status /= 0) call abort('a serial routine failed')
  end subroutine check

  subroutine measure_writes(rounds)
    integer, intent(in) :: rounds
    real(8) :: library(rounds), bare(rounds), start
    integer :: i, j

    do i = 1, rounds
      start = now()
      do j = 1, writes
        call check(sport_write_data(ports(1), 'x'))
      end do
      library(i) = now() - start
      start = now()
      call bare_writes(device, writes)
      bare(i) = now() - start
    end do
    call report('SPORT_WRITE_DATA of one byte', library, bare, writes, 1.1d0)
  end subroutine measure_writes

  ! The port's reader ends before the bare calls, so that they alone read.
  subroutine measure_reads(what, mode, rounds)
    character(len=*), intent(in) :: what
    integer, intent(in) :: mode, rounds
    real(8) :: library(rounds), bare(rounds), start
    integer :: i

    call check(sport_release(ports(1)))
    call check(sport_connect(ports(1), mode) + sport_get_handle(ports(1), device))
    do i = 1, rounds
      call check(sport_peek_data(ports(1)))
      start = now()
      call read_bytes(kibibytes*1024)
      library(i) = now() - start
      call check(sport_cancel_io(ports(1)))
      start = now()
      call send_from_far_end(kibibytes*1024_8)
      call bare_reads(device, kibibytes*1024_8)
      bare(i) = now() - start
    end do
    call report(what, library, bare, kibibytes, 1/0.95d0)
  end subroutine measure_reads

  subroutine read_bytes(bytes)
    integer, intent(in) :: bytes
    character(len=16384) :: buffer
    integer :: received, count

    call send_from_far_end(int(bytes, 8))
    received = 0
    do while (received < bytes)
      call check(sport_read_data(ports(1), buffer, count))
      received = received + count
    end do
  end subroutine read_bytes

end program serial_ports
