! SPDX-License-Identifier: MIT
! How the library takes and gives arrays of any size. Only the family modules use it.
module qwport_arrays
  use, intrinsic :: iso_c_binding, only: c_int64_t, c_null_ptr, c_ptr
  implicit none
  private
  public :: array_descriptor

  type, bind(C) :: array_descriptor
    type(c_ptr) :: base = c_null_ptr
    integer(c_int64_t) :: unused(5) = 0
    integer(c_int64_t) :: extent = 0
  end type array_descriptor

end module qwport_arrays
