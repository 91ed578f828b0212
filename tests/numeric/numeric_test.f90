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
  call expect('text', [lnblnk('ab ab     '), rindex('ab ab     ', 'ab'), rindex('ab ab     ', 'ab ')], [5, 4, 4])
  call finish()

contains

  subroutine test_random()
    integer :: seed, first, again

    seed = 2
    call expect('ran', ran(seed) == 96542*2.0**(-31) .and. seed == 96542)
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
    call expect('rand', all(in_unit([real(rand(1), 8), real(rand(), 8), drand(7)])))
    call expect('drandm', drandm(7) == drand(7) .and. msportlib_random(5) == rand(5))
    call ranset(12.9)
    call ranget(first)
    call dranset(-12.9d0)
    call ranget(seed)
    call expect('ranset, dranset', [first, seed], [12, -12])
  end subroutine test_random

  elemental logical function in_unit(x)
    real(8), intent(in) :: x

    in_unit = x >= 0d0 .and. x < 1d0
  end function in_unit

  subroutine test_bits()
    integer :: set, cleared
    integer(8) :: wide_set, wide_cleared

    set = 0
    call bis(4, set)
    cleared = set
    call bic(4, cleared)
    call expect('bis, bic', [set, cleared], [16, 0])
    wide_set = 0
    call bisi8(40, wide_set)
    wide_cleared = wide_set
    call bici8(40, wide_cleared)
    call expect('bisi8, bici8', wide_set == 2_8**40 .and. wide_cleared == 0)
    call expect('bit', bit(4, set) .and. .not. bit(5, set) .and. biti8(40, wide_set) .and. .not. biti8(8, wide_set))
    call expect('shifts', [shiftl(1, 4), lshift(1, 4), rshift(-8, 1), shiftr(-8, 1)], [16, 16, -4, 2147483644])
    call expect('shiftl of INTEGER(8) is the intrinsic', shiftl(1_8, 40) == 2_8**40)
    call expect('pairs', dshiftl(1_8, 0_8, 64_8) == 0 .and. dshiftr(1_8, 0_8, 64_8) == 1)
    call expect('complements', [complint(0), transfer(complreal(0.0), 0), csmg(15, 51, 240)], [-1, -1, 3])
    call expect('compllog', compllog(.false.) .and. .not. compllog(.true.))
  end subroutine test_bits

  subroutine test_arithmetic()
    call expect('dim', dim(3.0, 1.0) == 2.0 .and. ddim(3d0, 1d0) == 2d0)
    call expect('dim of other kinds is the intrinsic', dim(3, 1) == 2 .and. dim(1d0, 3d0) == 0d0)
    call expect('integers', [jdim(3, 1), jabs(-3), jmod(-7_2, 3_2), inmax()], [2, 3, -1, huge(1)])
    call expect('widths', [int(intc(65535)), int(short(65535)), long(-1_2)], [-1, -1, -1])
    call expect('reals', all([ifloati(2_2), ifloatj(2)] == 2.0) .and. cdfloat(0.5) == 0.5d0)
    call expect('doubles', all([dfloati(2_2), dfloatj(2), dfloatk(2_8)] == 2d0))
  end subroutine test_arithmetic

  ! Against Fortran's standard Bessel functions.
  subroutine test_bessel()
    real, parameter :: x = 2.5
    real(8), parameter :: y = 2.5d0
    real :: single(6)
    real(8) :: double(7)

    single = [bessel_j0(x), bessel_j1(x), bessel_jn(3, x), bessel_y0(x), bessel_y1(x), bessel_yn(3, x)]
    call expect('single', all(abs([besj0(x), besj1(x), besjn(3, x), besy0(x), besy1(x), besyn(3, x)] - single) &
                              <= 4*spacing(single)))
    double(:6) = [bessel_j0(y), bessel_j1(y), bessel_jn(3, y), bessel_y0(y), bessel_y1(y), bessel_yn(3, y)]
    double(7) = double(1)  ! of REAL(8), besj0 is the intrinsic
    call expect('double', all(abs([dbesj0(y), dbesj1(y), dbesjn(3, y), dbesy0(y), dbesy1(y), dbesyn(3, y), besj0(y)] &
                                  - double) < 1d-14))
  end subroutine test_bessel

end program numeric_test
