! SPDX-License-Identifier: MIT
! qwport: every routine of the library for Fortran programs. `use qwport` is all that a caller writes.
!
! What holds for every routine and is not repeated in the family modules:
!   - INTEGER without a kind is INTEGER(4), LOGICAL is LOGICAL(4), REAL is REAL(4).
!   - Text results and output texts are blank-padded, or cut to the variable's length; trailing blanks of
!     input texts do not count.
!   - OPTIONAL arguments may be left out.
!   - Error numbers are those of C (2 ENOENT, 9 EBADF, 12 ENOMEM, 13 EACCES, 22 EINVAL, 34 ERANGE). A
!     routine that "reports" an error leaves it for GETLASTERROR and ERRSNS, one that "records" it leaves
!     it for IERRNO as well.
!   - Where a routine has the name of a GNU Fortran intrinsic procedure, this module's routine is the one
!     that is called.
module qwport
  use qwport_core
  use qwport_errors
  use qwport_units
  use qwport_files
  use qwport_time
  use qwport_processes
  use qwport_sorting
  use qwport_numeric
  use qwport_random
  use qwport_floating_point
  use qwport_serial
  use qwport_posix
  use qwport_multibyte
  use qwport_nls
  implicit none
  public
end module qwport
