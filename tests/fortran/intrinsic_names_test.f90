! SPDX-License-Identifier: MIT
! Routines that share their names with GNU Fortran's intrinsic procedures: `use qwport` makes them this
! library's, which shows where the two answer differently.
program intrinsic_names_test
  use check
  use qwport
  implicit none
  character :: c
  integer :: intrinsic_status

  ! GNU Fortran's FGETC answers -1 for a unit that is not open, this library's 22.
  call expect('fgetc is the library''s', fgetc(77, c), 22)
  call expect('ftell is the library''s', ftell(77), -9)
  intrinsic_status = intrinsic_fgetc()
  call expect('the intrinsic is there without the module', intrinsic_status, -1)
  call finish()

contains

  integer function intrinsic_fgetc()
    intrinsic :: fgetc
    character :: ignored
    intrinsic_fgetc = fgetc(77, ignored)
  end function intrinsic_fgetc

end program intrinsic_names_test
