! SPDX-License-Identifier: MIT
! Listing a directory of 10,000 files with GETFILEINFOQQ and STAT of each, against the bare C run-time.
program file_listing
  use qwport
  use timing
  implicit none

  interface
    integer(c_int32_t) function bare_listing(total_size) bind(C)
      use, intrinsic :: iso_c_binding, only: c_int32_t, c_int64_t
      integer(c_int64_t), intent(inout) :: total_size
    end function bare_listing
  end interface

  integer, parameter :: rounds = 7, files = 10000
  character(len=*), parameter :: dir = 'file_listing_dir'
  real(8) :: library(rounds), bare(rounds), start
  integer(8) :: library_total, bare_total
  integer :: i, deleted

  if (.not. makedirqq(dir)) call abort('the directory exists: '//dir)
  if (.not. changedirqq(dir)) call abort('cannot enter '//dir)
  call make_files()
  do i = 1, rounds
    library_total = 0
    bare_total = 0
    start = now()
    if (library_listing(library_total) /= files) call abort('files are missing')
    library(i) = now() - start
    start = now()
    if (bare_listing(bare_total) /= files) call abort('files are missing')
    bare(i) = now() - start
    if (library_total /= bare_total) call abort('the sizes differ')
  end do
  deleted = delfilesqq('*.dat')
  if (.not. changedirqq('..')) call abort('cannot leave '//dir)
  if (deleted /= files .or. .not. deldirqq(dir)) call abort('cannot remove '//dir)

  call print_head('a file', 'library', 'C run-time')
  call report('GETFILEINFOQQ and STAT', library, bare, files, 1.05d0)

contains

  subroutine make_files()
    character(len=12) :: name
    integer :: i, unit

    do i = 1, files
      write (name, '(a,i5.5,a)') 'f', i, '.dat'
      open (newunit=unit, file=name, status='new')
      write (unit, '(i0)') i
      close (unit)
    end do
  end subroutine make_files

  integer function library_listing(total_size) result(count)
    integer(8), intent(inout) :: total_size
    type(file_info) :: info
    integer(8) :: handle
    integer :: length, status(13)

    count = 0
    handle = findinfo_first
    do
      length = getfileinfoqq('*.dat', info, handle)
      if (length == 0) exit
      if (stat(info%name(:length), status) /= 0) exit
      total_size = total_size + status(8)
      count = count + 1
    end do
  end function library_listing

end program file_listing
