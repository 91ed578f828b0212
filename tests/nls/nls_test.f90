! SPDX-License-Identifier: MIT
! Multibyte text and locales, called as Fortran programs do.
program nls_test
  use qwport
  use check
  implicit none

  call test_multibyte()
  call test_conversions()
  call test_locale()
  call test_formats()
  call test_lists()
  call finish()

contains

  ! There is no console here, so the code page is the ANSI code page, which has no lead bytes.
  subroutine test_multibyte()
    character(len=6), parameter :: text = 'abcb  '

    call expect('characters', mbcurmax() >= 1 .and. .not. mblead('a') .and. .not. mbstrlead(text, 1))
    call expect('walks', [mbcharlen(text), mbnext(text, 2), mbprev(text, 2), mblen(text), mblen_trim(text)], [1, 3, 1, 6, 4])
    call expect('scans', [mbscan(text, 'cb'), mbscan(text, 'cb', .true.), mbverify(text, 'ab', .false.), &
                          mbindex(text, 'b'), mbindex(text, 'b', back=.true.)], [2, 5, 3, 2, 4])
    call expect('relations', mblle('a', 'B') .and. mbllt('a', 'B') .and. mblne('a', 'B'))
    call expect('no relations', .not. (mblge('a', 'B') .or. mblgt('a', 'B') .or. mbleq('a', 'B')))
    call expect('mbleq with flags', mbleq('text', 'TEXT', nls_ignorecase))
  end subroutine test_multibyte

  subroutine test_conversions()
    integer(2) :: table(3, 4), none(0)
    character(len=5) :: text
    character(len=0) :: nothing

    table = 7
    call expect('to a row', mbconvertmbtounicode('ab', table(2, :)), 2)
    call expect('that row alone', all(table(2, :) == [97_2, 98_2, 32_2, 32_2]) .and. all(table([1, 3], :) == 7))
    call expect('to a part', mbconvertmbtounicode('cd', table(:2, 1), nls_precomposed), 2)
    call expect('room', [mbconvertmbtounicode('cde', table(:2, 1)), mbconvertmbtounicode('cde', none)], [-122, 3])
    call expect('from a row', mbconvertunicodetomb(table(2, 4:1:-1), text), 4)
    call expect('the text', text, '  bd ')
    call expect('bytes needed', mbconvertunicodetomb(table(2, :), nothing), 4)
  end subroutine test_conversions

  subroutine test_locale()
    character(len=nls_maxlanguagelen) :: language
    character(len=nls_maxcountrylen) :: country
    character(len=8) :: number
    integer :: codepage
    real :: value

    call expect('german', [nlssetlocale('German', codepage=12345), nlssetlocale('German', 'Switzerland')], &
                [nls_errorinvalidcodepage, nls_errornoerror])
    call nlsgetlocale(language, country, codepage)
    call expect('three', language == 'German' .and. country == 'Switzerland' .and. codepage == 1252)
    call expect('code page given', nlssetlocale('German', codepage=850), nls_errornoerror)
    call nlsgetlocale(codepage=codepage)
    call expect('code page in force', codepage, 850)

    write (number, '(f5.2)') 12.5
    read (number, *) value
    call expect('written and read', number == '12.50' .and. abs(value - 12.5) < 0.01)

    codepage = nlsgetenvironmentcodepage(nls_windowsenvironmentcodepage)
    call expect('the ansi code page is fixed', nlssetenvironmentcodepage(codepage, nls_windowsenvironmentcodepage), 0)
  end subroutine test_locale

  subroutine test_formats()
    character(len=40) :: text
    integer :: length, now

    call expect('german', nlssetlocale('German', 'Germany'), nls_errornoerror)
    length = nlsformatnumber(text, ' -1234.567')
    call expect('number', text(:length), '-1.234,57')
    length = nlsformatcurrency(text, '0.5', nls_normal)
    call expect('currency', text(:length), '0,50 '//char(128))
    call packtimeqq(now, 2024_2, 3_2, 5_2, 14_2, 7_2, 9_2)
    length = nlsformatdate(text, now, nls_longdate)
    call expect('long date', index(text, '5. M'//char(228)//'rz 2024') > 0 .and. length == len_trim(text))
    length = nlsformattime(text, now)
    call expect('time', text(:length), '14:07:09')
    length = nlsformattime(text, flags=nls_noseconds)
    call expect('time now', text(length - 2:length - 2), ':')
    length = nlsgetlocaleinfo(nls_li_smonthname3, text)
    call expect('information', text(:length), 'M'//char(228)//'rz')
    call expect('too small', nlsgetlocaleinfo(nls_li_sengcountry, text(:6)), nls_erroroverflow)
  end subroutine test_formats

  subroutine test_lists()
    type(nls_enumlocales), allocatable :: locales(:)
    integer, allocatable :: pages(:)
    integer :: i

    locales = nlsenumlocales()
    i = findloc(locales%language == 'German' .and. locales%country == 'Austria', .true., 1)
    call expect('austria', i > 0 .and. size(locales) > 50)
    call expect('its pages', [locales(i)%defaultwindowscodepage, locales(i)%defaultconsolecodepage], [1252, 850])
    call expect('one each', count(locales%language == 'German' .and. locales%country == 'Germany'), 1)
    call expect('all have names', all(locales%language /= ' ' .and. locales%country /= ' '))
    call expect('all have code pages', all(locales%defaultwindowscodepage > 1 .and. locales%defaultconsolecodepage > 1))
    pages = nlsenumcodepages()
    call expect('code pages', any(pages == 1252) .and. any(pages == 932) .and. all(pages(2:) > pages(:size(pages) - 1)))
  end subroutine test_lists

end program nls_test
