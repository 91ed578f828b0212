! SPDX-License-Identifier: MIT
! The library answers true as -1; compiled at several levels, .not. makes false of it.
program posix_logical_test
  use check
  use qwport
  implicit none

  call expect_kinds(PXF_S_IFDIR + 511, 1)
  call expect_kinds(PXF_S_IFCHR, 2)
  call expect_kinds(PXF_S_IFREG + 256, 3)
  call expect_kinds(PXF_S_IFIFO, 4)
  call expect_kinds(24576, 0)
  call expect('pxfisconst', .not. (pxfisconst('eend') .or. .not. pxfisconst('EEND')))
  call finish()

contains

  subroutine expect_kinds(m, kind)
    integer, intent(in) :: m, kind
    integer :: i

    call expect('kinds', all([pxfisdir(m), pxfischr(m), pxfisreg(m), pxfisfifo(m), pxfisblk(m)] .eqv. [(i == kind, i=1, 5)]))
    if ((.not. pxfisdir(m)) .neqv. kind /= 1) call expect('not pxfisdir', .false.)
    if ((.not. pxfisreg(m)) .neqv. kind /= 3) call expect('not pxfisreg', .false.)
  end subroutine expect_kinds

end program posix_logical_test
