! SPDX-License-Identifier: MIT
! The POSIX routines as a Fortran program meets them, with the core runtime for GNU Fortran. Run with the words:
! alpha "b c".
program posix_test
  use check
  use qwport
  implicit none
  integer :: error, length

  call test_words()
  call test_kinds()
  call test_arguments()
  call finish()

contains

  subroutine test_words()
    call expect('ipxfargc', ipxfargc(), 2)
    call expect_word(1, 8, [5, 0], 'alpha')
    call expect_word(2, 3, [3, 0], 'b c')
    call expect_word(2, 2, [3, PXF_ETRUNC], 'b ')
    call expect_word(2, 0, [3, PXF_ETRUNC], '')
    call expect_word(3, 4, [0, PXF_EINVAL], '')
    call expect_word(-1, 4, [0, PXF_EINVAL], '')
    call expect('no word', getlasterror(), 22)
  end subroutine test_words

  subroutine expect_word(number, room, expected, text)
    integer, intent(in) :: number, room, expected(2)
    character(len=*), intent(in) :: text
    character(len=room) :: word

    word = repeat('#', room)
    call pxfgetarg(number, word, length, error)
    call expect('length and error', [length, error], expected)
    call expect('word', word, text)
  end subroutine expect_word

  ! The library answers true as -1; compiled at several levels, .not. makes false of it.
  subroutine test_kinds()
    integer, parameter :: modes(*) = [PXF_S_IFDIR + 511, PXF_S_IFCHR, PXF_S_IFREG + 256, PXF_S_IFIFO, 24576]
    integer :: m, i, k

    do i = 1, size(modes)
      m = modes(i)
      call expect('kinds', all([pxfisdir(m), pxfischr(m), pxfisreg(m), pxfisfifo(m), pxfisblk(m)] &
                               .eqv. [(i == k, k=1, 4), .false.]))
      call expect('no kinds', ((.not. pxfisdir(m)) .eqv. i /= 1) .and. ((.not. pxfisreg(m)) .eqv. i /= 3))
    end do
    call expect('pxfisconst', .not. (pxfisconst('eend') .or. .not. pxfisconst('EEND')))
  end subroutine test_kinds

  ! Any type and shape of value, and both orders of value and index, reach ierror, which may stand alone.
  subroutine test_arguments()
    integer :: errors(6), handle
    character(len=4) :: texts(2) = ['no  ', 'none']

    call pxfstructcreate('tms', handle, error)
    call pxfadblget(handle, 'tms_utime', [1d0, 2d0, 3d0], 3, errors(1))
    call pxfecharget(handle, 'tms_utime', 1, texts(1), errors(2))
    call pxfastrget(handle, 'tms_utime', texts, 2, [4, 4], errors(3))
    call pxflgclset(handle, 'tms_utime', .true., errors(4))
    call pxfexecv('no such program', 0, texts, [0, 0], 2, errors(5))
    call pxftime(ierror=errors(6))
    call expect('errors', errors, [PXF_ENONAME, PXF_ENONAME, PXF_ENONAME, PXF_ENONAME, PXF_ENOENT, -1])
  end subroutine test_arguments

end program posix_test
