! Bits, shifts, old names of arithmetic, and positions in a text.
program bits
  use qwport
  implicit none
  integer :: flags
  character(len=20) :: path

  flags = 0
  call bis(3, flags)
  call bis(5, flags)
  call bic(3, flags)
  print '(a,i0,a,l1)', 'flags ', flags, ', bit 5 is ', bit(5, flags)
  print '(a,2(i0,1x),i0)', 'shifts ', lshift(1, 4), rshift(-16, 2), shiftr(-1, 28)
  print '(a,i0,a,f4.1)', 'jdim ', jdim(3, 7), ', dim ', dim(7.5, 3.0)
  print '(a,f8.6)', 'J0(1) is ', dbesj0(1d0)

  path = 'lib/units/test.f90'
  print '(a,i0,a,i0)', 'length ', lnblnk(path), ', last slash at ', rindex(path, '/')
end program bits
