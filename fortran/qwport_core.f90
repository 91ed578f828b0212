! SPDX-License-Identifier: MIT
! The routines of the core runtime that programs call themselves.
module qwport_core
  use, intrinsic :: iso_c_binding, only: c_int32_t
  implicit none
  private
  public :: commitqq, errsns, flushqq

  interface

    ! The error status of the last failure in the process: error, GNU Fortran's error number; system, the
    ! C error number; secondary status, unit and condition. All are 0 if nothing failed since the last
    ! call: the query clears them.
    subroutine errsns(error, system, status, unit, condition)
      integer(4), intent(out), optional :: error
      integer(4), intent(out), optional :: system
      integer(4), intent(out), optional :: status
      integer(4), intent(out), optional :: unit
      integer(4), intent(out), optional :: condition
    end subroutine errsns

    function commitqq_raw(unit) result(answer) bind(C, name='COMMITQQ')
      import :: c_int32_t
      integer(c_int32_t), intent(in) :: unit
      integer(c_int32_t) :: answer
    end function commitqq_raw

    function flushqq_raw(unit) result(answer) bind(C, name='FLUSHQQ')
      import :: c_int32_t
      integer(c_int32_t), intent(in), optional :: unit
      integer(c_int32_t) :: answer
    end function flushqq_raw

  end interface

contains

  ! GNU Fortran takes LOGICAL values as 0 or 1, and .not. of -1 would be true again. Routines whose true
  ! may be -1 are therefore called through a function that looks at the lowest bit.

  ! Flushes a unit and has the operating system write its file to disk. False for a unit that is not
  ! open or a write that failed.
  function commitqq(unit) result(done)
    integer(4), intent(in) :: unit
    logical(4) :: done

    done = btest(commitqq_raw(unit), 0)
  end function commitqq

  ! Flushes a unit, or every unit. False for a unit that is not open.
  function flushqq(unit) result(done)
    integer(4), intent(in), optional :: unit
    logical(4) :: done

    done = btest(flushqq_raw(unit), 0)
  end function flushqq

end module qwport_core
