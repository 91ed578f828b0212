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
  call test_access()
  call test_modes()
  call test_listing()
  call test_names()
  call test_paths()
  call expect('chdir', chdir(start), 0)
  call expect('deldirqq', deldirqq(dir//'\sub'//'  ') .and. deldirqq(dir))
  call finish()

contains

  ! What a failed call has reported; -1 for one that has not failed.
  integer function failure(done)
    logical, intent(in) :: done

    call errsns(system=failure)
    if (done) failure = -1
  end function failure

  subroutine make_file(name)
    character(len=*), intent(in) :: name
    integer :: unit

    open (newunit=unit, file=name, status='replace', access='stream')
    write (unit) '12345'
    close (unit)
  end subroutine make_file

  ! By name and by unit, with the units of the real core runtime.
  subroutine test_status()
    character(len=12), parameter :: names(*) = [character(len=12) :: 'plain.txt', 'B.KSH', 'a.exe.txt', 'r.txt', 'r.ksh']
    integer, parameter :: modes(*) = [33206, 33279, 33206, 33060, 33133]  ! octal 100666, 777, 444 and 555
    integer :: narrow(13, 3), results(6), i, k
    integer(8) :: wide(13, 3)

    do i = 1, size(names)
      call make_file(names(i))
      call expect('time', setfiletimeqq(names(i), 1000000000))
      if (names(i)(1:1) == 'r') call expect('read-only', setfileaccessqq(names(i), file_readonly))
      open (21, file=names(i), status='old', action='read')
      narrow = -77
      wide = -77
      results = [stat(names(i), narrow(:, 1)), lstat(names(i), narrow(:, 2)), fstat(21, narrow(:, 3)), &
                 stati8(names(i), wide(:, 1)), lstati8(names(i), wide(:, 2)), fstati8(21, wide(:, 3))]
      narrow([2, 9, 11], :) = 0  ! the host's number for the file, and the times when it was opened and made
      wide([2, 9, 11], :) = 0
      call expect(names(i), [results, narrow, int(wide)], [0, 0, 0, 0, 0, 0, &
                  ([0, 0, modes(i), 1, 1, 1, 0, 5, 0, 1000000000, 0, 1, -77], k=1, 6)])
      close (21)
      call expect('made writable, deleted', [chmod(names(i), '644'), unlink(names(i))], [0, 0])
    end do
    call expect('failures', [fstat(21, narrow(:, 1)), stat('missing', narrow(:, 1)), ierrno()], [22, 2, 2])
    call expect('a directory', makedirqq('sub  ') .and. stat('sub', narrow(:, 1)) == 0)
    call expect('its mode', narrow(3, 1), int(o'040777'))
  end subroutine test_status

  ! The host decides on reading and writing, the extension on execution.
  subroutine test_access()
    character(len=9), parameter :: names(*) = [character(len=9) :: 'plain.txt', 'noext', '.exe', 'run.cmd', 'RUN2.CSH', 'r.bat']
    integer :: i

    do i = 1, size(names)
      call make_file(names(i))
    end do
    call expect('attributes', setfileaccessqq('r.bat', file_readonly))
    call expect('read, write', [access('plain.txt  ', '  '), access('plain.txt', 'RW'), access('plain.txt', 'r w'), &
                                access('r.bat', 'r'), access('r.bat', 'w'), access('missing', ' ')], [0, 0, 0, 0, 13, 2])
    call expect('execute', [(access(names(i), 'x'), i=1, 6), access('run.cmd', 'rwx'), access('missing.exe', 'x')], &
                [13, 13, 13, 0, 0, 0, 0, 2])
    ! Other characters and empty arguments are refused before it looks at the file.
    call expect('refused', [access('missing', 'rw-'), access('missing', 'q'), access('missing', 'r'//char(9)), &
                            access('missing', ''), access('', 'r'), ierrno()], [22, 22, 22, 22, 22, 22])
    call expect('attributes', setfileaccessqq('r.bat', 0))
    call expect('deleted', [delfilesqq('r*.*'), delfilesqq('noext'), unlink('.exe')], [3, 1, 0])
  end subroutine test_access

  subroutine test_modes()
    call expect_modes([character(len=6) :: '644', '0200', '+w', 'a+w', 'u=rw', '=rwXst'], 0, [.true., .true.])
    call expect_modes([character(len=7) :: 'a-w', 'ugo-rwx', '-w'], 0, [.false., .false.])
    call expect_modes([character(len=5) :: '444', 'go=rx', 'u+x', 'w', 'ug', '', '+'], 0, [.true., .false.])
    call expect_modes([character(len=4) :: '0', '8', '64x', 'u+W', 'A+w', '+w-r'], 22, [.true., .false.])
    call expect('failures', [chmod('missing', 'u+W'), chmod('missing', '+w'), ierrno()], [22, 2, 2])
  end subroutine test_modes

  ! CHMOD's result, and whether it leaves a writable and a read-only file writable.
  subroutine expect_modes(modes, expected, writable)
    character(len=*), intent(in) :: modes(:)
    integer, intent(in) :: expected
    logical, intent(in) :: writable(2)
    integer, parameter :: before(2) = [0, file_readonly]
    integer :: i, k, result

    do i = 1, size(modes)
      do k = 1, 2
        call expect('before', setfileaccessqq('plain.txt', before(k)))
        result = chmod('plain.txt', trim(modes(i)))
        call expect(modes(i), result == expected .and. (access('plain.txt', 'w') == 0 .eqv. writable(k)))
      end do
    end do
  end subroutine expect_modes

  subroutine test_listing()
    type(file_info) :: info
    type(file_info_i8) :: long
    integer(8), parameter :: marks(3) = [findinfo_error, findinfo_last, findinfo_last]
    integer(8) :: handle
    integer :: count, length

    call expect('unlink', [chmod('plain.txt', '+w'), unlink('plain.txt')], [0, 0])
    call make_file('a.txt')
    call expect('changes', setfiletimeqq('a.txt', 1000000000) .and. setfileaccessqq('a.txt', file_readonly))
    handle = findinfo_first
    call expect('its length', getfileinfoqq('*.txt  ', info, handle), 5)
    call expect('the end is reported', [getfileinfoqq('*.txt', info, handle), failure(.false.)], [0, 2])
    call expect('an entry, which stays at the end', [info%written, info%accessed, info%size, iand(info%attributes, 1)], &
                [1000000000, 1000000000, 5, 1])
    handle = findinfo_first
    long%gap = 1234
    length = getfileinfoqqi8('a.txt', long, handle)
    call expect('a wide entry', [long%written, long%accessed, long%gap, int(long%size), iand(long%attributes, 1)], &
                [1000000000, 1000000000, 1234, 5, 1])
    call expect('names', info%name//long%name, 'a.txt'//repeat(' ', 250)//'a.txt')
    length = getfileinfoqqi8('a.txt', long, handle)
    handle = findinfo_first
    do count = 1, 3
      call expect('nothing', [getfileinfoqq('*.none', info, handle), failure(.false.)], [0, 2])
      call expect('its mark', handle == marks(count))
    end do
  end subroutine test_listing

  subroutine test_names()
    character(len=260) :: path, here
    integer :: length, status(13)

    ! The end of the listing is reported.
    call make_file('sub\a.tmp')
    call make_file('sub\b.tmp')
    call make_file('sub\keep.txt')
    call make_file('here.tmp')
    call make_file('b.txt')
    call expect('delfilesqq', [delfilesqq('sub\*.tmp  '), failure(.false.), access('sub\a.tmp', ' '), access('here.tmp', ' '), &
                               delfilesqq('none\*'), failure(.false.), delfilesqq('sub\'), failure(.false.)], &
                [2, 22, 2, 0, 0, 2, 0, 22])
    call expect('unlink', [unlink('sub\keep.txt  '), unlink('sub\keep.txt'), ierrno()], [0, 2, 2])

    ! RENAMEFILEQQ refuses a new name that exists; RENAME replaces it.
    call expect('renamefileqq', [failure(renamefileqq('b.txt', 'a.txt')), failure(renamefileqq('b.txt ', 'c.txt '))], [17, -1])
    call expect('rename', [chmod('a.txt', '+w'), rename('c.txt', 'a.txt'), access('c.txt', ' '), access('a.txt', ' '), &
                           rename('missing', 'a.txt'), ierrno(), access('a.txt', ' ')], [0, 0, 2, 0, 2, 2, 0])
    call expect('setfiletimeqq', setfiletimeqq('a.txt', time_now) .and. stat('a.txt', status) == 0 .and. status(10) > 1700000000)
    call expect('failures', [failure(setfileaccessqq('a.txt', file_directory)), failure(setfileaccessqq('a.txt', file_volume)), &
                failure(setfileaccessqq('missing', 0)), failure(setfiletimeqq('missing', time_now))], [22, 22, 13, 2])

    ! FINDFILEQQ searches the default places, then the variable's directories.
    call make_file('sub\there.txt')
    length = getcwd(here)
    length = len_trim(here)
    call expect('getcwd', [getcwd(path(:length)), getcwd(here(:length - 1)), ierrno(), getcwd(here(:0)), ierrno()], &
                [0, 34, 34, 2, 2])
    call expect('blank', here(:length - 1), ' ')
    here = path(:length)
    call expect('setenvqq', setenvqq('QWPORT_DIRS=C:\none;'//trim(here)//'\sub'))
    length = findfileqq('here.tmp ', 'QWPORT_DIRS', path)
    call expect('findfileqq', path(:length), trim(here)//'\here.tmp')
    length = findfileqq('there.txt', 'QWPORT_DIRS ', path)
    call expect('findfileqq', path(:length), trim(here)//'\sub\there.txt')
    call expect('not found', [findfileqq('nowhere.txt', 'QWPORT_DIRS', path), failure(.false.), &
                              findfileqq('there.txt', 'QWPORT_NONE', path)], [0, 2, 0])
    call expect('cut', [findfileqq('here.tmp', '', path(:4)), failure(.false.)], [4, 22])
    call expect('cut', path(:4), here(:4))
    call expect('delfilesqq', [delfilesqq('*'), delfilesqq('sub\*')], [2, 1])
  end subroutine test_names

  subroutine test_paths()
    character(len=260) :: path, directory
    character(len=26) :: drives
    character(len=5) :: short
    integer :: length

    length = fullpathqq('sub\..\a.txt ', path)
    call expect('fullpathqq', [fullpathqq('a.txt', directory(:length)), fullpathqq('a.txt', short), failure(.false.)], &
                [length, length + 1, 22])
    call expect('full, or blank', directory(:length)//short, trim(path))
    call getdrivesqq(drives)
    call expect('getdrivesqq', index(drives, path(1:1)), iachar(path(1:1)) - iachar('A') + 1)
    directory = path(1:1)
    length = getdrivedirqq(directory)
    call expect('getdrivedirqq', directory(length - len(dir) + 1:length), dir)
    call expect('there and back', changedriveqq(path(1:1)) .and. changedirqq(start) .and. changedirqq(dir))
    call expect('directories', [failure(makedirqq('sub')), getlasterror(), failure(changedirqq('missing'))], [0, 17, 2])
    call make_file('file')
    call expect('chdir', [chdir('missing'), ierrno(), chdir('file'), ierrno(), unlink('file')], [2, 2, 20, 20, 0])
    call expect('deldirqq', .not. deldirqq('missing'))
  end subroutine test_paths

end program files_test
