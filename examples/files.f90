! Makes files, lists them with their sizes, and deletes them.
program file_listing
  use qwport
  implicit none
  type(file_info) :: info
  integer(8) :: handle
  integer :: length, status(13)

  open (11, file='listed_1.dat', status='replace', access='stream')
  write (11) 'five!'
  close (11)
  if (rename('listed_1.dat', 'listed_2.dat') /= 0) call abort('cannot rename')

  handle = findinfo_first
  do
    length = getfileinfoqq('listed_*.dat', info, handle)
    if (length == 0) exit
    print '(a,i0,a)', info%name(:length)//' has ', info%size, ' bytes'
  end do

  if (access('listed_2.dat', 'rw') == 0) print '(a)', 'it can be read and written'
  status = 0
  if (stat('listed_2.dat', status) == 0) print '(a,o0)', 'its mode is ', status(3)
  print '(a,i0)', 'deleted: ', delfilesqq('listed_*.dat')
  print '(a,i0)', 'looking again gives error ', stat('listed_2.dat', status)
end program file_listing
