! Walks a directory tree and prints a table of its files.
module inventory
  use qwport
  implicit none
  private
  public :: print_inventory

  type :: totals
    integer :: files = 0
    integer :: directories = 0
    integer(8) :: bytes = 0
  end type totals

contains

  subroutine print_inventory(root)
    character(len=*), intent(in) :: root
    character(len=260) :: path
    type(totals) :: sum
    integer :: length

    length = fullpathqq(root, path)
    if (length == 0 .or. length > len(path)) call abort('no such directory: '//root)
    print '(2a)', 'Inventory of ', path(:length)
    print '(a12,2x,a16,2x,a3,2x,a)', 'bytes', 'changed         ', 'may', 'file'
    call walk(path(:length), '', sum)
    print '(i12,2x,a,i0,a,i0,a)', sum%bytes, 'bytes in ', sum%files, ' files and ', sum%directories, ' directories'
  end subroutine print_inventory

  ! Prints the files of a directory, then those of the directories in it. below is the path from the root.
  recursive subroutine walk(dir, below, sum)
    character(len=*), intent(in) :: dir, below
    type(totals), intent(inout) :: sum
    type(file_info_i8) :: entry
    character(len=255), allocatable :: subdirectories(:)
    integer(8) :: handle
    integer :: length, i

    allocate (subdirectories(0))
    handle = findinfo_first
    do
      length = getfileinfoqqi8(dir//'\*', entry, handle)
      if (length == 0) exit
      if (iand(entry%attributes, file_directory) == 0) then
        call print_file(dir//'\'//entry%name(:length), below//entry%name(:length), entry)
        sum%files = sum%files + 1
        sum%bytes = sum%bytes + entry%size
      else if (is_source_directory(entry%name(:length))) then
        subdirectories = [subdirectories, entry%name]
      end if
    end do
    if (handle == findinfo_error) call abort('cannot list '//dir)

    sum%directories = sum%directories + size(subdirectories)
    do i = 1, size(subdirectories)
      length = lnblnk(subdirectories(i))
      call walk(dir//'\'//subdirectories(i)(:length), below//subdirectories(i)(:length)//'\', sum)
    end do
  end subroutine walk

  ! Hidden directories and what a build makes are left out, as are a directory itself and its parent.
  logical function is_source_directory(name)
    character(len=*), intent(in) :: name

    is_source_directory = name(1:1) /= '.' .and. name /= 'build'
  end function is_source_directory

  subroutine print_file(path, name, entry)
    character(len=*), intent(in) :: path, name
    type(file_info_i8), intent(in) :: entry
    integer(2) :: year, month, day, hour, minute, second

    call unpacktimeqq(entry%written, year, month, day, hour, minute, second)
    print '(i12,2x,i4,2("-",i2.2),i3.2,":",i2.2,2x,a3,2x,a)', entry%size, year, month, day, hour, minute, &
      access_bits(path), name
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

end module inventory
