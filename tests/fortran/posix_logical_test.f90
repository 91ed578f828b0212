! SPDX-License-Identifier: MIT
! The library answers true as -1; compiled at several levels, .not. makes false of it.
program posix_logical_test
  use check
  use qwport
  implicit none

  call expect_kinds(PXF_S_IFDIR + 511, [.true., .false., .false., .false., .false.])
  call expect_kinds(PXF_S_IFCHR, [.false., .true., .false., .false., .false.])
  call expect_kinds(PXF_S_IFREG + 256, [.false., .false., .true., .false., .false.])
  call expect_kinds(PXF_S_IFIFO, [.false., .false., .false., .true., .false.])
  call expect_kinds(24576, [.false., .false., .false., .false., .false.])
  if (.not. pxfisconst('EEND')) call expect('not pxfisconst', .false.)
  if (pxfisconst('eend')) call expect('pxfisconst', .false.)
  call finish()

contains

  subroutine expect_kinds(m, expected)
    integer, intent(in) :: m
    logical, intent(in) :: expected(5)
    logical :: answers(5)

    answers = [pxfisdir(m), pxfischr(m), pxfisreg(m), pxfisfifo(m), pxfisblk(m)]
    call expect('kinds', all(answers .eqv. expected))
    answers = [.not. pxfisdir(m), .not. pxfischr(m), .not. pxfisreg(m), .not. pxfisfifo(m), .not. pxfisblk(m)]
    call expect('not kinds', all(answers .neqv. expected))
    if (expected(1) .and. .not. pxfisdir(m)) call expect('not pxfisdir at once', .false.)
  end subroutine expect_kinds

end program posix_logical_test
