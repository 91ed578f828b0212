program hello
  use qwport
  character :: c
  open (11, file='hello.txt', status='replace')
  write (11, '(a)') 'Hello'
  if (fseek(11, 1, 0) /= 0) call abort('cannot seek')
  if (fgetc(11, c) == 0) print '(2a)', 'Character 1 is ', c
  close (11, status='delete')
  if (ftell(11) < 0) print '(a,i0)', 'Unit 11 is closed: error ', ierrno()
end program hello
