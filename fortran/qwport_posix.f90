! SPDX-License-Identifier: MIT
! POSIX: the constants, and the interfaces by what they are about.
module qwport_posix
  use qwport_posix_constants
  use qwport_posix_files
  use qwport_posix_processes
  use qwport_posix_structures
  use qwport_posix_system
  implicit none
  public
end module qwport_posix
