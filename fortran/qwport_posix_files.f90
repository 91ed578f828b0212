! SPDX-License-Identifier: MIT
! POSIX files, directories, descriptors and units. ierror is 0 for success, else a C error number, which is
! reported. A path is the first ilen characters, or for an ilen of 0 all without trailing white space. Flags and
! modes are the constants of C, as PXF_O_RDONLY and PXF_S_IREAD.
module qwport_posix_files
  use, intrinsic :: iso_c_binding, only: c_int32_t
  implicit none
  public
  private :: c_int32_t
  private :: pxfisdir_raw, pxfischr_raw, pxfisreg_raw, pxfisfifo_raw, pxfisblk_raw

  interface

    ! Opens a file with a sum of O_ flags, and for a new file its mode: the descriptor, or -1.
    subroutine pxfopen(path, ilen, iopenflag, imode, ifildes, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(in) :: iopenflag
      integer(4), intent(in) :: imode
      integer(4), intent(inout) :: ifildes
      integer(4), intent(out) :: ierror
    end subroutine pxfopen

    ! Makes or empties a file for writing; without S_IWRITE in imode it is read-only.
    subroutine pxfcreat(path, ilen, imode, ifildes, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(in) :: imode
      integer(4), intent(inout) :: ifildes
      integer(4), intent(out) :: ierror
    end subroutine pxfcreat

    ! Whether a file may be accessed: iamode is R_OK, W_OK, their sum, or F_OK.
    subroutine pxfaccess(path, ilen, iamode, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(in) :: iamode
      integer(4), intent(out) :: ierror
    end subroutine pxfaccess

    ! Gives or takes the right to write: S_IWRITE.
    subroutine pxfchmod(path, ilen, imode, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(in) :: imode
      integer(4), intent(out) :: ierror
    end subroutine pxfchmod

    ! Removes a file.
    subroutine pxfunlink(path, ilen, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfunlink

    ! Renames path to new, which must not exist.
    subroutine pxfrename(path, ilen, new, lennew, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      character(len=*), intent(in) :: new
      integer(4), intent(in) :: lennew
      integer(4), intent(out) :: ierror
    end subroutine pxfrename

    ! Gives the file path a second name, a hard link.
    subroutine pxflink(path, ilen, new, lennew, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      character(len=*), intent(in) :: new
      integer(4), intent(in) :: lennew
      integer(4), intent(out) :: ierror
    end subroutine pxflink

    ! Sets the times of a file from a utimbuf structure, or to now if jutimbuf is no handle. The path ends at its
    ! first blank.
    subroutine pxfutime(path, ilen, jutimbuf, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(in) :: jutimbuf
      integer(4), intent(out) :: ierror
    end subroutine pxfutime

    ! Fill a stat structure by name, where ilen does not count, and by descriptor.
    subroutine pxfstat(path, ilen, jstat, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(in) :: jstat
      integer(4), intent(out) :: ierror
    end subroutine pxfstat

    subroutine pxffstat(ifildes, jstat, ierror)
      integer(4), intent(in) :: ifildes
      integer(4), intent(in) :: jstat
      integer(4), intent(out) :: ierror
    end subroutine pxffstat

    ! Change to, make (imode does not count) and remove a directory.
    subroutine pxfchdir(path, ilen, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfchdir

    subroutine pxfmkdir(path, ilen, imode, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(in) :: imode
      integer(4), intent(out) :: ierror
    end subroutine pxfmkdir

    subroutine pxfrmdir(path, ilen, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfrmdir

    ! The current directory and its length; 129 and the length 0 if it does not fit.
    subroutine pxfgetcwd(buf, ilen, ierror)
      character(len=*), intent(inout) :: buf
      integer(4), intent(inout) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfgetcwd

    ! Opens a directory for reading; 20 for a file.
    subroutine pxfopendir(path, ilen, iopendirid, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(inout) :: iopendirid
      integer(4), intent(out) :: ierror
    end subroutine pxfopendir

    ! Puts the next entry's name into a dirent structure, "." and ".." included; 2 behind the last one.
    subroutine pxfreaddir(idirid, jdirent, ierror)
      integer(4), intent(in) :: idirid
      integer(4), intent(in) :: jdirent
      integer(4), intent(out) :: ierror
    end subroutine pxfreaddir

    ! Starts reading a directory over.
    subroutine pxfrewinddir(idirid, ierror)
      integer(4), intent(in) :: idirid
      integer(4), intent(out) :: ierror
    end subroutine pxfrewinddir

    ! Closes a directory and sets idirid to 0.
    subroutine pxfclosedir(idirid, ierror)
      integer(4), intent(inout) :: idirid
      integer(4), intent(out) :: ierror
    end subroutine pxfclosedir

    ! Another descriptor of the same open file: the next free one, or ifildes2.
    subroutine pxfdup(ifildes, ifid, ierror)
      integer(4), intent(in) :: ifildes
      integer(4), intent(inout) :: ifid
      integer(4), intent(out) :: ierror
    end subroutine pxfdup

    subroutine pxfdup2(ifildes, ifildes2, ierror)
      integer(4), intent(in) :: ifildes
      integer(4), intent(in) :: ifildes2
      integer(4), intent(out) :: ierror
    end subroutine pxfdup2

    ! Closes a descriptor.
    subroutine pxfclose(ifildes, ierror)
      integer(4), intent(in) :: ifildes
      integer(4), intent(out) :: ierror
    end subroutine pxfclose

    ! Read at most ibyte bytes into buf, a text or an array of them that has room for so many (0 at the end), and
    ! write ibyte bytes.
    subroutine pxfread(ifildes, buf, ibyte, ireadcount, ierror)
      integer(4), intent(in) :: ifildes
      character(len=1), intent(inout) :: buf(*)
      integer(4), intent(in) :: ibyte
      integer(4), intent(inout) :: ireadcount
      integer(4), intent(out) :: ierror
    end subroutine pxfread

    subroutine pxfwrite(ifildes, buf, ibyte, iwritecount, ierror)
      integer(4), intent(in) :: ifildes
      character(len=1), intent(in) :: buf(*)
      integer(4), intent(in) :: ibyte
      integer(4), intent(inout) :: iwritecount
      integer(4), intent(out) :: ierror
    end subroutine pxfwrite

    ! Positions a descriptor, from SEEK_SET (0), SEEK_CUR (1) or SEEK_END (2).
    subroutine pxflseek(ifildes, ioffset, iwhence, iposition, ierror)
      integer(4), intent(in) :: ifildes
      integer(4), intent(in) :: ioffset
      integer(4), intent(in) :: iwhence
      integer(4), intent(inout) :: iposition
      integer(4), intent(out) :: ierror
    end subroutine pxflseek

    ! A pipe: what is written to iwrite is read from iread.
    subroutine pxfpipe(iread, iwrite, ierror)
      integer(4), intent(inout) :: iread
      integer(4), intent(inout) :: iwrite
      integer(4), intent(out) :: ierror
    end subroutine pxfpipe

    ! Sets the mask of modes for new files.
    subroutine pxfumask(icmask, iprevcmask, ierror)
      integer(4), intent(in) :: icmask
      integer(4), intent(inout) :: iprevcmask
      integer(4), intent(out) :: ierror
    end subroutine pxfumask

    ! Limits, by a _PC_ constant of a path and of the current directory, and by an _SC_ constant of the system. 22 for
    ! other names; 34 and -1 for 2 GiB of memory or more.
    subroutine pxfpathconf(path, ilen, name, ival, ierror)
      character(len=*), intent(in) :: path
      integer(4), intent(in) :: ilen
      integer(4), intent(in) :: name
      integer(4), intent(inout) :: ival
      integer(4), intent(out) :: ierror
    end subroutine pxfpathconf

    subroutine pxffpathconf(ifildes, name, ival, ierror)
      integer(4), intent(in) :: ifildes
      integer(4), intent(in) :: name
      integer(4), intent(inout) :: ival
      integer(4), intent(out) :: ierror
    end subroutine pxffpathconf

    subroutine pxfsysconf(name, ival, ierror)
      integer(4), intent(in) :: name
      integer(4), intent(inout) :: ival
      integer(4), intent(out) :: ierror
    end subroutine pxfsysconf

    ! Switches POSIX I/O on or off for the process.
    subroutine pxfposixio(new, old, ierror)
      integer(4), intent(in) :: new
      integer(4), intent(inout) :: old
      integer(4), intent(out) :: ierror
    end subroutine pxfposixio

    ! The descriptor of a unit; 9 for a unit that is not open.
    subroutine pxffileno(lunit, fd, ierror)
      integer(4), intent(in) :: lunit
      integer(4), intent(inout) :: fd
      integer(4), intent(out) :: ierror
    end subroutine pxffileno

    ! Connects a descriptor to a unit, which then closes it. access: ' ' or keywords, as
    ! 'FORM=UNFORMATTED, POSITION=APPEND'.
    subroutine pxffdopen(ifildes, iunit, access, ierror)
      integer(4), intent(in) :: ifildes
      integer(4), intent(in) :: iunit
      character(len=*), intent(in) :: access
      integer(4), intent(out) :: ierror
    end subroutine pxffdopen

    ! Writes a unit to disk; 9 for a unit that is not open.
    subroutine pxffflush(lunit, ierror)
      integer(4), intent(in) :: lunit
      integer(4), intent(out) :: ierror
    end subroutine pxffflush

    ! Position a unit, and ask for its position; 22 for failures.
    subroutine pxffseek(lunit, ioffset, iwhence, ierror)
      integer(4), intent(in) :: lunit
      integer(4), intent(in) :: ioffset
      integer(4), intent(in) :: iwhence
      integer(4), intent(out) :: ierror
    end subroutine pxffseek

    subroutine pxfftell(lunit, ioffset, ierror)
      integer(4), intent(in) :: lunit
      integer(4), intent(inout) :: ioffset
      integer(4), intent(out) :: ierror
    end subroutine pxfftell

    ! Read a character of unit 5 or of a unit into the first position of a text; -1 at end of file, other negative
    ! numbers for failures.
    subroutine pxfgetc(nextcar, ierror)
      character(len=*), intent(inout) :: nextcar
      integer(4), intent(out) :: ierror
    end subroutine pxfgetc

    subroutine pxffgetc(lunit, char, ierror)
      integer(4), intent(in) :: lunit
      character(len=*), intent(inout) :: char
      integer(4), intent(out) :: ierror
    end subroutine pxffgetc

    ! Write the first character of ch to unit 6 or to a unit.
    subroutine pxfputc(ch, ierror)
      character(len=*), intent(in) :: ch
      integer(4), intent(out) :: ierror
    end subroutine pxfputc

    subroutine pxffputc(lunit, ch, ierror)
      integer(4), intent(in) :: lunit
      character(len=*), intent(in) :: ch
      integer(4), intent(out) :: ierror
    end subroutine pxffputc

    pure function pxfisdir_raw(m) result(answer) bind(C, name='PXFISDIR')
      import :: c_int32_t
      integer(c_int32_t), intent(in) :: m
      integer(c_int32_t) :: answer
    end function pxfisdir_raw

    pure function pxfischr_raw(m) result(answer) bind(C, name='PXFISCHR')
      import :: c_int32_t
      integer(c_int32_t), intent(in) :: m
      integer(c_int32_t) :: answer
    end function pxfischr_raw

    pure function pxfisreg_raw(m) result(answer) bind(C, name='PXFISREG')
      import :: c_int32_t
      integer(c_int32_t), intent(in) :: m
      integer(c_int32_t) :: answer
    end function pxfisreg_raw

    pure function pxfisfifo_raw(m) result(answer) bind(C, name='PXFISFIFO')
      import :: c_int32_t
      integer(c_int32_t), intent(in) :: m
      integer(c_int32_t) :: answer
    end function pxfisfifo_raw

    pure function pxfisblk_raw(m) result(answer) bind(C, name='PXFISBLK')
      import :: c_int32_t
      integer(c_int32_t), intent(in) :: m
      integer(c_int32_t) :: answer
    end function pxfisblk_raw

  end interface

contains

  ! The kind of file that a mode (st_mode) tells: directory, character device, plain file, pipe, and block device,
  ! which is always false. The library answers true as -1.
  elemental function pxfisdir(m) result(answer)
    integer(4), intent(in) :: m
    logical(4) :: answer

    answer = btest(pxfisdir_raw(m), 0)
  end function pxfisdir

  elemental function pxfischr(m) result(answer)
    integer(4), intent(in) :: m
    logical(4) :: answer

    answer = btest(pxfischr_raw(m), 0)
  end function pxfischr

  elemental function pxfisreg(m) result(answer)
    integer(4), intent(in) :: m
    logical(4) :: answer

    answer = btest(pxfisreg_raw(m), 0)
  end function pxfisreg

  elemental function pxfisfifo(m) result(answer)
    integer(4), intent(in) :: m
    logical(4) :: answer

    answer = btest(pxfisfifo_raw(m), 0)
  end function pxfisfifo

  elemental function pxfisblk(m) result(answer)
    integer(4), intent(in) :: m
    logical(4) :: answer

    answer = btest(pxfisblk_raw(m), 0)
  end function pxfisblk

end module qwport_posix_files
