! SPDX-License-Identifier: MIT
! Procedures for programs that declare the library's routines EXTERNAL and have no module. The import library
! has them in place of second names of the exports.

! Counts of old programs are INTEGER(4), where the exports take INTEGER(8). An INTEGER(8) below 2**31 begins
! with the same four bytes, so these serve both.

subroutine sortqq(array_address, count, size)
  use qwport_sorting, only: sort => sortqq
  implicit none
  integer(8), intent(in) :: array_address
  integer(4), intent(inout) :: count
  integer(4), intent(in) :: size

  call sort(array_address, count, size)
end subroutine sortqq

integer(4) function bsearchqq(key_address, array_address, length, size)
  use qwport_sorting, only: search => bsearchqq
  implicit none
  integer(8), intent(in) :: key_address, array_address
  integer(4), intent(in) :: length, size

  bsearchqq = search(key_address, array_address, length, size)
end function bsearchqq

! The logical functions whose exports answer true as -1, or as the host does: GNU Fortran's .not. of all but 1 would be
! true again.

logical(4) function mblead(c)
  use qwport_multibyte, only: is_lead => mblead
  implicit none
  character(len=1), intent(in) :: c

  mblead = is_lead(c)
end function mblead

logical(4) function pxfisdir(m)
  use qwport_posix_files, only: is_kind => pxfisdir
  implicit none
  integer(4), intent(in) :: m

  pxfisdir = is_kind(m)
end function pxfisdir

logical(4) function pxfischr(m)
  use qwport_posix_files, only: is_kind => pxfischr
  implicit none
  integer(4), intent(in) :: m

  pxfischr = is_kind(m)
end function pxfischr

logical(4) function pxfisreg(m)
  use qwport_posix_files, only: is_kind => pxfisreg
  implicit none
  integer(4), intent(in) :: m

  pxfisreg = is_kind(m)
end function pxfisreg

logical(4) function pxfisfifo(m)
  use qwport_posix_files, only: is_kind => pxfisfifo
  implicit none
  integer(4), intent(in) :: m

  pxfisfifo = is_kind(m)
end function pxfisfifo

logical(4) function pxfisblk(m)
  use qwport_posix_files, only: is_kind => pxfisblk
  implicit none
  integer(4), intent(in) :: m

  pxfisblk = is_kind(m)
end function pxfisblk

logical(4) function pxfisconst(s)
  use qwport_posix_structures, only: is_known => pxfisconst
  implicit none
  character(len=*), intent(in) :: s

  pxfisconst = is_known(s)
end function pxfisconst
