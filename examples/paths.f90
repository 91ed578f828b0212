! Takes a path apart and asks for the size of the current drive.
program paths
  use qwport
  implicit none
  character(len=2) :: drive
  character(len=40) :: directory
  character(len=20) :: name
  character(len=5) :: extension
  integer :: length
  integer(8) :: total, available

  length = splitpathqq('C:\data\1994\run.07.txt', drive, directory, name, extension)
  print '(a)', drive//' '//trim(directory)//' '//trim(name)//' '//trim(extension)
  print '(a,i0)', 'length of the directory: ', length
  if (getdrivesizeqqi8(' ', total, available) .and. available <= total) print '(a)', 'the drive has a size'
  if (.not. changedriveqq('?')) print '(a,i0)', 'no such drive: error ', getlasterror()
end program paths
