! Copies a text file character by character through Fortran units and checks the copy.
module unit_copy
  use qwport
  implicit none
  private
  public :: copy_and_compare

  integer, parameter :: source = 11, copy = 12

contains

  subroutine copy_and_compare(source_name, copy_name)
    character(len=*), intent(in) :: source_name, copy_name
    integer :: differences

    open (unit=source, file=source_name, status='old', action='read')
    open (unit=copy, file=copy_name, status='replace', action='readwrite')
    call read_to_end(source_name)
    call seek_back()
    call copy_to_end()
    differences = count_differences()
    print '(3a,i0,a)', 'Compared with ', copy_name, ': ', differences, ' differences'
    close (source)
    close (copy)
    if (differences > 0) call exit(1)
  end subroutine copy_and_compare

  subroutine read_to_end(source_name)
    character(len=*), intent(in) :: source_name
    character :: c
    integer :: characters, lines, status

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
    print '(3a,i0,a,i0,a)', 'Read ', source_name, ': ', characters, ' characters, ', lines, ' lines'
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

  integer function count_differences() result(differences)
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
  end function count_differences

end module unit_copy
