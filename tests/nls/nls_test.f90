! SPDX-License-Identifier: MIT
! Multibyte text and locales, called as Fortran programs do.
program nls_test
  use qwport
  use check
  implicit none

  call test_multibyte()
  call test_locale()
  call test_lists()
  call finish()

contains

  ! There is no console here, so the code page is the ANSI code page, which has no lead bytes.
  subroutine test_multibyte()
    character(len=6), parameter :: text = 'abcb  '
    integer(2) :: table(4, 3)

    call expect('scans', [mbscan(text, 'cb'), mbscan(text, 'cb', .true.), mbverify(text, 'ab', .false.)], [2, 5, 3])
    call expect('relations', mblle('a', 'B') .and. mblne('a', 'B') .and. .not. (mblge('a', 'B') .or. mbleq('a', 'B')))
    call expect('with flags', mbleq('text', 'TEXT', nls_ignorecase) .and. .not. mbstrlead(text, 1))
    table = 7
    call expect('to a part', mbconvertmbtounicode('cd', table(1, :2), nls_precomposed), 2)
    call expect('that part alone', [int(table(1, :2)), count(table == 7)], [99, 100, 10])
  end subroutine test_multibyte

  subroutine test_locale()
    character(len=nls_maxlanguagelen) :: language
    character(len=nls_maxcountrylen) :: country
    character(len=8) :: number
    character(len=40) :: text
    integer :: codepage, length
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
    length = nlsformattime(text, flags=nls_noseconds)
    call expect('time now', text(length - 2:length - 2), ':')
  end subroutine test_locale

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
