! Walks a directory tree and prints its largest files and what each of its directories holds.
module inventory
  use, intrinsic :: iso_fortran_env, only: error_unit
  use qwport
  implicit none
  private
  public :: print_inventory

  type :: file_entry
    character(len=:), allocatable :: name  ! from the root
    integer(8) :: size
    integer(4) :: written
  end type file_entry

  type :: file_list
    type(file_entry), allocatable :: files(:)
    integer :: count = 0
    integer :: directories = 0
    real(8) :: last_progress
  end type file_list

contains

  subroutine print_inventory(root, largest)
    character(len=*), intent(in) :: root
    integer, intent(in) :: largest
    character(len=260) :: path
    type(file_list) :: list
    integer :: length

    length = fullpathqq(root, path)
    if (length == 0 .or. length > len(path)) call abort('no such directory: '//root)
    allocate (list%files(100))
    list%last_progress = timef()
    call walk(path(:length), '', list)

    print '(3a,i0,a,i0,a)', 'Inventory of ', path(:length), ': ', list%count, ' files in ', list%directories, &
      ' directories'
    call print_largest(path(:length), list, largest)
    call print_directories(list)
  end subroutine print_inventory

  ! Lists the files of a directory, then those of the directories in it. below is the path from the root.
  recursive subroutine walk(dir, below, list)
    character(len=*), intent(in) :: dir, below
    type(file_list), intent(inout) :: list
    type(file_info_i8) :: entry
    character(len=255), allocatable :: subdirectories(:)
    integer(8) :: handle
    integer :: length, i

    allocate (subdirectories(0))
    list%directories = list%directories + 1
    handle = findinfo_first
    do
      length = getfileinfoqqi8(dir//'\*', entry, handle)
      if (length == 0) exit
      if (iand(entry%attributes, file_directory) == 0) then
        call append(list, file_entry(below//entry%name(:length), entry%size, entry%written))
      else if (is_source_directory(entry%name(:length))) then
        subdirectories = [subdirectories, entry%name]
      end if
    end do
    if (handle == findinfo_error) call abort('cannot list '//dir)

    do i = 1, size(subdirectories)
      length = lnblnk(subdirectories(i))
      call walk(dir//'\'//subdirectories(i)(:length), below//subdirectories(i)(:length)//'\', list)
    end do
  end subroutine walk

  ! Hidden directories and what a build makes are left out, as are a directory itself and its parent.
  logical function is_source_directory(name)
    character(len=*), intent(in) :: name

    is_source_directory = name(1:1) /= '.' .and. name /= 'build'
  end function is_source_directory

  subroutine append(list, file)
    type(file_list), intent(inout) :: list
    type(file_entry), intent(in) :: file

    if (list%count == size(list%files)) list%files = [list%files, list%files]
    list%count = list%count + 1
    list%files(list%count) = file
    call show_progress(list)
  end subroutine append

  ! A line every second, so that nobody waits in doubt.
  subroutine show_progress(list)
    type(file_list), intent(inout) :: list
    real(8) :: now

    now = timef()
    if (now - list%last_progress < 1) return
    write (error_unit, '(a,i0,a)') '... ', list%count, ' files so far'
    list%last_progress = now
  end subroutine show_progress

  ! The sizes are sorted with the number of the file in their last digits.
  subroutine print_largest(root, list, largest)
    character(len=*), intent(in) :: root
    type(file_list), intent(in) :: list
    integer, intent(in) :: largest
    integer(8), parameter :: files_at_most = 10000000
    integer(8), allocatable :: keys(:)
    integer(8) :: count
    integer :: i

    keys = [(list%files(i)%size*files_at_most + i, i=1, list%count)]
    count = list%count
    call sortqq(loc(keys), count, sort_int8)
    print '(a12,2x,a16,2x,a3,2x,a)', 'bytes', 'changed         ', 'may', 'largest files'
    do i = list%count, max(list%count - largest + 1, 1), -1
      call print_file(root, list%files(mod(keys(i), files_at_most)))
    end do
  end subroutine print_largest

  subroutine print_file(root, file)
    character(len=*), intent(in) :: root
    type(file_entry), intent(in) :: file
    integer(2) :: year, month, day, hour, minute, second

    call unpacktimeqq(file%written, year, month, day, hour, minute, second)
    print '(i12,2x,i4,2("-",i2.2),i3.2,":",i2.2,2x,a3,2x,a)', file%size, year, month, day, hour, minute, &
      access_bits(root//'\'//file%name), file%name
  end subroutine print_file

  ! "rwx", with a dash for what is not allowed.
  function access_bits(path) result(bits)
    character(len=*), intent(in) :: path
    character(len=3) :: bits
    integer :: i

    bits = 'rwx'
    do i = 1, 3
      if (access(path, bits(i:i)) /= 0) bits(i:i) = '-'
    end do
  end function access_bits

  ! The files of a directory in the root and all below it stand together in the list.
  subroutine print_directories(list)
    type(file_list), intent(in) :: list
    integer :: first, last

    print '(a12,2x,a7,2x,a)', 'bytes', 'files', 'directory'
    first = 1
    do while (first <= list%count)
      last = first
      do while (last < list%count)
        if (top_directory(list%files(last + 1)%name) /= top_directory(list%files(first)%name)) exit
        last = last + 1
      end do
      print '(i12,2x,i7,2x,a)', bytes(list%files(first:last)), last - first + 1, top_directory(list%files(first)%name)
      first = last + 1
    end do
    print '(i12,2x,i7,2x,a)', bytes(list%files(:list%count)), list%count, 'in all'
  end subroutine print_directories

  function top_directory(name) result(directory)
    character(len=*), intent(in) :: name
    character(len=:), allocatable :: directory

    directory = name(:index(name, '\'))
    if (directory == '') directory = '.'
  end function top_directory

  integer(8) function bytes(files)
    type(file_entry), intent(in) :: files(:)
    integer :: i

    bytes = sum([(files(i)%size, i=1, size(files))])
  end function bytes

end module inventory
