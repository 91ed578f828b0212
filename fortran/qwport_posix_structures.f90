! SPDX-License-Identifier: MIT
! POSIX structures and constants. ierror is 0 for success, else an error number: PXF_ENONAME (126, no such name),
! PXF_ENOHANDLE (127, no such handle), PXF_ETRUNC (129, a text was cut) or one of C. Failures are reported. Names
! end at their first blank, and case counts.
!
! Structures and their fields:
!   sigaction  sa_handler sa_mask sa_flags
!   utsname    sysname nodename release version machine (texts)
!   tms        tms_utime tms_stime tms_cutime tms_cstime
!   dirent     d_name (a text)
!   stat       st_mode st_ino st_dev st_nlink st_uid st_gid st_size st_atime st_mtime st_ctime
!   utimbuf    actime modtime
module qwport_posix_structures
  use, intrinsic :: iso_c_binding, only: c_char, c_int32_t, c_size_t
  implicit none
  public
  private :: c_char, c_int32_t, c_size_t, pxfisconst_raw
  private :: report_no_field, report_no_array, report_no_text_array

  interface

    ! Makes a structure of zeros.
    subroutine pxfstructcreate(structname, jhandle, ierror)
      character(len=*), intent(in) :: structname
      integer(4), intent(inout) :: jhandle
      integer(4), intent(out) :: ierror
    end subroutine pxfstructcreate

    ! Frees a structure and sets jhandle to 0; 126 for a directory stream.
    subroutine pxfstructfree(jhandle, ierror)
      integer(4), intent(inout) :: jhandle
      integer(4), intent(out) :: ierror
    end subroutine pxfstructfree

    ! Copies all fields from jhandle1 to jhandle2; 22 for different structures, 126 if they are not the named one.
    subroutine pxfstructcopy(structname, jhandle1, jhandle2, ierror)
      character(len=*), intent(in) :: structname
      integer(4), intent(in) :: jhandle1
      integer(4), intent(in) :: jhandle2
      integer(4), intent(out) :: ierror
    end subroutine pxfstructcopy

    ! Read and write a number in a structure. PXFINTGET gives 0 and 34 for a value that does not fit. PXFINT8SET gives
    ! 34 for a value that the field has no room for, and stores sa_flags into sa_mask.
    subroutine pxfintget(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfintget

    subroutine pxfintset(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(4), intent(in) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfintset

    subroutine pxfint8get(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(8), intent(inout) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfint8get

    subroutine pxfint8set(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      integer(8), intent(in) :: value
      integer(4), intent(out) :: ierror
    end subroutine pxfint8set

    ! Reads a text in a structure, and its whole length into ilen; 129 if it was cut.
    subroutine pxfstrget(jhandle, compname, value, ilen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      character(len=*), intent(inout) :: value
      integer(4), intent(inout) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfstrget

    ! Writes the first ilen characters of value into a structure; 22 if it is shorter, 129 if they were cut. Room:
    ! sysname 60, nodename 15, release, version and machine 59, d_name 260. Set sysname before nodename: its 60th
    ! character needs the place of nodename's first.
    subroutine pxfstrset(jhandle, compname, value, ilen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      character(len=*), intent(in) :: value
      integer(4), intent(in) :: ilen
      integer(4), intent(out) :: ierror
    end subroutine pxfstrset

    ! The handle of a subroutine of one INTEGER argument, always the same one. No internal subroutine: its address
    ! ends with its host.
    subroutine pxfgetsubhandle(sub, jhandle, ierror)
      external :: sub
      integer(4), intent(inout) :: jhandle
      integer(4), intent(out) :: ierror
    end subroutine pxfgetsubhandle

    ! Calls a subroutine by its handle with the argument ival, which may be a constant if the subroutine leaves it.
    subroutine pxfcallsubhandle(jhandle, ival, ierror)
      integer(4), intent(in) :: jhandle
      integer(4) :: ival
      integer(4), intent(out) :: ierror
    end subroutine pxfcallsubhandle

    ! The value of a C constant by name, as 'O_CREAT': -1 and 126 for an unknown name, and errno is left alone. Each
    ! is also a named constant of this module: PXF_O_CREAT; '_SC_PAGESIZE' is PXF_SC_PAGESIZE.
    subroutine pxfconst(constname, ival, ierror)
      character(len=*), intent(in) :: constname
      integer(4), intent(inout) :: ival
      integer(4), intent(out) :: ierror
    end subroutine pxfconst

    ! The value of a C constant by name: -1 for an unknown name.
    function ipxfconst(constname) result(value)
      character(len=*), intent(in) :: constname
      integer(4) :: value
    end function ipxfconst

    pure function pxfisconst_raw(s, s_len) result(answer) bind(C, name='PXFISCONST')
      import :: c_char, c_int32_t, c_size_t
      character(kind=c_char), intent(in) :: s(*)
      integer(c_size_t), value :: s_len
      integer(c_int32_t) :: answer
    end function pxfisconst_raw

  end interface

  ! Accessors of kinds of fields that no structure has: ierror is 126, and nothing else is looked at, but for the
  ! handle by those of integers. value, index and ilen may be of any type and shape, in either order.
  abstract interface

    subroutine report_no_field(jhandle, compname, value, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      type(*) :: value(..)
      integer(4), intent(out) :: ierror
    end subroutine report_no_field

    subroutine report_no_array(jhandle, compname, value, index, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      type(*) :: value(..), index(..)
      integer(4), intent(out) :: ierror
    end subroutine report_no_array

    subroutine report_no_text_array(jhandle, compname, value, index, ilen, ierror)
      integer(4), intent(in) :: jhandle
      character(len=*), intent(in) :: compname
      type(*) :: value(..), index(..), ilen(..)
      integer(4), intent(out) :: ierror
    end subroutine report_no_text_array

  end interface

  procedure(report_no_field) :: pxfrealget
  procedure(report_no_field) :: pxfrealset
  procedure(report_no_field) :: pxfdblget
  procedure(report_no_field) :: pxfdblset
  procedure(report_no_field) :: pxflgclget
  procedure(report_no_field) :: pxflgclset
  procedure(report_no_field) :: pxfcharget
  procedure(report_no_field) :: pxfcharset
  procedure(report_no_array) :: pxfaintget
  procedure(report_no_array) :: pxfaintset
  procedure(report_no_array) :: pxfaint8get
  procedure(report_no_array) :: pxfaint8set
  procedure(report_no_array) :: pxfeintget
  procedure(report_no_array) :: pxfeintset
  procedure(report_no_array) :: pxfeint8get
  procedure(report_no_array) :: pxfeint8set
  procedure(report_no_array) :: pxfarealget
  procedure(report_no_array) :: pxfarealset
  procedure(report_no_array) :: pxfadblget
  procedure(report_no_array) :: pxfadblset
  procedure(report_no_array) :: pxfalgclget
  procedure(report_no_array) :: pxfalgclset
  procedure(report_no_array) :: pxfacharget
  procedure(report_no_array) :: pxfacharset
  procedure(report_no_array) :: pxferealget
  procedure(report_no_array) :: pxferealset
  procedure(report_no_array) :: pxfedblget
  procedure(report_no_array) :: pxfedblset
  procedure(report_no_array) :: pxfelgclget
  procedure(report_no_array) :: pxfelgclset
  procedure(report_no_array) :: pxfecharget
  procedure(report_no_array) :: pxfecharset
  procedure(report_no_text_array) :: pxfastrget
  procedure(report_no_text_array) :: pxfastrset
  procedure(report_no_text_array) :: pxfestrget
  procedure(report_no_text_array) :: pxfestrset

contains

  ! Whether PXFCONST knows the name. The library answers true as -1.
  pure function pxfisconst(s) result(answer)
    character(len=*), intent(in) :: s
    logical(4) :: answer

    answer = btest(pxfisconst_raw(s, len(s, c_size_t)), 0)
  end function pxfisconst

end module qwport_posix_structures
