! SPDX-License-Identifier: MIT
! Random numbers. All routines but RAN and RANF draw from one generator of the core runtime. iflag 0 draws
! the next number, 1 restores the initial seed first, any other value becomes the seed first.
module qwport_random
  implicit none
  public

  interface

    ! The minimal-standard generator, whose state is the caller's seed (which stays if it is 0 or 1). Above 0,
    ! up to and with 1.
    function ran(seed) result(number)
      integer(4), intent(inout) :: seed
      real(4) :: number
    end function ran

    ! The next number of the shared generator, from 0, below 1.
    function drand(iflag) result(number)
      integer(4), intent(in) :: iflag
      real(8) :: number
    end function drand

    function drandm(iflag) result(number)
      integer(4), intent(in) :: iflag
      real(8) :: number
    end function drandm

    function rand(iflag) result(number)
      integer(4), intent(in), optional :: iflag
      real(4) :: number
    end function rand

    ! RAND under the name that stands for $$MSPORTLIB$RANDOM in Fortran.
    function msportlib_random(iflag) result(number)
      integer(4), intent(in) :: iflag
      real(4) :: number
    end function msportlib_random

    ! The next number of the shared generator, from 0 to 2147483647; without iflag from 0 to 32767.
    function irand(iflag) result(number)
      integer(4), intent(in), optional :: iflag
      integer(4) :: number
    end function irand

    function irandm(iflag) result(number)
      integer(4), intent(in) :: iflag
      integer(4) :: number
    end function irandm

    ! Sets the shared generator's seed, and RANF's in this thread.
    subroutine srand(iseed)
      integer(4), intent(in) :: iseed
    end subroutine srand

    ! Set the shared generator's seed; a real one is cut to an integer.
    subroutine iranset(iseed)
      integer(4), intent(in) :: iseed
    end subroutine iranset

    subroutine ranset(seed)
      real(4), intent(in) :: seed
    end subroutine ranset

    subroutine dranset(seed)
      real(8), intent(in) :: seed
    end subroutine dranset

    ! The shared generator's present seed: set again, it continues the sequence.
    subroutine ranget(iseed)
      integer(4), intent(out) :: iseed
    end subroutine ranget

    subroutine iranget(iseed)
      integer(4), intent(out) :: iseed
    end subroutine iranget

    ! A whole number from 0 to 32767 by the C run-time's rand, one sequence a thread.
    function ranf() result(number)
      real(4) :: number
    end function ranf

  end interface

end module qwport_random
