! The demo: copies a text file character by character through Fortran units, checks the copy, and shows
! what a failing call leaves behind. Usage: demo SOURCE COPY
program demo
  use qwport
  implicit none

  integer, parameter :: source = 11, copy = 12, closed_unit = 77
  character(len=260) :: source_name, copy_name
  integer :: characters, lines, differences
  real(8) :: start

  call get_command_argument(1, source_name)
  call get_command_argument(2, copy_name)
  if (copy_name == ' ') then
    print '(a)', 'usage: demo SOURCE COPY'
    call exit(2)
  end if

  start = timef()
  call show_head()
  open (unit=source, file=source_name, status='old', action='read')
  open (unit=copy, file=copy_name, status='replace', action='readwrite')

  call read_to_end(characters, lines)
  print '(3a,i0,a,i0,a)', 'Read ', trim(source_name), ': ', characters, ' characters, ', lines, ' lines'
  call seek_back()
  call copy_to_end()
  call compare(differences)
  print '(3a,i0,a)', 'Compared with ', trim(copy_name), ': ', differences, ' differences'
  call show_failure()

  close (source)
  close (copy)
  if (differences > 0) call exit(1)
  print '(a,f5.3,a)', 'Done in ', timef() - start, ' seconds.'

contains

  ! The library's version, and now in several forms.
  subroutine show_head()
    character(len=80) :: text
    character(len=24) :: long_date
    character(len=9) :: short_date
    character(len=7) :: day_of_year
    integer :: tab, status

    status = for_qwport_version(text)
    do
      tab = index(text, achar(9))
      if (tab == 0) exit
      text = text(:tab - 1)//', '//text(tab + 1:)
    end do
    print '(a)', trim(text)

    call fdate(long_date)
    call date(short_date)
    call jdate4(day_of_year)
    print '(8a,i0,a)', long_date, ' | ', short_date, ' ', clock(), ' | ', day_of_year, ' | ', time(), ' s since 1970'
  end subroutine show_head

  subroutine read_to_end(characters, lines)
    integer, intent(out) :: characters, lines
    character :: c
    integer :: status

    characters = 0
    lines = 0
    do
      status = fgetc(source, c)
      if (status /= 0) exit
      characters = characters + 1
      if (c == new_line(c)) lines = lines + 1
    end do
    if (status /= -1) call abort('the source cannot be read')
    if (ftell(source) /= characters) call abort('the position is not where reading ended')
  end subroutine read_to_end

  subroutine seek_back()
    if (fseek(source, 0, 0) /= 0) call abort('the source cannot be positioned')
    print '(a,i0)', 'Sought back to position ', ftell(source)
  end subroutine seek_back

  subroutine copy_to_end()
    character :: c

    do while (fgetc(source, c) == 0)
      if (fputc(copy, c) /= 0) call abort('the copy cannot be written')
    end do
    if (.not. flushqq(copy)) call abort('the copy cannot be flushed')
    print '(a,i0,a)', 'Copied and flushed ', ftelli8(copy), ' bytes'
  end subroutine copy_to_end

  subroutine compare(differences)
    integer, intent(out) :: differences
    character :: a, b
    integer :: status_a, status_b

    if (fseek(source, 0, 0) /= 0 .or. fseek(copy, 0, 0) /= 0) call abort('the files cannot be positioned')
    differences = 0
    do
      status_a = fgetc(source, a)
      status_b = fgetc(copy, b)
      if (status_a /= 0 .and. status_b /= 0) exit
      if (status_a /= status_b .or. a /= b) differences = differences + 1
    end do
  end subroutine compare

  subroutine show_failure()
    character :: c
    integer :: status, system

    status = fgetc(closed_unit, c)
    call errsns(system=system)
    print '(4(a,i0))', 'Reading unit ', closed_unit, ', which is not open: result ', status, &
      ', IERRNO ', ierrno(), ', ERRSNS ', system
  end subroutine show_failure

end program demo
