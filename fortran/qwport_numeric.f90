! SPDX-License-Identifier: MIT
! Bits, arithmetic, conversions, Bessel functions and positions in texts. Where Fortran or GNU Fortran has a generic
! intrinsic of the name, the routine is added to it: other kinds are the intrinsic's.
module qwport_numeric
  use, intrinsic :: iso_c_binding, only: c_float, c_int16_t, c_int32_t, c_int64_t
  implicit none
  public
  private :: c_float, c_int16_t, c_int32_t, c_int64_t
  private :: besj0_real4, besj1_real4, besjn_real4, besy0_real4, besy1_real4, besyn_real4, dim_real4
  private :: dshiftl_int8, dshiftr_int8, long_int2, lshift_int4, rshift_int4, shiftl_int4, shiftr_int4, short_int4

  interface

    ! Bits count from 0, the least significant; a position or count that is negative or beyond the width is out of
    ! range.

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

    ! x - y, or 0 if x is less than y. JDIM works modulo 2**32.
    function ddim(x, y) result(difference)
      real(8), intent(in) :: x, y
      real(8) :: difference
    end function ddim

    function jdim(i, j) result(difference)
      integer(4), intent(in) :: i, j
      integer(4) :: difference
    end function jdim

    ! The absolute value; -2147483648 stays.
    function jabs(i) result(absolute)
      integer(4), intent(in) :: i
      integer(4) :: absolute
    end function jabs

    ! The remainder of i/j, with the sign of i. j 0 is a divide fault.
    function jmod(i, j) result(remainder)
      integer(2), intent(in) :: i, j
      integer(4) :: remainder
    end function jmod

    ! 2147483647.
    function inmax() result(largest)
      integer(4) :: largest
    end function inmax

    ! The low 16 bits of i; SHORT is a second name.
    function intc(i) result(low)
      integer(4), intent(in) :: i
      integer(2) :: low
    end function intc

    ! Conversions.
    function ifloati(i) result(x)
      integer(2), intent(in) :: i
      real(4) :: x
    end function ifloati

    function ifloatj(i) result(x)
      integer(4), intent(in) :: i
      real(4) :: x
    end function ifloatj

    function dfloati(i) result(x)
      integer(2), intent(in) :: i
      real(8) :: x
    end function dfloati

    function dfloatj(i) result(x)
      integer(4), intent(in) :: i
      real(8) :: x
    end function dfloatj

    function dfloatk(i) result(x)
      integer(8), intent(in) :: i
      real(8) :: x
    end function dfloatk

    function cdfloat(x) result(widened)
      real(4), intent(in) :: x
      real(8) :: widened
    end function cdfloat

    ! Bessel functions of the first (J) and second (Y) kind of orders 0, 1 and n; 0 for an infinite x.
    function dbesj0(x) result(value)
      real(8), intent(in) :: x
      real(8) :: value
    end function dbesj0

    function dbesj1(x) result(value)
      real(8), intent(in) :: x
      real(8) :: value
    end function dbesj1

    function dbesjn(n, x) result(value)
      integer(4), intent(in) :: n
      real(8), intent(in) :: x
      real(8) :: value
    end function dbesjn

    function dbesy0(x) result(value)
      real(8), intent(in) :: x
      real(8) :: value
    end function dbesy0

    function dbesy1(x) result(value)
      real(8), intent(in) :: x
      real(8) :: value
    end function dbesy1

    function dbesyn(n, x) result(value)
      integer(4), intent(in) :: n
      real(8), intent(in) :: x
      real(8) :: value
    end function dbesyn

    ! Positions in texts count from 1.

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

  ! x - y, or 0 if x is less than y.
  interface dim
    function dim_real4(x, y) result(difference) bind(C, name='DIM')
      import :: c_float
      real(c_float), intent(in) :: x, y
      real(c_float) :: difference
    end function dim_real4
  end interface dim

  ! An INTEGER(2) as INTEGER(4), and the low 16 bits of an INTEGER(4) as INTEGER(2).
  interface long
    function long_int2(i) result(widened) bind(C, name='LONG')
      import :: c_int16_t, c_int32_t
      integer(c_int16_t), intent(in) :: i
      integer(c_int32_t) :: widened
    end function long_int2
  end interface long

  interface short
    function short_int4(i) result(low) bind(C, name='SHORT')
      import :: c_int16_t, c_int32_t
      integer(c_int32_t), intent(in) :: i
      integer(c_int16_t) :: low
    end function short_int4
  end interface short

  ! Bessel functions of REAL(4), as above.
  interface besj0
    function besj0_real4(x) result(value) bind(C, name='BESJ0')
      import :: c_float
      real(c_float), intent(in) :: x
      real(c_float) :: value
    end function besj0_real4
  end interface besj0

  interface besj1
    function besj1_real4(x) result(value) bind(C, name='BESJ1')
      import :: c_float
      real(c_float), intent(in) :: x
      real(c_float) :: value
    end function besj1_real4
  end interface besj1

  interface besjn
    function besjn_real4(n, x) result(value) bind(C, name='BESJN')
      import :: c_float, c_int32_t
      integer(c_int32_t), intent(in) :: n
      real(c_float), intent(in) :: x
      real(c_float) :: value
    end function besjn_real4
  end interface besjn

  interface besy0
    function besy0_real4(x) result(value) bind(C, name='BESY0')
      import :: c_float
      real(c_float), intent(in) :: x
      real(c_float) :: value
    end function besy0_real4
  end interface besy0

  interface besy1
    function besy1_real4(x) result(value) bind(C, name='BESY1')
      import :: c_float
      real(c_float), intent(in) :: x
      real(c_float) :: value
    end function besy1_real4
  end interface besy1

  interface besyn
    function besyn_real4(n, x) result(value) bind(C, name='BESYN')
      import :: c_float, c_int32_t
      integer(c_int32_t), intent(in) :: n
      real(c_float), intent(in) :: x
      real(c_float) :: value
    end function besyn_real4
  end interface besyn

end module qwport_numeric
