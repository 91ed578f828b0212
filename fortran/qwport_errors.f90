! SPDX-License-Identifier: MIT
! Identification and error state.
module qwport_errors
  implicit none
  public

  interface

    ! The library's title, version and build date, separated by tabs. Result: always 4.
    function for_qwport_version(text) result(constant)
      character(len=*), intent(out) :: text
      integer(4) :: constant
    end function for_qwport_version

    ! The error number that a routine recorded last, 0 if none did. FSEEK and FSEEKI8 set it to their
    ! result on every call, 0 included.
    function ierrno() result(error)
      integer(4) :: error
    end function ierrno

    ! The calling thread's C errno. GETLASTERRORQQ is a second name.
    function getlasterror() result(error)
      integer(4) :: error
    end function getlasterror

    function getlasterrorqq() result(error)
      integer(4) :: error
    end function getlasterrorqq

  end interface

end module qwport_errors
