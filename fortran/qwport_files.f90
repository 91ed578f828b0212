! SPDX-License-Identifier: MIT
! Files, directories, drives and paths. Times are seconds since 1970-01-01 00:00:00 UTC. Integer functions give 0 or an
! error number, which is recorded; logical functions and counts report theirs.
module qwport_files
  implicit none
  public

  ! An entry of a listing. size is -1 for a file of 2 GiB or more in the first form.
  type :: file_info
    sequence
    integer(4) :: created
    integer(4) :: written
    integer(4) :: accessed
    integer(4) :: size
    integer(4) :: attributes
    character(len=255) :: name
  end type file_info

  type :: file_info_i8
    sequence
    integer(4) :: created
    integer(4) :: written
    integer(4) :: accessed
    integer(4) :: gap
    integer(8) :: size
    integer(4) :: attributes
    character(len=255) :: name
  end type file_info_i8

  ! Bits of the attributes.
  integer(4), parameter :: file_readonly = 1
  integer(4), parameter :: file_hidden = 2
  integer(4), parameter :: file_system = 4
  integer(4), parameter :: file_volume = 8
  integer(4), parameter :: file_directory = 16
  integer(4), parameter :: file_archive = 32

  ! States of a listing's handle: to be begun, finished, nothing matched.
  integer(8), parameter :: findinfo_first = -1
  integer(8), parameter :: findinfo_last = -2
  integer(8), parameter :: findinfo_error = -3

  ! The present, for SETFILETIMEQQ.
  integer(4), parameter :: time_now = -1

  interface

    ! The status of a file: 1 device, 2 inode, 3 mode, 4 links, 5 owner, 6 group, 7 raw device, 8 size in bytes,
    ! 9 to 11 times of access, modification and creation, 12 block size; 13 is not written. The old element 3
    ! counts for some executable files: set it to 0 before. 34 and a size of -1 for 2 GiB or more.
    function stat(name, statb) result(error)
      character(len=*), intent(in) :: name
      integer(4), intent(inout) :: statb(13)
      integer(4) :: error
    end function stat

    function lstat(name, statb) result(error)
      character(len=*), intent(in) :: name
      integer(4), intent(inout) :: statb(13)
      integer(4) :: error
    end function lstat

    function stati8(name, statb) result(error)
      character(len=*), intent(in) :: name
      integer(8), intent(inout) :: statb(13)
      integer(4) :: error
    end function stati8

    function lstati8(name, statb) result(error)
      character(len=*), intent(in) :: name
      integer(8), intent(inout) :: statb(13)
      integer(4) :: error
    end function lstati8

    ! The status of a unit's file, in the same form. FSTAT: 34 and -1 from 4 GiB on, negative sizes from 2 GiB on.
    function fstat(lunit, statb) result(error)
      integer(4), intent(in) :: lunit
      integer(4), intent(inout) :: statb(13)
      integer(4) :: error
    end function fstat

    function fstati8(lunit, statb) result(error)
      integer(4), intent(in) :: lunit
      integer(8), intent(inout) :: statb(13)
      integer(4) :: error
    end function fstati8

    ! Whether a file may be accessed: mode is any of r, w, x and blanks; all blanks ask whether it exists. 0 yes.
    function access(name, mode) result(error)
      character(len=*), intent(in) :: name
      character(len=*), intent(in) :: mode
      integer(4) :: error
    end function access

    ! Gives or takes the right to write: mode is octal or [ugoa]*[+-=][rwxXst]*.
    function chmod(name, mode) result(error)
      character(len=*), intent(in) :: name
      character(len=*), intent(in) :: mode
      integer(4) :: error
    end function chmod

    ! The next file that matches a name or wildcard pattern; handle is FINDINFO_FIRST at first. Result: the
    ! name's length, 0 at the end.
    function getfileinfoqq(files, buffer, handle) result(length)
      import :: file_info
      character(len=*), intent(in) :: files
      type(file_info), intent(inout) :: buffer
      integer(8), intent(inout) :: handle
      integer(4) :: length
    end function getfileinfoqq

    function getfileinfoqqi8(files, buffer, handle) result(length)
      import :: file_info_i8
      character(len=*), intent(in) :: files
      type(file_info_i8), intent(inout) :: buffer
      integer(8), intent(inout) :: handle
      integer(4) :: length
    end function getfileinfoqqi8

    ! Searches a file in the default places, then in the directories that an environment variable names.
    ! Result: the length of its full path, 0 if it is not found.
    function findfileqq(filename, varname, pathbuf) result(length)
      character(len=*), intent(in) :: filename
      character(len=*), intent(in) :: varname
      character(len=*), intent(inout) :: pathbuf
      integer(4) :: length
    end function findfileqq

    ! Deletes the plain files that match a name or wildcard pattern. Result: how many.
    function delfilesqq(files) result(count)
      character(len=*), intent(in) :: files
      integer(4) :: count
    end function delfilesqq

    ! Rename a file: RENAMEFILEQQ refuses a new name that exists, RENAME replaces that file.
    function renamefileqq(oldname, newname) result(done)
      character(len=*), intent(in) :: oldname
      character(len=*), intent(in) :: newname
      logical(4) :: done
    end function renamefileqq

    function rename(from, to) result(error)
      character(len=*), intent(in) :: from
      character(len=*), intent(in) :: to
      integer(4) :: error
    end function rename

    ! Deletes a file.
    function unlink(name) result(error)
      character(len=*), intent(in) :: name
      integer(4) :: error
    end function unlink

    ! Sets a file's attributes, a sum of FILE_ bits without volume and directory.
    function setfileaccessqq(filename, access) result(done)
      character(len=*), intent(in) :: filename
      integer(4), intent(in) :: access
      logical(4) :: done
    end function setfileaccessqq

    ! Sets a file's times of access and modification.
    function setfiletimeqq(filename, timedate) result(done)
      character(len=*), intent(in) :: filename
      integer(4), intent(in) :: timedate
      logical(4) :: done
    end function setfiletimeqq

    ! Make, remove and change to a directory.
    function makedirqq(dirname) result(done)
      character(len=*), intent(in) :: dirname
      logical(4) :: done
    end function makedirqq

    function deldirqq(dirname) result(done)
      character(len=*), intent(in) :: dirname
      logical(4) :: done
    end function deldirqq

    function changedirqq(dir) result(done)
      character(len=*), intent(in) :: dir
      logical(4) :: done
    end function changedirqq

    function chdir(dir_name) result(error)
      character(len=*), intent(in) :: dir_name
      integer(4) :: error
    end function chdir

    ! The current directory; 34 and all blanks when it does not fit.
    function getcwd(dirname) result(error)
      character(len=*), intent(inout) :: dirname
      integer(4) :: error
    end function getcwd

    ! Drives and paths. Errors are reported.

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
      integer(4), intent(inout) :: total
      integer(4), intent(inout) :: avail
      logical(4) :: done
    end function getdrivesizeqq

    function getdrivesizeqqi8(drive, total, avail) result(done)
      character(len=*), intent(in) :: drive
      integer(8), intent(inout) :: total
      integer(8), intent(inout) :: avail
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
      character(len=*), intent(inout) :: pathbuf
      integer(4) :: length
    end function fullpathqq

    ! The parts of a path, made full first: "C:", "\a\b\", "name", ".ext". Result: the length of dir, or 0.
    function splitpathqq(path, drive, dir, name, ext) result(length)
      character(len=*), intent(in) :: path
      character(len=*), intent(inout) :: drive
      character(len=*), intent(inout) :: dir
      character(len=*), intent(inout) :: name
      character(len=*), intent(inout) :: ext
      integer(4) :: length
    end function splitpathqq

  end interface

end module qwport_files
