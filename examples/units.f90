! Counts the lines of a file by character, then reads its first line again.
program unit_io
  use qwport
  implicit none
  character :: c
  character(len=40) :: line
  integer :: lines = 0

  open (unit=11, file='unit_io.txt', status='replace')
  write (11, '(a)') 'The first line', 'the second', 'the third'

  if (fseek(11, 0, 0) /= 0) call abort('cannot seek')
  do while (fgetc(11, c) == 0)
    if (c == new_line(c)) lines = lines + 1
  end do
  print '(i0,a,i0,a)', lines, ' lines in ', ftell(11), ' bytes'

  if (fseek(11, 0, 0) /= 0) call abort('cannot seek')
  read (11, '(a)') line
  print '(a)', trim(line)

  close (11, status='delete')
  if (fgetc(11, c) /= 0) print '(a,i0)', 'Unit 11 is closed: error ', ierrno()
end program unit_io
