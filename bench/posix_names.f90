! SPDX-License-Identifier: MIT
! A million look-ups by name, of a structure's field and of the first and last constant, against a bare
! comparison of the name with itself.
program posix_names
  use qwport
  use timing
  implicit none

  interface
    integer(c_int32_t) function bare_compare(name, other, name_len, other_len) bind(C)
      use, intrinsic :: iso_c_binding, only: c_char, c_int32_t, c_size_t
      character(kind=c_char), intent(in) :: name(*), other(*)
      integer(c_size_t), value :: name_len, other_len
    end function bare_compare
  end interface

  integer, parameter :: rounds = 7, calls = 1000000
  integer :: handle, error

  call pxfstructcreate('stat', handle, error)
  call pxfintset(handle, 'st_size', 4711, error)
  call print_head('a call', 'library', 'memcmp')
  call compare('PXFINTGET of st_size', 'st_size', 4711)
  call compare('PXFCONST of the first name', 'SIGBREAK', PXF_SIGBREAK)
  call compare('PXFCONST of the last name', 'EILSEQ', PXF_EILSEQ)

contains

  subroutine compare(what, name, expected)
    character(len=*), intent(in) :: what, name
    integer, intent(in) :: expected
    real(8) :: library(rounds), bare(rounds), start
    integer :: i, j, value, equal

    do i = 1, rounds
      start = now()
      do j = 1, calls
        value = 0
        if (what(:9) == 'PXFINTGET') call pxfintget(handle, name, value, error)
        if (what(:8) == 'PXFCONST') call pxfconst(name, value, error)
        if (value /= expected) call abort('wrong value')
      end do
      library(i) = now() - start
      equal = 0
      start = now()
      do j = 1, calls
        equal = equal + bare_compare(name, name, len(name, 8), len(name, 8))
      end do
      bare(i) = now() - start
      if (equal /= calls) call abort('wrong comparison')
    end do
    call report(what, library, bare, calls)
  end subroutine compare

end program posix_names
