! SPDX-License-Identifier: MIT
! Bits, arithmetic, conversions, Bessel functions and positions in texts: elemental all. Where Fortran or GNU Fortran
! has a generic intrinsic of the name, the routine is added to it: other kinds are the intrinsic's.
!
! The procedure NAME_KIND of a generic name is the export NAME to the linker. An INTEGER(2) input may be an INTEGER(4),
! as constants are: that begins with the INTEGER(2) of its value.
module qwport_numeric
  implicit none
  public
  private :: besj0_real4, besj1_real4, besjn_real4, besy0_real4, besy1_real4, besyn_real4, dim_real4
  private :: dfloati_int2, dfloati_int4, dshiftl_int8, dshiftr_int8, ifloati_int2, ifloati_int4, jmod_int2, jmod_int4
  private :: long_int2, lshift_int4, rshift_int4, shiftl_int4, shiftr_int4, short_int4

  interface

    ! Bits count from 0, the least significant; a position or count that is negative or beyond the width is out of
    ! range.

    ! Clear or set a bit of i; out of range nothing happens.
    elemental subroutine bic(ibit, i)
      integer(4), intent(in) :: ibit
      integer(4), intent(inout) :: i
    end subroutine bic

    elemental subroutine bici8(ibit, i)
      integer(4), intent(in) :: ibit
      integer(8), intent(inout) :: i
    end subroutine bici8

    elemental subroutine bis(ibit, i)
      integer(4), intent(in) :: ibit
      integer(4), intent(inout) :: i
    end subroutine bis

    elemental subroutine bisi8(ibit, i)
      integer(4), intent(in) :: ibit
      integer(8), intent(inout) :: i
    end subroutine bisi8

    ! Whether a bit of i is set; false out of range.
    elemental function bit(ibit, i) result(set)
      integer(4), intent(in) :: ibit, i
      logical(4) :: set
    end function bit

    elemental function biti8(ibit, i) result(set)
      integer(4), intent(in) :: ibit
      integer(8), intent(in) :: i
      logical(4) :: set
    end function biti8

    ! All bits inverted.
    elemental function complint(i) result(inverted)
      integer(4), intent(in) :: i
      integer(4) :: inverted
    end function complint

    elemental function complreal(x) result(inverted)
      real(4), intent(in) :: x
      real(4) :: inverted
    end function complreal

    elemental function compllog(l) result(inverted)
      logical(4), intent(in) :: l
      logical(4) :: inverted
    end function compllog

    ! x where z has a 1, y where it has a 0.
    elemental function csmg(x, y, z) result(merged)
      integer(4), intent(in) :: x, y, z
      integer(4) :: merged
    end function csmg

    ! x - y, or 0 if x is less than y. JDIM works modulo 2**32.
    elemental function ddim(x, y) result(difference)
      real(8), intent(in) :: x, y
      real(8) :: difference
    end function ddim

    elemental function jdim(i, j) result(difference)
      integer(4), intent(in) :: i, j
      integer(4) :: difference
    end function jdim

    ! The absolute value; -2147483648 stays.
    elemental function jabs(i) result(absolute)
      integer(4), intent(in) :: i
      integer(4) :: absolute
    end function jabs

    ! The largest INTEGER(4), 2147483647.
    pure function inmax() result(largest)
      integer(4) :: largest
    end function inmax

    ! The low 16 bits of i; SHORT is a second name.
    elemental function intc(i) result(low)
      integer(4), intent(in) :: i
      integer(2) :: low
    end function intc

    ! A number as one of another type.
    elemental function ifloatj(i) result(x)
      integer(4), intent(in) :: i
      real(4) :: x
    end function ifloatj

    elemental function dfloatj(i) result(x)
      integer(4), intent(in) :: i
      real(8) :: x
    end function dfloatj

    elemental function dfloatk(i) result(x)
      integer(8), intent(in) :: i
      real(8) :: x
    end function dfloatk

    elemental function cdfloat(x) result(widened)
      real(4), intent(in) :: x
      real(8) :: widened
    end function cdfloat

    ! Bessel functions of the first (J) and second (Y) kind of orders 0, 1 and n; 0 for an infinite x.
    elemental function dbesj0(x) result(value)
      real(8), intent(in) :: x
      real(8) :: value
    end function dbesj0

    elemental function dbesj1(x) result(value)
      real(8), intent(in) :: x
      real(8) :: value
    end function dbesj1

    elemental function dbesjn(n, x) result(value)
      integer(4), intent(in) :: n
      real(8), intent(in) :: x
      real(8) :: value
    end function dbesjn

    elemental function dbesy0(x) result(value)
      real(8), intent(in) :: x
      real(8) :: value
    end function dbesy0

    elemental function dbesy1(x) result(value)
      real(8), intent(in) :: x
      real(8) :: value
    end function dbesy1

    elemental function dbesyn(n, x) result(value)
      integer(4), intent(in) :: n
      real(8), intent(in) :: x
      real(8) :: value
    end function dbesyn

    ! Positions in texts count from 1.

    ! The position of the last character that is not a blank, or 0.
    elemental function lnblnk(string) result(position)
      character(len=*), intent(in) :: string
      integer(4) :: position
    end function lnblnk

    ! The position at which substr occurs last in string, or 0. Trailing blanks of both count; an empty substr
    ! is found behind the last character.
    elemental function rindex(string, substr) result(position)
      character(len=*), intent(in) :: string
      character(len=*), intent(in) :: substr
      integer(4) :: position
    end function rindex

  end interface

  ! i shifted left by n bits; 0 out of range. LSHIFT is a second name.
  interface shiftl
    elemental function shiftl_int4(i, n) result(shifted)
      integer(4), intent(in) :: i, n
      integer(4) :: shifted
    end function shiftl_int4
  end interface shiftl

  interface lshift
    elemental function lshift_int4(i, n) result(shifted)
      integer(4), intent(in) :: i, n
      integer(4) :: shifted
    end function lshift_int4
  end interface lshift

  ! i shifted right by n bits: RSHIFT keeps the sign, SHIFTR lets zeros in; 0 out of range.
  interface rshift
    elemental function rshift_int4(i, n) result(shifted)
      integer(4), intent(in) :: i, n
      integer(4) :: shifted
    end function rshift_int4
  end interface rshift

  interface shiftr
    elemental function shiftr_int4(i, n) result(shifted)
      integer(4), intent(in) :: i, n
      integer(4) :: shifted
    end function shiftr_int4
  end interface shiftr

  ! The left and the right half of the pair ileft, iright shifted left and right by n bits, 0 to 64.
  interface dshiftl
    elemental function dshiftl_int8(ileft, iright, n) result(shifted)
      integer(8), intent(in) :: ileft, iright, n
      integer(8) :: shifted
    end function dshiftl_int8
  end interface dshiftl

  interface dshiftr
    elemental function dshiftr_int8(ileft, iright, n) result(shifted)
      integer(8), intent(in) :: ileft, iright, n
      integer(8) :: shifted
    end function dshiftr_int8
  end interface dshiftr

  ! x - y, or 0 if x is less than y.
  interface dim
    elemental function dim_real4(x, y) result(difference)
      real(4), intent(in) :: x, y
      real(4) :: difference
    end function dim_real4
  end interface dim

  ! The remainder of i/j, with the sign of i. j 0 is a divide fault.
  interface jmod
    elemental function jmod_int2(i, j) result(remainder)
      integer(2), intent(in) :: i, j
      integer(4) :: remainder
    end function jmod_int2

    elemental function jmod_int4(i, j) result(remainder)
      integer(4), intent(in) :: i, j
      integer(4) :: remainder
    end function jmod_int4
  end interface jmod

  ! An INTEGER(2) as a real number.
  interface ifloati
    elemental function ifloati_int2(i) result(x)
      integer(2), intent(in) :: i
      real(4) :: x
    end function ifloati_int2

    elemental function ifloati_int4(i) result(x)
      integer(4), intent(in) :: i
      real(4) :: x
    end function ifloati_int4
  end interface ifloati

  interface dfloati
    elemental function dfloati_int2(i) result(x)
      integer(2), intent(in) :: i
      real(8) :: x
    end function dfloati_int2

    elemental function dfloati_int4(i) result(x)
      integer(4), intent(in) :: i
      real(8) :: x
    end function dfloati_int4
  end interface dfloati

  ! An INTEGER(2) as INTEGER(4), and the low 16 bits of an INTEGER(4) as INTEGER(2).
  interface long
    elemental function long_int2(i) result(widened)
      integer(2), intent(in) :: i
      integer(4) :: widened
    end function long_int2
  end interface long

  interface short
    elemental function short_int4(i) result(low)
      integer(4), intent(in) :: i
      integer(2) :: low
    end function short_int4
  end interface short

  ! Bessel functions of the first (J) and second (Y) kind of REAL(4), as those of REAL(8).
  interface besj0
    elemental function besj0_real4(x) result(value)
      real(4), intent(in) :: x
      real(4) :: value
    end function besj0_real4
  end interface besj0

  interface besj1
    elemental function besj1_real4(x) result(value)
      real(4), intent(in) :: x
      real(4) :: value
    end function besj1_real4
  end interface besj1

  interface besjn
    elemental function besjn_real4(n, x) result(value)
      integer(4), intent(in) :: n
      real(4), intent(in) :: x
      real(4) :: value
    end function besjn_real4
  end interface besjn

  interface besy0
    elemental function besy0_real4(x) result(value)
      real(4), intent(in) :: x
      real(4) :: value
    end function besy0_real4
  end interface besy0

  interface besy1
    elemental function besy1_real4(x) result(value)
      real(4), intent(in) :: x
      real(4) :: value
    end function besy1_real4
  end interface besy1

  interface besyn
    elemental function besyn_real4(n, x) result(value)
      integer(4), intent(in) :: n
      real(4), intent(in) :: x
      real(4) :: value
    end function besyn_real4
  end interface besyn

end module qwport_numeric
