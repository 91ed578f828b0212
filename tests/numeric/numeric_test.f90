! SPDX-License-Identifier: MIT
! Bits, arithmetic, Bessel functions and random numbers as a Fortran program meets them. Generic
! intrinsics keep their other kinds beside the module's routines.
program numeric_test
  use, intrinsic :: ieee_arithmetic, only: ieee_is_nan, ieee_negative_inf, ieee_positive_inf, ieee_quiet_nan, ieee_value
  use check
  use qwport
  implicit none
  integer(4), parameter :: least = -huge(0) - 1
  real(8) :: infinity, nan

  infinity = ieee_value(infinity, ieee_positive_inf)
  nan = ieee_value(nan, ieee_quiet_nan)
  call test_bits()
  call test_shifts()
  call test_arithmetic()
  call test_bessel()
  call test_random()
  call finish()

contains

  ! Each bit of both widths; positions out of range do nothing.
  subroutine test_bits()
    integer :: i, at, word, words(2)
    integer(8) :: wide, wides(2)

    do i = -2, 64
      at = merge(least, i, i == -2)
      word = 0
      if (at >= 0 .and. at < 32) word = ibset(0, at)
      wide = 0
      if (at >= 0 .and. at < 64) wide = ibset(0_8, at)
      words = [0, -1]
      call bis(at, words(1))
      call bic(at, words(2))
      wides = [0, -1]
      call bisi8(at, wides(1))
      call bici8(at, wides(2))
      call expect('set and cleared', all(words == [word, not(word)]) .and. all(wides == [wide, not(wide)]))
      call expect('bit', (bit(at, -1) .eqv. word /= 0) .and. .not. bit(at, not(word)))
      call expect('biti8', (biti8(at, -1_8) .eqv. wide /= 0) .and. .not. biti8(at, not(wide)))
    end do
    call expect('compllog', compllog(.false.) .and. .not. compllog(.true.))
    call expect('complements', [complint(int(z'0F0F0F0F')), transfer(complreal(1.0), 0), csmg(int(z'0F0F0F0F'), &
      int(z'33333333'), int(z'FFFF'))], [-int(z'0F0F0F0F') - 1, -int(z'3F800000') - 1, int(z'33330F0F')])
  end subroutine test_bits

  ! By 0 to 31, and 0 for all other counts; of a pair of words by 0 to 64.
  subroutine test_shifts()
    integer, parameter :: counts(*) = [0, 32, -1, least], unshifted(4) = [-8, 0, 0, 0]
    integer(8), parameter :: left = int(z'0123456789ABCDEF', 8), right = -left - 1
    integer(8) :: n
    integer :: i

    call expect('left', [lshift(1, 31), shiftl(int(z'12345678'), 8)], [least, int(z'34567800')])
    call expect('right', [rshift(-8, 1), rshift(least, 31), shiftr(-8, 1), shiftr(least, 31)], [-4, -1, 2147483644, 1])
    call expect('out of range', [(lshift(-8, counts(i)), shiftl(-8, counts(i)), rshift(-8, counts(i)), &
                shiftr(-8, counts(i)), i=1, 4)], [(spread(unshifted(i), 1, 4), i=1, 4)])
    call expect('of other kinds', shiftl(1_8, 40) == 2_8**40)
    do n = 1, 63
      call expect('a pair', dshiftl(left, right, n) == ior(ishft(left, n), ishft(right, n - 64)) .and. &
                  dshiftr(left, right, n) == ior(ishft(left, 64 - n), ishft(right, -n)))
    end do
    call expect('a whole pair', all([dshiftl(left, right, 0_8), dshiftl(left, right, 64_8), dshiftr(left, right, 0_8), &
                dshiftr(left, right, 64_8)] == [left, right, right, left]))
    call expect('out of range', all([dshiftl(left, right, 65_8), dshiftl(left, right, -1_8), dshiftr(left, right, 65_8), &
                dshiftr(left, right, -1_8)] == 0))
  end subroutine test_shifts

  subroutine test_arithmetic()
    call expect('dim', all([dim(5.5, 2.0), dim(2.0, 5.5)] == [3.5, 0.0]) .and. ieee_is_nan(dim(2.0, real(nan))))
    call expect('ddim', all([ddim(5.5d0, 2d0), ddim(-infinity, 2d0)] == [3.5d0, 0d0]) .and. ieee_is_nan(ddim(nan, 2d0)))
    call expect('of other kinds', dim(3, 1) == 2 .and. dim(1d0, 3d0) == 0d0)
    call expect('jdim', [jdim(3, 1), jdim(3, 7), jdim(huge(0), -1), jdim(least, 1)], [2, 0, 0, huge(0)])
    call expect('integers', [jabs(5), jabs(-3), jabs(least), inmax(), long(-2_2)], [5, 3, least, huge(0), -2])
    call expect('jmod', [jmod(7_2, -3_2), jmod(-7_2, 3_2), jmod(-huge(0_2) - 1_2, -1_2)], [1, -1, 0])
    call expect('widths', [int(intc(int(z'12348001'))), int(short(-1))], [-32767, -1])
    call expect('reals', all([ifloati(-2_2), ifloatj(16777217)] == [-2.0, 16777216.0]))
    call expect('doubles', all([dfloati(-2_2), dfloatj(16777217), dfloatk(9007199254740993_8), cdfloat(0.1)] == &
      [-2d0, 16777217d0, 9007199254740992d0, real(0.1, 8)]))
  end subroutine test_arithmetic

  ! Values computed with 30 digits by another library; 0 at infinity.
  subroutine test_bessel()
    real(8), parameter :: of_0(2) = [0.055812327669251815d0, -0.098064995470077079d0]    ! of 50
    real(8), parameter :: of_1(2) = [0.242268457674873886d0, -1.47147239267024307d0]     ! of 0.5
    real(8), parameter :: of_10(2) = [0.186482558023945083d0, -0.0438946535156583949d0]  ! of 20

    call expect('bessel', all(abs([besj0(50.0), besy0(50.0), besj1(0.5), besy1(0.5), besjn(10, 20.0), besyn(10, 20.0)] - &
                                  real([of_0, of_1, of_10])) < 1e-6))
    call expect('dbessel', all(abs([dbesj0(50d0), dbesy0(50d0), dbesj1(0.5d0), dbesy1(0.5d0), dbesjn(10, 20d0), &
                dbesyn(10, 20d0)] - [of_0, of_1, of_10]) < 1d-13))
    call expect('negative', all(abs([dbesj0(-3d0), dbesj1(-3d0), dbesjn(-3, 5d0)] - &
                [-0.260051954901933438d0, -0.339058958525936459d0, -0.364831230613666994d0]) < 1d-13))
    call expect('bessel', all([besj0(-real(infinity)), besy0(real(infinity)), besj1(real(infinity)), &
                besy1(-real(infinity)), besjn(3, real(infinity)), besyn(3, real(infinity))] == 0))
    call expect('dbessel', all([dbesj0(infinity), dbesy0(infinity), dbesj1(-infinity), dbesy1(infinity), &
                dbesjn(3, infinity), dbesyn(3, -infinity)] == 0) .and. ieee_is_nan(dbesj0(nan)))
    call expect('of other kinds', besj0(2.5d0) == bessel_j0(2.5d0))
  end subroutine test_bessel

  subroutine test_random()
    integer :: seeds(3)

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
  end subroutine test_random

end program numeric_test
