! SPDX-License-Identifier: MIT
! Random numbers, bits, arithmetic and text scanning from Fortran. Generic intrinsics keep their other
! kinds beside the module's routines.
program numeric_test
  use check
  use qwport
  implicit none

  call test_random()
  call test_bits()
  call test_arithmetic()
  call test_bessel()
  call test_text()
  call finish()

contains

  subroutine test_random()
    integer :: seed, first, again

    seed = 2
    call expect('ran', ran(seed) == 96542*2.0**(-31))
    call expect('ran replaces its seed', seed, 96542)
    call srand(1)
    call expect('ranf', ranf() == 41.0)
    call iranset(99)
    call ranget(seed)
    call expect('ranget', seed, 99)
    first = irand(0)
    call iranget(seed)
    call expect('irandm', irandm(99), first)
    again = irandm(0)
    call expect('a seed that was read continues', irand(seed), again)
    call expect('irand without argument', irand() < 32768)
    call expect('rand', in_unit(real(rand(1), 8)) .and. in_unit(real(rand(), 8)))
    call expect('drand', in_unit(drand(7)) .and. drandm(7) == drand(7))
    call expect('msportlib_random', msportlib_random(5) == rand(5))
    call ranset(12.9)
    call ranget(seed)
    call expect('ranset', seed, 12)
    call dranset(-12.9d0)
    call ranget(seed)
    call expect('dranset', seed, -12)
  end subroutine test_random

  logical function in_unit(x)
    real(8), intent(in) :: x

    in_unit = x >= 0d0 .and. x < 1d0
  end function in_unit

  subroutine test_bits()
    integer :: i
    integer(8) :: wide

    i = 0
    call bis(4, i)
    call expect('bis', i, 16)
    call expect('bit', bit(4, i) .and. .not. bit(5, i))
    call bic(4, i)
    call expect('bic', i, 0)
    wide = 0
    call bisi8(40, wide)
    call expect('bisi8', wide, 2_8**40)
    call expect('biti8', biti8(40, wide))
    call bici8(40, wide)
    call expect('bici8', wide, 0_8)
    call expect('shiftl', shiftl(1, 4) + lshift(1, 4), 32)
    call expect('shiftl out of range', shiftl(1, 32), 0)
    call expect('rshift', rshift(-8, 1), -4)
    call expect('shiftr', shiftr(-8, 1), 2147483644)
    call expect('shiftl of INTEGER(8) is the intrinsic', shiftl(1_8, 40), 2_8**40)
    call expect('dshiftl', dshiftl(1_8, 0_8, 64_8), 0_8)
    call expect('dshiftr', dshiftr(1_8, 0_8, 64_8), 1_8)
    call expect('complint', complint(0), -1)
    call expect('complreal', transfer(complreal(0.0), 0), -1)
    call expect('compllog', compllog(.false.) .and. .not. compllog(.true.))
    call expect('csmg', csmg(15, 51, 240), 3)
  end subroutine test_bits

  subroutine test_arithmetic()
    call expect('dim', dim(3.0, 1.0) == 2.0 .and. dim(1.0, 3.0) == 0.0)
    call expect('dim of other kinds is the intrinsic', dim(3, 1) == 2 .and. dim(1d0, 3d0) == 0d0)
    call expect('ddim', ddim(3d0, 1d0) == 2d0)
    call expect('jdim', jdim(3, 1), 2)
    call expect('jabs', jabs(-3), 3)
    call expect('jmod', jmod(-7_2, 3_2), -1)
    call expect('inmax', inmax(), huge(1))
    call expect('intc', int(intc(65535)), -1)
    call expect('short', int(short(65535)), -1)
    call expect('long', long(-1_2), -1)
    call expect('ifloati', ifloati(2_2) == 2.0 .and. ifloatj(2) == 2.0)
    call expect('dfloati', dfloati(2_2) == 2d0 .and. dfloatj(2) == 2d0 .and. dfloatk(2_8) == 2d0)
    call expect('cdfloat', cdfloat(0.5) == 0.5d0)
  end subroutine test_arithmetic

  ! Against Fortran's standard Bessel functions.
  subroutine test_bessel()
    real, parameter :: x = 2.5
    real(8), parameter :: y = 2.5d0

    call expect('besj', near(besj0(x), bessel_j0(x)) .and. near(besj1(x), bessel_j1(x)) &
                .and. near(besjn(3, x), bessel_jn(3, x)))
    call expect('besy', near(besy0(x), bessel_y0(x)) .and. near(besy1(x), bessel_y1(x)) &
                .and. near(besyn(3, x), bessel_yn(3, x)))
    call expect('dbesj', abs(dbesj0(y) - bessel_j0(y)) + abs(dbesj1(y) - bessel_j1(y)) &
                + abs(dbesjn(3, y) - bessel_jn(3, y)) < 1d-14)
    call expect('dbesy', abs(dbesy0(y) - bessel_y0(y)) + abs(dbesy1(y) - bessel_y1(y)) &
                + abs(dbesyn(3, y) - bessel_yn(3, y)) < 1d-14)
    call expect('besj0 of REAL(8) is the intrinsic', abs(besj0(y) - bessel_j0(y)) < 1d-14)
  end subroutine test_bessel

  logical function near(actual, expected)
    real, intent(in) :: actual, expected

    near = abs(actual - expected) <= 4*spacing(expected)
  end function near

  subroutine test_text()
    character(len=10) :: text

    text = 'ab ab'
    call expect('lnblnk', lnblnk(text), 5)
    call expect('rindex', rindex(text, 'ab'), 4)
    call expect('rindex with blanks', rindex(text, 'ab '), 4)
    call expect('rindex of nothing', rindex(text, ''), 11)
  end subroutine test_text

end program numeric_test
