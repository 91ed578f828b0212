! SPDX-License-Identifier: MIT
! Drives and paths. Errors are reported.
module qwport_drives
  implicit none
  public

  interface

    ! The drives: position 1 is A if drive A exists, else blank, and so on to position 26.
    subroutine getdrivesqq(drives)
      character(len=*), intent(out) :: drives
    end subroutine getdrivesqq

    ! The current directory of the drive whose letter stands first in drivedir, or of the current drive for a
    ! blank. Result: its length, 0 for a failure.
    function getdrivedirqq(drivedir) result(length)
      character(len=*), intent(inout) :: drivedir
      integer(4) :: length
    end function getdrivedirqq

    ! The bytes of a drive, and those that are free. drive: a letter, a blank for the current drive, or a network
    ! name. The first form gives -1 for 2 GiB or more.
    function getdrivesizeqq(drive, total, avail) result(done)
      character(len=*), intent(in) :: drive
      integer(4), intent(out) :: total
      integer(4), intent(out) :: avail
      logical(4) :: done
    end function getdrivesizeqq

    function getdrivesizeqqi8(drive, total, avail) result(done)
      character(len=*), intent(in) :: drive
      integer(8), intent(out) :: total
      integer(8), intent(out) :: avail
      logical(4) :: done
    end function getdrivesizeqqi8

    ! Makes the root of a drive the current directory.
    function changedriveqq(drive) result(done)
      character(len=*), intent(in) :: drive
      logical(4) :: done
    end function changedriveqq

    ! The full path of a name. Result: its length, 0 for a failure, more than pathbuf holds if it does not fit.
    function fullpathqq(name, pathbuf) result(length)
      character(len=*), intent(in) :: name
      character(len=*), intent(out) :: pathbuf
      integer(4) :: length
    end function fullpathqq

    ! The parts of a path, made full first: "C:", "\a\b\", "name", ".ext". Result: the length of dir, or 0.
    function splitpathqq(path, drive, dir, name, ext) result(length)
      character(len=*), intent(in) :: path
      character(len=*), intent(out) :: drive
      character(len=*), intent(out) :: dir
      character(len=*), intent(out) :: name
      character(len=*), intent(out) :: ext
      integer(4) :: length
    end function splitpathqq

  end interface

end module qwport_drives
