! SPDX-License-Identifier: MIT
! Bits and shifts. Bits count from 0, the least significant; a position or count that is negative or beyond
! the width is out of range. Where Fortran has a generic intrinsic of the name, the routine is added to it:
! other kinds are the intrinsic's.
module qwport_bits
  use, intrinsic :: iso_c_binding, only: c_int32_t, c_int64_t
  implicit none
  public
  private :: c_int32_t, c_int64_t
  private :: dshiftl_int8, dshiftr_int8, lshift_int4, rshift_int4, shiftl_int4, shiftr_int4

  interface

    ! Clear or set a bit of i; out of range nothing happens.
    subroutine bic(ibit, i)
      integer(4), intent(in) :: ibit
      integer(4), intent(inout) :: i
    end subroutine bic

    subroutine bici8(ibit, i)
      integer(4), intent(in) :: ibit
      integer(8), intent(inout) :: i
    end subroutine bici8

    subroutine bis(ibit, i)
      integer(4), intent(in) :: ibit
      integer(4), intent(inout) :: i
    end subroutine bis

    subroutine bisi8(ibit, i)
      integer(4), intent(in) :: ibit
      integer(8), intent(inout) :: i
    end subroutine bisi8

    ! Whether a bit of i is set; false out of range.
    function bit(ibit, i) result(set)
      integer(4), intent(in) :: ibit, i
      logical(4) :: set
    end function bit

    function biti8(ibit, i) result(set)
      integer(4), intent(in) :: ibit
      integer(8), intent(in) :: i
      logical(4) :: set
    end function biti8

    ! All bits inverted.
    function complint(i) result(inverted)
      integer(4), intent(in) :: i
      integer(4) :: inverted
    end function complint

    function complreal(x) result(inverted)
      real(4), intent(in) :: x
      real(4) :: inverted
    end function complreal

    function compllog(l) result(inverted)
      logical(4), intent(in) :: l
      logical(4) :: inverted
    end function compllog

    ! x where z has a 1, y where it has a 0.
    function csmg(x, y, z) result(merged)
      integer(4), intent(in) :: x, y, z
      integer(4) :: merged
    end function csmg

  end interface

  ! i shifted left by n bits; 0 out of range.
  interface shiftl
    function shiftl_int4(i, n) result(shifted) bind(C, name='SHIFTL')
      import :: c_int32_t
      integer(c_int32_t), intent(in) :: i, n
      integer(c_int32_t) :: shifted
    end function shiftl_int4
  end interface shiftl

  interface lshift
    function lshift_int4(i, n) result(shifted) bind(C, name='LSHIFT')
      import :: c_int32_t
      integer(c_int32_t), intent(in) :: i, n
      integer(c_int32_t) :: shifted
    end function lshift_int4
  end interface lshift

  ! i shifted right by n bits: RSHIFT keeps the sign, SHIFTR lets zeros in; 0 out of range.
  interface rshift
    function rshift_int4(i, n) result(shifted) bind(C, name='RSHIFT')
      import :: c_int32_t
      integer(c_int32_t), intent(in) :: i, n
      integer(c_int32_t) :: shifted
    end function rshift_int4
  end interface rshift

  interface shiftr
    function shiftr_int4(i, n) result(shifted) bind(C, name='SHIFTR')
      import :: c_int32_t
      integer(c_int32_t), intent(in) :: i, n
      integer(c_int32_t) :: shifted
    end function shiftr_int4
  end interface shiftr

  ! The left and the right half of the pair ileft, iright shifted left and right by n bits, 0 to 64.
  interface dshiftl
    function dshiftl_int8(ileft, iright, n) result(shifted) bind(C, name='DSHIFTL')
      import :: c_int64_t
      integer(c_int64_t), intent(in) :: ileft, iright, n
      integer(c_int64_t) :: shifted
    end function dshiftl_int8
  end interface dshiftl

  interface dshiftr
    function dshiftr_int8(ileft, iright, n) result(shifted) bind(C, name='DSHIFTR')
      import :: c_int64_t
      integer(c_int64_t), intent(in) :: ileft, iright, n
      integer(c_int64_t) :: shifted
    end function dshiftr_int8
  end interface dshiftr

end module qwport_bits
