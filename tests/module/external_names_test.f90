! SPDX-License-Identifier: MIT
! Legacy programs declare routines EXTERNAL and have no module: GNU Fortran's names reach them.
program external_names_test
  use check
  implicit none
  external :: errsns, exit
  integer, external :: bit, fgetc, for_qwport_version, getpos, ierrno, time
  logical, external :: commitqq
  character(len=24), external :: ctime, fdate
  character(len=8), external :: clock
  integer :: system
  character :: c
  character(len=40) :: text

  call expect('numbers', [fgetc(77, c), ierrno(), getpos(77), bit(1, 2)], [22, 22, -9, 1])
  call expect('version', for_qwport_version(text) == 4 .and. text(1:6) == 'qwport')
  call expect('commitqq', .not. commitqq(77))
  open (21, status='scratch')
  call expect('getpos of an open unit', getpos(21), 0)
  text = fdate()
  call expect('fdate as a function', text(4:4)//text(20:20)//text(14:14), '  :')
  text = ctime(time())
  call expect('ctime of 24 characters', text(20:20) == ' ' .and. len_trim(text) == 24)
  text = clock()
  call expect('clock', text(3:3)//text(6:6), '::')
  call errsns(%val(0_8), system, %val(0_8), %val(0_8), %val(0_8))
  call expect('errsns', system, 22)
  call finish()
  call exit(0)
end program external_names_test
