! SPDX-License-Identifier: MIT
! Legacy programs declare routines EXTERNAL and have no module: GNU Fortran's names reach them.
program external_names_test
  use check
  implicit none
  external :: fgetc, getpos, ierrno, for_qwport_version, errsns, exit
  integer :: fgetc, getpos, ierrno, for_qwport_version, system
  logical, external :: commitqq
  character(len=24), external :: ctime, fdate
  character(len=8), external :: clock
  integer, external :: bit, time
  character :: c
  character(len=40) :: text

  call expect('fgetc', fgetc(77, c), 22)
  call expect('ierrno', ierrno(), 22)
  call expect('getpos', getpos(77), -9)
  call expect('version', for_qwport_version(text), 4)
  call expect('version text', text(1:6), 'qwport')
  call expect('commitqq', .not. commitqq(77))
  open (21, status='scratch')
  call expect('getpos of an open unit', getpos(21), 0)
  text = fdate()
  call expect('fdate as a function', text(4:4) == ' ' .and. text(20:20) == ' ')
  text = ctime(time())
  call expect('ctime of 24 characters', text(20:20) == ' ' .and. len_trim(text) == 24)
  text = clock()
  call expect('clock', text(3:3) == ':' .and. text(6:6) == ':')
  call expect('bit', bit(1, 2), 1)
  call errsns(%val(0_8), system, %val(0_8), %val(0_8), %val(0_8))
  call expect('errsns', system, 22)
  call finish()
  call exit(0)
end program external_names_test
