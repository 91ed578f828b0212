! SPDX-License-Identifier: MIT
! Files, directories, drives and paths as a Fortran program meets them, with the core runtime for GNU Fortran.
program files_test
  use, intrinsic :: iso_c_binding, only: c_loc, c_intptr_t, c_ptr
  use check
  use qwport
  implicit none
  character(len=*), parameter :: dir = 'files_test_dir'
  character(len=260) :: start

  call expect('getcwd', getcwd(start), 0)
  if (.not. makedirqq(dir)) call abort('cannot make '//dir)
  call expect('changedirqq', changedirqq(dir))
  call test_records()
  call test_status()
  call test_listing()
  call test_changes()
  call test_paths()
  call expect('chdir', chdir(start), 0)
  call expect('deldirqq', deldirqq(dir))
  call finish()

contains

  subroutine make(name, contents)
    character(len=*), intent(in) :: name, contents
    integer :: unit

    open (newunit=unit, file=name, status='replace', access='stream')
    write (unit) contents
    close (unit)
  end subroutine make

  ! The layout that the library fills.
  subroutine test_records()
    type(file_info), target :: short
    type(file_info_i8), target :: long

    call expect('size', offset(c_loc(short%size), c_loc(short)), 12)
    call expect('attributes', offset(c_loc(short%attributes), c_loc(short)), 16)
    call expect('name', offset(c_loc(short%name), c_loc(short)), 20)
    call expect('long written', offset(c_loc(long%written), c_loc(long)), 4)
    call expect('long accessed', offset(c_loc(long%accessed), c_loc(long)), 8)
    call expect('long size', offset(c_loc(long%size), c_loc(long)), 16)
    call expect('long attributes', offset(c_loc(long%attributes), c_loc(long)), 24)
    call expect('long name', offset(c_loc(long%name), c_loc(long)), 28)
    call expect('records', storage_size(short)/8 + storage_size(long)/8, 276 + 288)
  end subroutine test_records

  integer function offset(field, record)
    type(c_ptr), intent(in) :: field, record

    offset = int(transfer(field, 0_c_intptr_t) - transfer(record, 0_c_intptr_t))
  end function offset

  subroutine test_status()
    integer :: by_name(13), by_unit(13)
    integer(8) :: wide_by_name(13), wide_by_unit(13)
    character(len=20) :: terminal

    call make('plain.txt', '12345')
    by_name = 0
    call expect('stat', stat('plain.txt', by_name), 0)
    call expect('size', by_name(8), 5)
    call expect('mode', by_name(3), int(o'100666'))
    call expect('lstat', lstat('plain.txt', by_name), 0)
    call expect('stati8', stati8('plain.txt', wide_by_name), 0)
    call expect('lstati8', lstati8('plain.txt', wide_by_name), 0)
    open (21, file='plain.txt', status='old')
    call expect('fstat', fstat(21, by_unit), 0)
    call expect('fstati8', fstati8(21, wide_by_unit), 0)
    call expect('size by unit', by_unit(8) == 5 .and. wide_by_unit(8) == 5 .and. wide_by_name(8) == 5)
    call expect('times agree', by_unit(10) == by_name(10) .and. wide_by_unit(10) == wide_by_name(10))
    call expect('isatty', .not. isatty(21))
    call ttynam(terminal, 21)
    call expect('ttynam', terminal, ' ')
    close (21)
    call expect('fstat of a closed unit', fstat(21, by_unit), 22)
    call expect('stat of no file', stat('none', by_name), 2)
    call expect('access', access('plain.txt', 'rw'), 0)
    call expect('access for execution', access('plain.txt', 'x'), 13)
    call expect('chmod', chmod('plain.txt', 'a-w'), 0)
    call expect('access of a read-only file', access('plain.txt', 'w'), 13)
    call expect('chmod back', chmod('plain.txt', '644'), 0)
  end subroutine test_status

  subroutine test_listing()
    type(file_info) :: info
    type(file_info_i8) :: info_i8
    integer(8) :: handle
    integer :: length, total

    call make('second.txt', '123')
    total = 0
    handle = findinfo_first
    do
      length = getfileinfoqq('*.txt', info, handle)
      if (length == 0) exit
      call expect('name', info%name(length - 3:), '.txt')
      total = total + info%size
    end do
    call expect('sizes', total, 8)
    call expect('the handle tells the end', handle == findinfo_last)
    handle = findinfo_first
    length = getfileinfoqqi8('second.txt', info_i8, handle)
    call expect('i8', info_i8%name(:length) == 'second.txt' .and. info_i8%size == 3)
    call expect('no directory', iand(info_i8%attributes, file_directory), 0)
    length = getfileinfoqqi8('second.txt', info_i8, handle)
  end subroutine test_listing

  subroutine test_changes()
    character(len=300) :: path
    integer :: status(13)

    call expect('findfileqq', findfileqq('second.txt', 'PATH', path) > 0)
    call expect('setfiletimeqq', setfiletimeqq('second.txt', 1000000000))
    call expect('the time is set', stat('second.txt', status) == 0 .and. status(10) == 1000000000)
    call expect('setfileaccessqq', setfileaccessqq('second.txt', file_readonly))
    call expect('delfilesqq keeps a read-only file', delfilesqq('*.txt'), 1)
    call expect('setfileaccessqq back', setfileaccessqq('second.txt', file_archive))
    call expect('renamefileqq', renamefileqq('second.txt', 'third.txt'))
    call expect('rename', rename('third.txt', 'fourth.txt'), 0)
    call expect('unlink', unlink('fourth.txt'), 0)
    call expect('unlink of no file', unlink('fourth.txt'), 2)
  end subroutine test_changes

  subroutine test_paths()
    character(len=260) :: path, directory
    character(len=26) :: drives
    character(len=2) :: drive
    character(len=20) :: name
    character(len=5) :: extension
    integer :: length, total, avail
    integer(8) :: wide_total, wide_avail

    length = fullpathqq('a.txt', path)
    call expect('fullpathqq', path(length - 5:length), '\a.txt')
    length = splitpathqq(path, drive, directory, name, extension)
    call expect('splitpathqq', directory(length - len(dir):length - 1) == dir .and. name == 'a' .and. extension == '.txt')
    call getdrivesqq(drives)
    call expect('getdrivesqq', index(drives, drive(1:1)), iachar(drive(1:1)) - iachar('A') + 1)
    directory = drive(1:1)
    length = getdrivedirqq(directory)
    call expect('getdrivedirqq', directory(length - len(dir) + 1:length), dir)
    call expect('getdrivesizeqqi8', getdrivesizeqqi8(drive, wide_total, wide_avail) .and. wide_total > 0)
    call expect('getdrivesizeqq', getdrivesizeqq(drive, total, avail))
    call expect('changedriveqq', changedriveqq(drive))
    call expect('back', changedirqq(start) .and. changedirqq(dir))
  end subroutine test_paths

end program files_test
