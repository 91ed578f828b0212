! SPDX-License-Identifier: MIT
! Characters and positions of Fortran units, terminals, and the end of the program. Units are numbers of files that the
! program opened with OPEN; 5 and 6 are standard input and output. Transfers take a file's bytes as they
! are, line ends included (CR and LF in files that GNU Fortran wrote formatted on Windows).
module qwport_units
  implicit none
  public

  interface

    ! Ends the program abnormally, with status 3, after closing its units; "abort: " and the message (at
    ! most 240 characters) go to standard error.
    subroutine abort(message)
      character(len=*), intent(in), optional :: message
    end subroutine abort

    ! Ends the program with this exit status, default 0, after closing its units.
    subroutine exit(status)
      integer(4), intent(in), optional :: status
    end subroutine exit

    ! Writes what is buffered for a unit, or for every unit, to its file. FLUSHQQ tells whether the unit
    ! was open.
    subroutine flush(unit)
      integer(4), intent(in), optional :: unit
    end subroutine flush

    ! Reads the next character of a unit into the first position of c, which changes on success only.
    ! Result: 0, -1 at end of file (nothing is recorded), or 22 for any other failure (recorded).
    function fgetc(unit, c) result(status)
      integer(4), intent(in) :: unit
      character(len=*), intent(inout) :: c
      integer(4) :: status
    end function fgetc

    ! FGETC on unit 5. Result: 0, or -1 for end of file and every failure; nothing is recorded.
    function getc(c) result(status)
      character(len=*), intent(inout) :: c
      integer(4) :: status
    end function getc

    ! Writes the first character of c to a unit. Result: 0, or 22 for a failure (recorded), as for a unit opened
    ! with ACTION='READ'.
    function fputc(unit, c) result(status)
      integer(4), intent(in) :: unit
      character(len=*), intent(in) :: c
      integer(4) :: status
    end function fputc

    ! FPUTC on unit 6.
    function putc(c) result(status)
      character(len=*), intent(in) :: c
      integer(4) :: status
    end function putc

    ! Positions a unit. offset: bytes. origin: 0 from the start of the file, 1 from the present position,
    ! 2 from the end. Behind the end is a position. Result: 0 or an error code, which IERRNO gives too: -9 the unit is not open, -22 no
    ! such position or origin, -29 the unit cannot be positioned. A failure moves nothing.
    function fseek(unit, offset, origin) result(status)
      integer(4), intent(in) :: unit
      integer(4), intent(in) :: offset
      integer(4), intent(in) :: origin
      integer(4) :: status
    end function fseek

    function fseeki8(unit, offset, origin) result(status)
      integer(4), intent(in) :: unit
      integer(8), intent(in) :: offset
      integer(4), intent(in) :: origin
      integer(4) :: status
    end function fseeki8

    ! The position of a unit: bytes from the start of its file, or a negative error code: -9 the unit is
    ! not open, -29 it has no position, -34 (FTELL and GETPOS) it is 2 GiB or more. IERRNO gives the code's
    ! positive value.
    function ftell(unit) result(position)
      integer(4), intent(in) :: unit
      integer(4) :: position
    end function ftell

    function ftelli8(unit) result(position)
      integer(4), intent(in) :: unit
      integer(8) :: position
    end function ftelli8

    ! As FTELL and FTELLI8, but IERRNO is left alone.
    function getpos(unit) result(position)
      integer(4), intent(in) :: unit
      integer(4) :: position
    end function getpos

    function getposi8(unit) result(position)
      integer(4), intent(in) :: unit
      integer(8) :: position
    end function getposi8

    ! Whether a unit is a terminal, and its name (blank if it is none).
    function isatty(lunit) result(answer)
      integer(4), intent(in) :: lunit
      logical(4) :: answer
    end function isatty

    subroutine ttynam(name, lunit)
      character(len=*), intent(out) :: name
      integer(4), intent(in) :: lunit
    end subroutine ttynam

  end interface

end module qwport_units
