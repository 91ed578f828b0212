! SPDX-License-Identifier: MIT
! The library answers true as -1; compiled at several levels, .not. makes false of it.
program posix_logical_test
  use check
  use qwport
  implicit none
  integer, parameter :: modes(*) = [PXF_S_IFDIR + 511, PXF_S_IFCHR, PXF_S_IFREG + 256, PXF_S_IFIFO, 24576]
  integer :: m, i, k

  do i = 1, size(modes)
    m = modes(i)
    call expect('kinds', all([pxfisdir(m), pxfischr(m), pxfisreg(m), pxfisfifo(m), pxfisblk(m)] &
                             .eqv. [(i == k, k=1, 4), .false.]))
    call expect('no kinds', ((.not. pxfisdir(m)) .eqv. i /= 1) .and. ((.not. pxfisreg(m)) .eqv. i /= 3))
  end do
  call expect('pxfisconst', .not. (pxfisconst('eend') .or. .not. pxfisconst('EEND')))
  call finish()
end program posix_logical_test
