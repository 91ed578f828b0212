! Writes a number, an amount and a time as three countries do.
program locales
  use qwport
  implicit none
  integer :: noon

  call packtimeqq(noon, 2024_2, 3_2, 5_2, 14_2, 7_2, 9_2)
  call show('English')
  call show('German', 'Germany')
  call show('Japanese')
  if (nlssetlocale('Atlantean') == nls_errorinvalidlanguage) print '(a)', 'Atlantean is not spoken here'
  print '(a,l1)', 'a hundred locales or more: ', size(nlsenumlocales()) >= 100

contains

  subroutine show(language, country)
    character(len=*), intent(in) :: language
    character(len=*), intent(in), optional :: country
    character(len=nls_maxcountrylen) :: chosen
    character(len=40) :: number, clock
    integer :: codepage, length, time_length

    if (nlssetlocale(language, country) /= nls_errornoerror) call abort('no locale for '//language)
    call nlsgetlocale(country=chosen, codepage=codepage)
    length = nlsformatnumber(number, '-123.456')
    time_length = nlsformattime(clock, noon, nls_force24hourformat + nls_notimemarker)
    print '(a,i0,4a)', trim(chosen)//', code page ', codepage, ': ', number(:length), ' at ', clock(:time_length)
  end subroutine show

end program locales
