! Searches a text in UTF-8, compares as the user's locale does, and converts to UTF-16.
program multibyte
  use qwport
  implicit none
  character(len=*), parameter :: e_acute = char(195)//char(169)
  character(len=*), parameter :: text = 'caf'//e_acute//' au lait'
  character(len=6) :: word
  integer(2) :: utf16(6), no_array(0)
  integer :: count

  print '(2(a,i0))', 'lait at ', mbindex(text, 'lait'), ', last a at ', mbindex(text, 'a', back=.true.)
  print '(2(a,i0))', 'half of a character: INDEX ', index(text, char(169)), ', MBINDEX ', mbindex(text, char(169))
  print '(2(a,l1))', 'zoo before Zurich: MBLLT ', mbllt('zoo', 'Zurich'), ', LLT ', llt('zoo', 'Zurich')
  print '(a,l1)', 'Zoo equals zOO: ', mbleq('Zoo', 'zOO', nls_ignorecase)

  print '(a,i0)', 'elements needed: ', mbconvertmbtounicode('four', no_array)
  count = mbconvertmbtounicode('four', utf16)
  print '(i0,a,6(1x,i0))', count, ' converted:', utf16
  count = mbconvertunicodetomb(utf16(count:1:-1), word)
  print '(a)', 'and back, reversed: '//word(:count)
end program multibyte
