! SPDX-License-Identifier: MIT
! The floating-point environment of the calling thread.
module qwport_floating_point
  implicit none
  public
  private :: lcwrqq_int2, lcwrqq_int4, setcontrolfpqq_int2, setcontrolfpqq_int4

  interface

    ! Asks for or changes rounding, precision, traps and flags. action: 'get', 'set', 'clear' or 'clearall'; mode:
    ! 'direction', 'precision' or 'exception'; in: the setting; all in lower case. out: the answer to 'get', else
    ! blank. Result: of 'get' the answer as a number, else 0; 1 for a keyword that is not known.
    function ieee_flags(action, mode, in, out) result(answer)
      character(len=*), intent(in) :: action
      character(len=*), intent(in) :: mode
      character(len=*), intent(in) :: in
      character(len=*), intent(out) :: out
      integer(4) :: answer
    end function ieee_flags

    ! Sets the procedure for an exception that traps. action: 'get', 'set' or 'clear'; exception: 'inexact',
    ! 'division', 'underflow', 'overflow', 'invalid', 'all' or 'common'. handler: for 'set', a subroutine with two
    ! INTEGER(4) arguments, 8 and the code of the exception; when it returns the program ends with status 9.
    ! Result: 0; of 'get' the handler's address, or 0; 1 for a keyword that is not known.
    function ieee_handler(action, exception, handler) result(answer)
      character(len=*), intent(in) :: action
      character(len=*), intent(in) :: exception
      optional :: handler
      external :: handler
      integer(8) :: answer
    end function ieee_handler

    ! The control word in the layout of the x87. SCWRQQ is a second name.
    subroutine getcontrolfpqq(control)
      integer(2), intent(out) :: control
    end subroutine getcontrolfpqq

    subroutine scwrqq(control)
      integer(2), intent(out) :: control
    end subroutine scwrqq

    ! The exceptions that have occurred, as bits in the layout of the x87: from the math run-time, and from the C
    ! run-time.
    subroutine getstatusfpqq(status)
      integer(2), intent(out) :: status
    end subroutine getstatusfpqq

    subroutine sswrqq(status)
      integer(2), intent(out) :: status
    end subroutine sswrqq

    ! Forgets the exceptions that have occurred.
    subroutine clearstatusfpqq()
    end subroutine clearstatusfpqq

    ! Prints the text of a math-library error on standard output. info: a record that begins with the type of the
    ! error, an INTEGER(4): 1 domain, 2 singularity, 3 overflow, 4 underflow, 5 total and 6 partial loss of
    ! precision; any other becomes 0. retcode: 0.
    subroutine matherrqq(name, name_length, info, retcode)
      character(len=*), intent(in) :: name
      integer(2), intent(in) :: name_length
      !GCC$ ATTRIBUTES NO_ARG_CHECK :: info
      type(*), intent(inout) :: info
      integer(2), intent(out) :: retcode
    end subroutine matherrqq

  end interface

  ! Set the control word; LCWRQQ takes a precision of 53 bits as 64. The procedure NAME_KIND is the export NAME to the
  ! linker: an INTEGER(4), as constants are, begins with the INTEGER(2) of its value.
  interface setcontrolfpqq
    subroutine setcontrolfpqq_int2(control)
      integer(2), intent(in) :: control
    end subroutine setcontrolfpqq_int2

    subroutine setcontrolfpqq_int4(control)
      integer(4), intent(in) :: control
    end subroutine setcontrolfpqq_int4
  end interface setcontrolfpqq

  interface lcwrqq
    subroutine lcwrqq_int2(control)
      integer(2), intent(in) :: control
    end subroutine lcwrqq_int2

    subroutine lcwrqq_int4(control)
      integer(4), intent(in) :: control
    end subroutine lcwrqq_int4
  end interface lcwrqq

end module qwport_floating_point
