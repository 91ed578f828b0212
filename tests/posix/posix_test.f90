! SPDX-License-Identifier: MIT
! The POSIX routines as a Fortran program meets them, with the core runtime for GNU Fortran. Run with the words:
! alpha "b c".
program posix_test
  use check
  use qwport
  implicit none
  character(len=*), parameter :: file = 'posix_test.txt'
  integer, parameter :: unit = 21
  character(len=260) :: text
  integer :: error, length, total = 0

  call test_structures()
  call test_other_accessors()
  call test_descriptor_in_unit()
  call test_unit_as_descriptor()
  call test_process()
  call test_kinds()
  call finish()

contains

  subroutine test_structures()
    integer :: handle, copy, value, sub
    integer(8) :: wide

    call pxfstructcreate('stat', handle, error)
    call pxfstructcreate('stat    ', copy, error)
    call pxfint8set(handle, 'st_size', 3000000000_8, error)
    call pxfstructcopy('stat', handle, copy, error)
    call pxfint8get(copy, 'st_size', wide, error)
    call pxfintget(copy, 'st_size', value, error)
    call expect('copied, too large', wide == 3000000000_8 .and. value == 0 .and. error == PXF_ERANGE)
    call pxfstructfree(copy, error)
    call expect('freed', copy, 0)
    call pxfstructcreate('utsname', copy, error)
    call pxfstrset(copy, 'release', 'eleven', 4, error)
    call pxfuname(copy, error)
    call pxfstrget(copy, 'release', text, length, error)
    call expect('text', text(:length), 'elev')

    call pxfgetsubhandle(add, sub, error)
    value = 5
    call pxfcallsubhandle(sub, value, error)
    call expect('called', total == 5 .and. value == 0)
    call pxfconst('_SC_PAGESIZE', value, error)
    call expect('constants', value == PXF_SC_PAGESIZE .and. PXF_EEND == -1 .and. PXF_NSIG == 23)
  end subroutine test_structures

  subroutine add(value)
    integer, intent(inout) :: value

    total = total + value
    value = 0
  end subroutine add

  ! Any type and shape of value, and both orders of value and index, reach ierror.
  subroutine test_other_accessors()
    integer :: errors(7), handle
    character(len=4) :: texts(2)
    logical :: flag

    call pxfstructcreate('tms', handle, error)
    call pxfrealget(handle, 'tms_utime', 1.0, errors(1))
    call pxflgclset(handle, 'tms_utime', flag, errors(2))
    call pxfcharget(handle, 'tms_utime', texts(1), errors(3))
    call pxfadblget(handle, 'tms_utime', [1d0, 2d0, 3d0], 3, errors(4))
    call pxfecharget(handle, 'tms_utime', 1, texts(1), errors(5))
    call pxfastrget(handle, 'tms_utime', texts, 2, [4, 4], errors(6))
    call pxfestrset(handle, 'tms_utime', 1, texts(2), 4, errors(7))
    call pxfeintget(0, 'tms_utime', 1, handle, error)
    call expect('no such fields, no such handle', all(errors == PXF_ENONAME) .and. error == PXF_ENOHANDLE)
  end subroutine test_other_accessors

  subroutine test_descriptor_in_unit()
    character(len=1) :: letters(3)
    integer :: descriptor, count, position

    call pxfopen(file//'   ', 0, PXF_O_CREAT + PXF_O_RDWR + PXF_O_TRUNC + PXF_O_BINARY, PXF_S_IREAD + PXF_S_IWRITE, &
                 descriptor, error)
    call pxfwrite(descriptor, 'first'//new_line('a')//'second', 12, count, error)
    call pxflseek(descriptor, 0, PXF_SEEK_SET, position, error)
    call pxfread(descriptor, letters, 3, count, error)
    call expect('array', count == 3 .and. all(letters == ['f', 'i', 'r']))
    call pxffdopen(descriptor, unit, 'FORM=FORMATTED', error)
    call pxffseek(unit, 0, PXF_SEEK_SET, error)
    read (unit, '(a)') text
    call pxffgetc(unit, text(6:), error)
    call pxfftell(unit, position, error)
    call expect('READ, character, position', text(1:6) == 'firsts' .and. position == 7)
    call pxffseek(unit, 0, PXF_SEEK_END, error)
    call pxffgetc(unit, text, error)
    call expect('end of file', error, PXF_EEND)
    call pxffputc(unit, '!', error)
    call pxffflush(unit, error)
    call expect('pxffputc and pxffflush', error, 0)
    close (unit)
    call pxfclose(descriptor, error)
    call expect('CLOSE closed the descriptor', error, PXF_EBADF)
    call pxfunlink(file, len(file), error)
    call expect('pxfunlink', error, 0)
  end subroutine test_descriptor_in_unit

  subroutine test_unit_as_descriptor()
    integer :: descriptor, count, old

    open (unit, file=file, status='replace')
    write (unit, '(a)') 'by WRITE'
    call pxffileno(unit, descriptor, error)
    call pxfwrite(descriptor, 'by PXFWRITE', 11, count, error)
    close (unit)
    open (unit, file=file)
    read (unit, '(/a)') text
    call expect('both wrote', text, 'by PXFWRITE')
    close (unit, status='delete')
    call pxffileno(unit, descriptor, error)
    call expect('closed unit', [error, getlasterror()], [PXF_EBADF, 9])
    call pxffseek(unit, 0, 0, error)
    call expect('closed unit, pxffseek', error, PXF_EINVAL)
    ! Standard input of a test is empty or closed.
    call pxfgetc(text, error)
    call expect('pxfgetc', error < 0)
    call pxfposixio(1, old, error)
    call pxfposixio(old, count, error)
    call expect('pxfposixio', old == 0 .and. count == 1)
  end subroutine test_unit_as_descriptor

  subroutine test_process()
    integer :: now, values(9), handle, order, difference

    call expect('ipxfargc', ipxfargc(), 2)
    call expect_word(1, 8, [5, 0], 'alpha')
    call expect_word(2, 3, [3, 0], 'b c')
    call expect_word(2, 2, [3, PXF_ETRUNC], 'b ')
    call expect_word(2, 0, [3, PXF_ETRUNC], '')
    call expect_word(3, 4, [0, PXF_EINVAL], '')
    call expect_word(-1, 4, [0, PXF_EINVAL], '')
    call expect('no word', getlasterror(), 22)
    call pxftime(now, error)
    call pxflocaltime(now, values, error)
    call expect('pxflocaltime', values(6) >= 2024 .and. values(5) >= 1 .and. values(5) <= 12 .and. values(8) <= 366)
    call pxftime(ierror=error)
    call expect('pxftime without a time', error, -1)
    call pxfstructcreate('tms', handle, error)
    call pxftimes(handle, now, error)
    call expect('pxftimes', error, 0)
    call pxfucompare(-1, 1, order, difference)
    call expect('pxfucompare', order == 1 .and. difference == 2 .and. ipxflentrim('ab  ') == 2)
  end subroutine test_process

  ! The library answers true as -1; compiled at several levels, .not. makes false of it.
  subroutine test_kinds()
    integer, parameter :: modes(*) = [PXF_S_IFDIR + 511, PXF_S_IFCHR, PXF_S_IFREG + 256, PXF_S_IFIFO, 24576]
    integer :: m, i, k

    do i = 1, size(modes)
      m = modes(i)
      call expect('kinds', all([pxfisdir(m), pxfischr(m), pxfisreg(m), pxfisfifo(m), pxfisblk(m)] &
                               .eqv. [(i == k, k=1, 4), .false.]))
      call expect('no kinds', ((.not. pxfisdir(m)) .eqv. i /= 1) .and. ((.not. pxfisreg(m)) .eqv. i /= 3))
    end do
    call expect('pxfisconst', .not. (pxfisconst('eend') .or. .not. pxfisconst('EEND')))
  end subroutine test_kinds

  subroutine expect_word(number, room, expected, text)
    integer, intent(in) :: number, room, expected(2)
    character(len=*), intent(in) :: text
    character(len=room) :: word

    word = repeat('#', room)
    call pxfgetarg(number, word, length, error)
    call expect('length and error', [length, error], expected)
    call expect('word', word, text)
  end subroutine expect_word

end program posix_test
