! SPDX-License-Identifier: MIT
! The unit routines and the error state as a Fortran program meets them: OPENed units, the module's
! interfaces, the core runtime for GNU Fortran.
program units_test
  use check
  use qwport
  implicit none

  character(len=*), parameter :: file = 'units_test.txt'
  integer, parameter :: unit = 21, closed_unit = 77

  call test_characters()
  call test_positions()
  call test_stream_positions()
  call test_errors()
  call test_flush()
  call test_big_positions()
  call test_version()
  call finish()

contains

  subroutine open_new()
    open (unit, file=file, status='replace', action='readwrite')
  end subroutine open_new

  subroutine remove()
    close (unit, status='delete')
  end subroutine remove

  subroutine test_characters()
    character :: c
    character(len=3) :: wide
    character(len=10) :: line

    call open_new()
    write (unit, '(a)') 'ab'
    call expect('fputc', fputc(unit, 'c'), 0)
    call expect('fputc of a longer text', fputc(unit, 'def'), 0)
    rewind (unit)
    call expect('fgetc', fgetc(unit, c), 0)
    call expect('fgetc a', c, 'a')
    wide = 'xyz'
    call expect('fgetc into a longer text', fgetc(unit, wide), 0)
    call expect('fgetc b', wide, 'byz')
    call expect('line end, first half', fgetc(unit, c), 0)
    call expect('CR', iachar(c), 13)
    call expect('line end, second half', fgetc(unit, c), 0)
    call expect('LF', iachar(c), 10)
    read (unit, '(a)') line
    call expect('READ goes on', line, 'cd')
    c = 'u'
    call expect('end of file', fgetc(unit, c), -1)
    call expect('end of file leaves c', c, 'u')
    call remove()

    call expect('putc', putc(new_line('a')), 0)
    ! Standard input of a test is empty or closed.
    call expect('getc', getc(c), -1)
  end subroutine test_characters

  subroutine test_positions()
    character :: c
    integer :: i, status

    call open_new()
    do i = 0, 9
      status = fputc(unit, achar(iachar('0') + i))
    end do
    call expect('ftell', ftell(unit), 10)
    call expect('ftelli8', ftelli8(unit), 10_8)
    call expect('getpos', getpos(unit), 10)
    call expect('getposi8', getposi8(unit), 10_8)
    call expect('fseek from the start', fseek(unit, 3, 0), 0)
    status = fgetc(unit, c)
    call expect('character 3', c, '3')
    call expect('fseek from here', fseek(unit, 2, 1), 0)
    status = fgetc(unit, c)
    call expect('character 6', c, '6')
    call expect('fseeki8 from the end', fseeki8(unit, -1_8, 2), 0)
    status = fgetc(unit, c)
    call expect('character 9', c, '9')
    call expect('fseek before the start', fseek(unit, -1, 0), -22)
    call expect('its error', ierrno(), -22)
    call expect('position kept', ftell(unit), 10)
    call expect('a good fseek', fseek(unit, 0, 0), 0)
    call expect('clears the error', ierrno(), 0)
    call remove()
  end subroutine test_positions

  ! READ and INQUIRE with POS see where FSEEK went.
  subroutine test_stream_positions()
    character :: c
    integer :: position, form

    do form = 1, 3
      if (form == 2) then
        open (unit, file=file, status='replace', access='stream', form='formatted')
        write (unit, '(a)', advance='no') 'abcdefgh'
      else
        open (unit, file=file, status='replace', access='stream', action=merge('write    ', 'readwrite', form == 3))
        write (unit) 'abcdefgh'
      end if
      call expect('fseek', fseek(unit, 5, 0), 0)
      inquire (unit, pos=position)
      call expect('pos', position, 6)
      call expect('fseek from here', fseek(unit, -1, 1), 0)
      inquire (unit, pos=position)
      call expect('pos again', position, 5)
      if (form == 1) then
        read (unit, pos=1) c
        call expect('READ at POS=1', c, 'a')
        read (unit) c
        call expect('READ goes on', c, 'b')
      end if
      call remove()
    end do
  end subroutine test_stream_positions

  subroutine test_errors()
    character :: c
    integer :: error, system, status, failed_unit, condition

    call expect('fgetc of a closed unit', fgetc(closed_unit, c), 22)
    call expect('ierrno', ierrno(), 22)
    call expect('getlasterror', getlasterror(), 22)
    call expect('getlasterrorqq', getlasterrorqq(), 22)
    call errsns(error, system, status, failed_unit, condition)
    call expect('errsns system', system, 22)
    call expect('errsns others', abs(error) + abs(status) + abs(failed_unit) + abs(condition), 0)
    call errsns(system=system)
    call expect('errsns clears', system, 0)
    call expect('ftell of a closed unit', ftell(closed_unit), -9)
    call expect('ftell stores', ierrno(), 9)
    call expect('fseek of a closed unit', fseek(closed_unit, 0, 0), -9)
  end subroutine test_errors

  subroutine test_flush()
    integer :: size, status

    call open_new()
    status = fputc(unit, 'x')
    call flush(unit)
    inquire (file=file, size=size)
    call expect('flush of a unit', size, 1)
    status = fputc(unit, 'y')
    call flush()
    inquire (file=file, size=size)
    call expect('flush of all units', size, 2)
    status = fputc(unit, 'z')
    call expect('flushqq', flushqq(unit))
    inquire (file=file, size=size)
    call expect('flushqq wrote', size, 3)
    call expect('commitqq', commitqq(unit))
    call remove()
    call expect('flushqq of a closed unit', .not. flushqq(unit))
    call expect('commitqq of a closed unit', .not. commitqq(unit))
  end subroutine test_flush

  subroutine test_big_positions()
    integer(8), parameter :: far = 5000000000_8

    call open_new()
    call expect('fseeki8 beyond 4 GiB', fseeki8(unit, far, 0), 0)
    call expect('ftelli8 beyond 4 GiB', ftelli8(unit), far)
    call expect('ftell beyond 2 GiB', ftell(unit), -34)
    call remove()
  end subroutine test_big_positions

  subroutine test_version()
    character(len=80) :: text

    call expect('version', for_qwport_version(text), 4)
    call expect('version text', index(text, 'Version') > 0)
  end subroutine test_version

end program units_test
