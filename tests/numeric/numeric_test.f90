! SPDX-License-Identifier: MIT
! Random numbers, bits, arithmetic and text scanning by their interfaces: one call each. Generic intrinsics keep their
! other kinds beside the module's routines.
program numeric_test
  use check
  use qwport
  implicit none
  integer(8) :: wide
  integer :: set, seeds(3), i

  call srand(1)
  seeds = 2
  call expect('ran, ranf', [nint(ran(seeds(1))*2.0**31), seeds(1), nint(ranf())], [96542, 96542, 41])
  call iranset(99)
  call ranget(seeds(1))
  call ranset(12.9)
  call iranget(seeds(2))
  call dranset(-12.9d0)
  call ranget(seeds(3))
  call expect('seeds', seeds, [99, 12, -12])
  call expect('one generator', irandm(99) == irand(99) .and. irand() < 32768 .and. rand() < 1)
  call expect('its kinds', drandm(7) == drand(7) .and. msportlib_random(5) == rand(5))

  set = 0
  wide = 0
  call bis(4, set)
  call bisi8(40, wide)
  call expect('set', [set, int(wide/2_8**40)], [16, 1])
  call expect('bit', all([bit(4, set), biti8(40, wide), compllog(.false.)]) .and. .not. any([bit(5, set), biti8(8, wide)]))
  call bic(4, set)
  call bici8(40, wide)
  call expect('cleared', [set, int(wide)], [0, 0])
  call expect('shifts', [shiftl(1, 4), lshift(1, 4), rshift(-8, 1), shiftr(-8, 1)], [16, 16, -4, 2147483644])
  call expect('pairs', int([dshiftl(1_8, 0_8, 64_8), dshiftr(1_8, 0_8, 64_8)]), [0, 1])
  call expect('complements', [complint(int(z'0F0F0F0F')), transfer(complreal(1.0), 0), csmg(int(z'0F0F0F0F'), &
    int(z'33333333'), int(z'FFFF'))], [-int(z'0F0F0F0F') - 1, -int(z'3F800000') - 1, int(z'33330F0F')])

  call expect('integers', [jdim(3, 1), jabs(-3), jmod(-7_2, 3_2), inmax()], [2, 3, -1, huge(1)])
  call expect('widths', [int(intc(int(z'12348001'))), int(short(-1)), long(-2_2)], [-32767, -1, -2])
  call expect('reals', all([ifloati(-2_2), ifloatj(16777217), dim(5.5, 2.0), dim(2.0, 5.5)] == [-2.0, 16777216.0, 3.5, 0.0]))
  call expect('doubles', all([dfloati(-2_2), dfloatj(16777217), dfloatk(9007199254740993_8), cdfloat(0.1), ddim(3d0, 1d0)] == &
    [-2d0, 16777217d0, 9007199254740992d0, real(0.1, 8), 2d0]))
  call expect('the intrinsics', shiftl(1_8, 40) == 2_8**40 .and. dim(3, 1) == 2 .and. dim(1d0, 3d0) == 0d0)
  call expect('bessel', all(abs([besj0(2.5), besj1(2.5), besjn(3, 2.5), besy0(2.5), besy1(2.5), besyn(3, 2.5)] - &
    [bessel_j0(2.5), bessel_j1(2.5), bessel_jn(3, 2.5), bessel_y0(2.5), bessel_y1(2.5), bessel_yn(3, 2.5)]) < 1e-6))
  call expect('dbessel', all(abs([dbesj0(2.5d0), dbesj1(2.5d0), dbesy0(2.5d0), dbesy1(2.5d0), besj0(2.5d0)] - &
    [bessel_j0(2.5d0), bessel_j1(2.5d0), bessel_y0(2.5d0), bessel_y1(2.5d0), bessel_j0(2.5d0)]) < 1d-14))
  call expect('dbessel of n', all(abs([(dbesjn(i, 2.5d0) - bessel_jn(i, 2.5d0), dbesyn(i, 2.5d0) - bessel_yn(i, 2.5d0), &
    i=2, 3)]) < 1d-14))
  call expect('text', [lnblnk('ab ab     '), rindex('ab ab     ', 'ab')], [5, 4])
  call finish()
end program numeric_test
