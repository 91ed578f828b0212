! SPDX-License-Identifier: MIT
! The unit routines and the error state as a Fortran program meets them: OPENed units, the module's
! interfaces, the core runtime for GNU Fortran.
program units_test
  use check
  use qwport
  implicit none

  character(len=*), parameter :: file = 'units_test.txt'
  integer, parameter :: unit = 21, closed_unit = 77

  call test_transfer()
  call test_stream_positions()
  call test_errors()
  call finish()

contains

  subroutine test_transfer()
    character(len=3) :: text

    open (unit, file=file, status='replace', action='readwrite')
    call expect('fputc', [fputc(unit, 'abc'), fputc(unit, 'd'), putc(new_line('a'))], [0, 0, 0])
    call expect('ftell', all([ftelli8(unit), getposi8(unit), int([ftell(unit), getpos(unit)], 8)] == 2))
    text = 'xyz'
    call expect('fgetc', fseek(unit, 1, 0) == 0 .and. fgetc(unit, text) == 0 .and. text == 'dyz')
    call expect('fseeki8, end of file', [fseeki8(unit, 0_8, 2), fgetc(unit, text)], [0, -1])
    call flush(unit)
    call flush()
    call expect('flushqq and commitqq', flushqq(unit) .and. flushqq() .and. commitqq(unit))
    close (unit, status='delete')
    ! Standard input of a test is empty or closed.
    call expect('getc', getc(text), -1)
    call expect('unchanged', text, 'dyz')
  end subroutine test_transfer

  ! INQUIRE with POS sees where FSEEK went.
  subroutine test_stream_positions()
    character(len=*), parameter :: forms(3) = [character(len=11) :: 'unformatted', 'formatted', 'unformatted']
    character(len=*), parameter :: actions(3) = [character(len=9) :: 'readwrite', 'readwrite', 'write']
    integer :: position, i

    do i = 1, size(forms)
      open (unit, file=file, status='replace', access='stream', form=forms(i), action=actions(i))
      if (forms(i) == 'formatted') write (unit, '(a)', advance='no') 'abcdefgh'
      if (forms(i) /= 'formatted') write (unit) 'abcdefgh'
      call expect('fseek from the start and from here', [fseek(unit, 5, 0), fseek(unit, -1, 1)], [0, 0])
      inquire (unit, pos=position)
      call expect('pos', position, 5)
      close (unit, status='delete')
    end do
  end subroutine test_stream_positions

  subroutine test_errors()
    character :: c
    integer :: error, system, status, failed_unit, condition

    ! GNU Fortran's own FGETC would answer -1.
    call expect('fgetc of a closed unit', [fgetc(closed_unit, c), ierrno(), getlasterror(), getlasterrorqq()], &
                [22, 22, 22, 22])
    call errsns(error, system, status, failed_unit, condition)
    call expect('errsns', [error, system, status, failed_unit, condition], [0, 22, 0, 0, 0])
    call errsns(system=system)
    call expect('errsns clears', system, 0)
    call expect('a closed unit', [ftell(closed_unit), ierrno(), fseek(closed_unit, 0, 0)], [-9, 9, -9])
  end subroutine test_errors

end program units_test
