! SPDX-License-Identifier: MIT
! Files, directories, drives and paths as a Fortran program meets them, with the core runtime for GNU Fortran.
program files_test
  use check
  use qwport
  implicit none
  character(len=*), parameter :: dir = 'files_test_dir'
  character(len=260) :: start

  call expect('getcwd', getcwd(start), 0)
  if (.not. makedirqq(dir)) call abort('cannot make '//dir)
  call expect('changedirqq', changedirqq(dir))
  call test_status()
  call test_listing()
  call test_paths()
  call expect('chdir', chdir(start), 0)
  call expect('deldirqq', deldirqq(dir))
  call finish()

contains

  ! By name and by unit, with the units of the real core runtime.
  subroutine test_status()
    integer :: by_name(13), by_unit(13)
    integer(8) :: wide_by_name(13), wide_by_unit(13)
    character(len=20) :: terminal

    open (21, file='plain.txt', status='replace', access='stream')
    write (21) '12345'
    close (21)
    by_name = 0
    call expect('stat', [stat('plain.txt', by_name), by_name(8), by_name(3)], [0, 5, int(o'100666')])
    call expect('lstat', [lstat('plain.txt', by_name), lstati8('plain.txt', wide_by_name)], [0, 0])
    call expect('stati8', stati8('plain.txt', wide_by_name), 0)
    open (21, file='plain.txt', status='old')
    call expect('fstat', [fstat(21, by_unit), fstati8(21, wide_by_unit)], [0, 0])
    call expect('agree', all([int(by_unit([8, 10]), 8), wide_by_unit([8, 10])] == [wide_by_name([8, 10]), wide_by_name([8, 10])]))
    call ttynam(terminal, 21)
    call expect('ttynam', terminal == ' ' .and. .not. isatty(21))
    close (21)
    call expect('fstat of a closed unit', fstat(21, by_unit), 22)
    call expect('access', [access('plain.txt', 'x'), chmod('plain.txt', 'a-w'), access('plain.txt', 'w')], [13, 0, 13])
    call expect('chmod', chmod('plain.txt', '644'), 0)
  end subroutine test_status

  subroutine test_listing()
    type(file_info) :: info
    type(file_info_i8) :: long
    character(len=300) :: path
    integer(8) :: handle
    integer :: length

    call expect('changes', setfiletimeqq('plain.txt', 1000000000) .and. setfileaccessqq('plain.txt', file_readonly))
    handle = findinfo_first
    length = getfileinfoqq('*.txt', info, handle)
    call expect('sizes', [storage_size(info), storage_size(long)], 8*[276, 288])
    call expect('an entry', [info%written, info%accessed, info%size, iand(info%attributes, 1)], [1000000000, 1000000000, 5, 1])
    call expect('its name', info%name, 'plain.txt')
    call expect('the end', getfileinfoqq('*.txt', info, handle) == 0 .and. handle == findinfo_last)
    handle = findinfo_first
    length = getfileinfoqqi8('plain.txt', long, handle)
    call expect('a wide entry', [long%written, long%accessed, int(long%size), iand(long%attributes, 1)], &
                [1000000000, 1000000000, 5, 1])
    call expect('its name', long%name, 'plain.txt')
    length = getfileinfoqqi8('plain.txt', long, handle)
    call expect('findfileqq', findfileqq('plain.txt', 'PATH', path) > 0)
    call expect('delfilesqq keeps a read-only file', delfilesqq('*.txt'), 0)
    call expect('names', setfileaccessqq('plain.txt', file_archive) .and. renamefileqq('plain.txt', 'other.txt'))
    call expect('rename, unlink', [rename('other.txt', 'last.txt'), unlink('last.txt'), unlink('last.txt')], [0, 0, 2])
  end subroutine test_listing

  subroutine test_paths()
    character(len=260) :: path, directory
    character(len=26) :: drives
    character(len=2) :: drive
    character(len=20) :: name
    character(len=5) :: extension
    integer :: length, total, avail
    integer(8) :: wide_total, wide_avail

    length = fullpathqq('a.txt', path)
    length = splitpathqq(path, drive, directory, name, extension)
    call expect('splitpathqq', directory(length - len(dir):length - 1) == dir .and. name == 'a' .and. extension == '.txt')
    call getdrivesqq(drives)
    call expect('getdrivesqq', index(drives, drive(1:1)), iachar(drive(1:1)) - iachar('A') + 1)
    directory = drive(1:1)
    length = getdrivedirqq(directory)
    call expect('getdrivedirqq', directory(length - len(dir) + 1:length), dir)
    call expect('getdrivesizeqqi8', getdrivesizeqqi8(drive, wide_total, wide_avail) .and. wide_total > 0)
    call expect('getdrivesizeqq', getdrivesizeqq(drive, total, avail))
    call expect('there and back', changedriveqq(drive) .and. changedirqq(start) .and. changedirqq(dir))
  end subroutine test_paths

end program files_test
