! SPDX-License-Identifier: MIT
! Serial ports. A port is named by its number (3 is COM3) and belongs to the thread that connected it; reading
! takes bytes that a reader thread of the port has read in advance. Every routine gives 0 or a Windows error
! number, which IERRNO gives too: 87 for a port that this thread has not connected, else what the host said. Outputs
! keep their values after a failure.
module qwport_serial
  implicit none
  public

  ! Line-mode bits, for the options of SPORT_CONNECT: what reading drops, what ends a line, and what
  ! SPORT_WRITE_LINE adds. The default is 23.
  integer(4), parameter :: sport_drop_cr = 1
  integer(4), parameter :: sport_drop_lf = 2
  integer(4), parameter :: sport_end_cr = 4
  integer(4), parameter :: sport_end_lf = 8
  integer(4), parameter :: sport_end_crlf = 12  ! an LF that follows a CR
  integer(4), parameter :: sport_out_cr = 16
  integer(4), parameter :: sport_out_lf = 32

  ! What SPORT_SPECIAL_FUNC does.
  integer(4), parameter :: setxoff = 1
  integer(4), parameter :: setxon = 2
  integer(4), parameter :: setrts = 3
  integer(4), parameter :: clrrts = 4
  integer(4), parameter :: setdtr = 5
  integer(4), parameter :: clrdtr = 6
  integer(4), parameter :: resetdev = 7
  integer(4), parameter :: setbreak = 8
  integer(4), parameter :: clrbreak = 9

  ! What SPORT_PURGE does; add them up.
  integer(4), parameter :: purge_txabort = 1
  integer(4), parameter :: purge_rxabort = 2
  integer(4), parameter :: purge_txclear = 4
  integer(4), parameter :: purge_rxclear = 8

  interface

    ! Opens a port, sets its timeouts and starts its reader. options: the sum of line-mode bits, default 23.
    ! buffersize: bytes that may wait to be read, at least 4096, default 16384. 87 also for a negative or connected
    ! port; 2 there is no such port; 5 another program has it; 8 no memory, or more than 128 ports above 255.
    function sport_connect(port, options) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(in), optional :: options
      integer(4) :: status
    end function sport_connect

    function sport_connect_ex(port, options, buffersize) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(in), optional :: options
      integer(4), intent(in), optional :: buffersize
      integer(4) :: status
    end function sport_connect_ex

    ! Ends the port's reader if one runs, and then returns with the port still connected: a second call closes it.
    ! 12: the reader did not end within 10 seconds and was ended by force.
    function sport_release(port) result(status)
      integer(4), intent(in) :: port
      integer(4) :: status
    end function sport_release

    ! The port's Windows handle.
    function sport_get_handle(port, handle) result(status)
      integer(4), intent(in) :: port
      integer(8), intent(inout), optional :: handle
      integer(4) :: status
    end function sport_get_handle

    ! Makes the device do something: one of SETXOFF to CLRBREAK.
    function sport_special_func(port, function) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(in) :: function
      integer(4) :: status
    end function sport_special_func

    ! Aborts transfers or drops bytes in the device: the sum of PURGE bits. Bytes that the reader has read stay.
    function sport_purge(port, function) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(in) :: function
      integer(4) :: status
    end function sport_purge

    ! Ends the reader, drops what it has read, and aborts and clears the device's transfers.
    function sport_cancel_io(port) result(status)
      integer(4), intent(in) :: port
      integer(4) :: status
    end function sport_cancel_io

    ! Writes data; SPORT_WRITE_LINE adds the port's line end. count: on entry the bytes to write, blanks included;
    ! where it is left out or 0, the text without its trailing blanks; 87 if it is negative. On return the bytes
    ! written, the line end included. A constant may be passed, and stays. 996: the device took only a part in time
    ! (see count).
    function sport_write_data(port, buffer, count) result(status)
      integer(4), intent(in) :: port
      character(len=*), intent(in) :: buffer
      integer(4), optional :: count
      integer(4) :: status
    end function sport_write_data

    function sport_write_line(port, buffer, count) result(status)
      integer(4), intent(in) :: port
      character(len=*), intent(in) :: buffer
      integer(4), optional :: count
      integer(4) :: status
    end function sport_write_line

    ! Waits until there are bytes, without a limit, and takes what is there, at most len(buffer) bytes, the
    ! dropped ones among them. count: the bytes stored; the rest of buffer is blank.
    function sport_read_data(port, buffer, count) result(status)
      integer(4), intent(in) :: port
      character(len=*), intent(inout) :: buffer
      integer(4), intent(inout), optional :: count
      integer(4) :: status
    end function sport_read_data

    ! As SPORT_READ_DATA, but waits on until a line has ended or buffer is full.
    function sport_read_line(port, buffer, count) result(status)
      integer(4), intent(in) :: port
      character(len=*), intent(inout) :: buffer
      integer(4), intent(inout), optional :: count
      integer(4) :: status
    end function sport_read_line

    ! How many bytes SPORT_READ_DATA would store now, or SPORT_READ_LINE up to the first line end. Waits for nothing.
    ! present: 1 if there are any (not: a whole line), else 0.
    function sport_peek_data(port, present, count) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(inout), optional :: present
      integer(4), intent(inout), optional :: count
      integer(4) :: status
    end function sport_peek_data

    function sport_peek_line(port, present, count) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(inout), optional :: present
      integer(4), intent(inout), optional :: count
      integer(4) :: status
    end function sport_peek_line

    ! The line settings. parity: 0 none, 1 odd, 2 even, 3 mark, 4 space. stopbits: 0 one, 1 one and a half, 2 two.
    function sport_get_state(port, baudrate, parity, databits, stopbits) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(inout), optional :: baudrate
      integer(4), intent(inout), optional :: parity
      integer(4), intent(inout), optional :: databits
      integer(4), intent(inout), optional :: stopbits
      integer(4) :: status
    end function sport_get_state

    ! Changes the settings that are given, and drops what is in the device if one changed. Below 300 baud there are
    ! two stop bits in any case.
    function sport_set_state(port, baudrate, parity, databits, stopbits) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(in), optional :: baudrate
      integer(4), intent(in), optional :: parity
      type(*), intent(in), optional :: databits  ! INTEGER of any kind
      type(*), intent(in), optional :: stopbits  ! INTEGER of any kind
      integer(4) :: status
    end function sport_set_state

    ! All line settings. Flags are 0 or 1, dtrcntrl and rtscntrl 0 to 3; characters are their codes.
    function sport_get_state_ex( &
        port, baudrate, parity, databits, stopbits, binmode, dtrcntrl, rtscntrl, outctsflow, &
        outdsrflow, dsrsens, outxonoff, inxonoff, xonlim, xofflim, txcontonxoff, errabort, &
        errcharenbl, nullstrip, xonchar, xoffchar, errchar, eofchar, evtchar &
        ) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(inout), optional :: baudrate
      integer(4), intent(inout), optional :: parity
      integer(4), intent(inout), optional :: databits
      integer(4), intent(inout), optional :: stopbits
      integer(4), intent(inout), optional :: binmode
      integer(4), intent(inout), optional :: dtrcntrl
      integer(4), intent(inout), optional :: rtscntrl
      integer(4), intent(inout), optional :: outctsflow
      integer(4), intent(inout), optional :: outdsrflow
      integer(4), intent(inout), optional :: dsrsens
      integer(4), intent(inout), optional :: outxonoff
      integer(4), intent(inout), optional :: inxonoff
      integer(4), intent(inout), optional :: xonlim
      integer(4), intent(inout), optional :: xofflim
      integer(4), intent(inout), optional :: txcontonxoff
      integer(4), intent(inout), optional :: errabort
      integer(4), intent(inout), optional :: errcharenbl
      integer(4), intent(inout), optional :: nullstrip
      integer(1), intent(inout), optional :: xonchar
      integer(1), intent(inout), optional :: xoffchar
      integer(1), intent(inout), optional :: errchar
      integer(1), intent(inout), optional :: eofchar
      integer(1), intent(inout), optional :: evtchar
      integer(4) :: status
    end function sport_get_state_ex

    ! Changes the settings that are given; drops nothing. binmode is set where
    ! it is left out. zeroblock: not 0 clears every setting that is not given.
    function sport_set_state_ex( &
        port, baudrate, parity, databits, stopbits, binmode, dtrcntrl, rtscntrl, outctsflow, &
        outdsrflow, dsrsens, outxonoff, inxonoff, xonlim, xofflim, txcontonxoff, errabort, &
        errcharenbl, nullstrip, xonchar, xoffchar, errchar, eofchar, evtchar, zeroblock &
        ) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(in), optional :: baudrate
      integer(4), intent(in), optional :: parity
      type(*), intent(in), optional :: databits  ! INTEGER of any kind
      type(*), intent(in), optional :: stopbits  ! INTEGER of any kind
      integer(4), intent(in), optional :: binmode
      integer(4), intent(in), optional :: dtrcntrl
      integer(4), intent(in), optional :: rtscntrl
      integer(4), intent(in), optional :: outctsflow
      integer(4), intent(in), optional :: outdsrflow
      integer(4), intent(in), optional :: dsrsens
      integer(4), intent(in), optional :: outxonoff
      integer(4), intent(in), optional :: inxonoff
      type(*), intent(in), optional :: xonlim  ! INTEGER, not of kind 1
      type(*), intent(in), optional :: xofflim  ! INTEGER, not of kind 1
      integer(4), intent(in), optional :: txcontonxoff
      integer(4), intent(in), optional :: errabort
      integer(4), intent(in), optional :: errcharenbl
      integer(4), intent(in), optional :: nullstrip
      type(*), intent(in), optional :: xonchar  ! INTEGER of any kind
      type(*), intent(in), optional :: xoffchar  ! INTEGER of any kind
      type(*), intent(in), optional :: errchar  ! INTEGER of any kind
      type(*), intent(in), optional :: eofchar  ! INTEGER of any kind
      type(*), intent(in), optional :: evtchar  ! INTEGER of any kind
      integer(4), intent(in), optional :: zeroblock
      integer(4) :: status
    end function sport_set_state_ex

    ! Timeouts in milliseconds: the longest gap between two bytes of one device read; what a write may take a byte,
    ! and in addition. 200, 2 and 2000 after connection.
    function sport_get_timeouts(port, readinterval, writemultiplier, writeconstant) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(inout), optional :: readinterval
      integer(4), intent(inout), optional :: writemultiplier
      integer(4), intent(inout), optional :: writeconstant
      integer(4) :: status
    end function sport_get_timeouts

    function sport_set_timeouts(port, readinterval, writemultiplier, writeconstant) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(in), optional :: readinterval
      integer(4), intent(in), optional :: writemultiplier
      integer(4), intent(in), optional :: writeconstant
      integer(4) :: status
    end function sport_set_timeouts

    ! Prints the settings to the process's standard output, beside unit 6: flush that before. level: 0 (default) for a
    ! line, 1 to 4 for more and more detail, 10 more for the timeouts as well.
    function sport_show_state(port, level) result(status)
      integer(4), intent(in) :: port
      integer(4), intent(in), optional :: level
      integer(4) :: status
    end function sport_show_state

  end interface

end module qwport_serial
