! SPDX-License-Identifier: MIT
! Positions in texts, counted from 1.
module qwport_text
  implicit none
  public

  interface

    ! The position of the last character that is not a blank, or 0.
    function lnblnk(string) result(position)
      character(len=*), intent(in) :: string
      integer(4) :: position
    end function lnblnk

    ! The position at which substr occurs last in string, or 0. Trailing blanks of both count; an empty substr
    ! is found behind the last character.
    function rindex(string, substr) result(position)
      character(len=*), intent(in) :: string
      character(len=*), intent(in) :: substr
      integer(4) :: position
    end function rindex

  end interface

end module qwport_text
