! SPDX-License-Identifier: MIT
! Legacy programs declare routines EXTERNAL and have no module: GNU Fortran's names reach them.
program external_names_test
  use check
  implicit none
  external :: fgetc, getpos, ierrno, for_qwport_version, errsns, exit
  integer :: fgetc, getpos, ierrno, for_qwport_version, system
  logical, external :: commitqq
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
  call errsns(%val(0_8), system, %val(0_8), %val(0_8), %val(0_8))
  call expect('errsns', system, 22)
  call finish()
  call exit(0)
end program external_names_test
