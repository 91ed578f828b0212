! Writes a file through a descriptor, reads it through a unit, and asks for its status.
program posix
  use qwport
  implicit none
  character(len=20) :: line
  integer :: descriptor, count, position, status, size, mode, error

  call pxfopen('posix.txt', 0, PXF_O_CREAT + PXF_O_RDWR, PXF_S_IREAD + PXF_S_IWRITE, descriptor, error)
  if (error /= 0) call abort('cannot open posix.txt')
  call pxfwrite(descriptor, 'by descriptor', 13, count, error)
  call pxflseek(descriptor, 0, PXF_SEEK_SET, position, error)

  call pxffdopen(descriptor, 11, ' ', error)
  read (11, '(a)') line
  print '(2a)', 'written ', trim(line)
  close (11)

  call pxfstructcreate('stat', status, error)
  call pxfstat('posix.txt', 0, status, error)
  call pxfintget(status, 'st_size', size, error)
  call pxfintget(status, 'st_mode', mode, error)
  if (pxfisreg(mode) .and. .not. pxfisdir(mode)) print '(a,i0,a)', 'a file of ', size, ' bytes'
  call pxfstructfree(status, error)

  call pxfunlink('posix.txt', 0, error)
  call pxfaccess('posix.txt', 0, PXF_F_OK, error)
  if (error == PXF_ENOENT) print '(a)', 'removed'
end program posix
