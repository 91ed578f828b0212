! SPDX-License-Identifier: MIT
! The logical functions whose exports answer true as -1, for programs that declare them LOGICAL and EXTERNAL
! and have no module: GNU Fortran's .not. of -1 would be true again. The import library has these procedures
! in place of second names of the exports.

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

logical(4) function pxfisconst(s)
  use qwport_posix_structures, only: is_known => pxfisconst
  implicit none
  character(len=*), intent(in) :: s

  pxfisconst = is_known(s)
end function pxfisconst
