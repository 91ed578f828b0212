! SPDX-License-Identifier: MIT
! A user's program against the installed tree.
program hello
  use qwport
  implicit none
  character(len=80) :: text
  character :: c
  integer :: status

  status = for_qwport_version(text)
  print '(a)', text(1:6)
  open (11, status='scratch')
  write (11, '(a)') 'x'
  rewind (11)
  if (fgetc(11, c) /= 0 .or. c /= 'x') call exit(1)
  if (.not. flushqq(11)) call exit(2)
  call exit(0)
end program hello
