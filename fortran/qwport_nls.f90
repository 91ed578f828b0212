! SPDX-License-Identifier: MIT
! National language: the locale of the process, and numbers, dates and times as it writes them. Texts go in and
! come out in the locale's code page. Nothing is reported: results below 0 are the NLS_ERROR... constants, and
! outputs then stay. A name NLS$... of other compilers is NLS_... here.
module qwport_nls
  use, intrinsic :: iso_c_binding, only: c_f_pointer, c_int32_t
  use qwport_arrays, only: array_descriptor
  implicit none
  public
  private :: c_f_pointer, c_int32_t, array_descriptor, nlsenumlocales_raw, nlsenumcodepages_raw

  ! Results: done; no such language, no such country of it, a code page that is unknown or refused; no such
  ! information; no number or time; unknown flags; the text does not fit; the system failed.
  integer(4), parameter :: nls_errornoerror = 0
  integer(4), parameter :: nls_errorinvalidlanguage = -1
  integer(4), parameter :: nls_errorinvalidcountry = -2
  integer(4), parameter :: nls_errorinvalidcodepage = -3
  integer(4), parameter :: nls_errorinvalidlitype = -4
  integer(4), parameter :: nls_errorinvalidinput = -5
  integer(4), parameter :: nls_errorinvalidflags = -6
  integer(4), parameter :: nls_erroroverflow = -7
  integer(4), parameter :: nls_errorsystem = -8

  ! Which code page of the environment: the console's, or the process's ANSI code page.
  integer(4), parameter :: nls_consoleenvironmentcodepage = 1
  integer(4), parameter :: nls_windowsenvironmentcodepage = 2

  ! Flags, to be added. All formats: none, or without the user's own settings.
  integer(4), parameter :: nls_normal = 0
  integer(4), parameter :: nls_nouseroverride = -2147483647 - 1
  ! Dates: short (the default) or long, by the locale's other calendar.
  integer(4), parameter :: nls_shortdate = 1
  integer(4), parameter :: nls_longdate = 2
  integer(4), parameter :: nls_usealtcalendar = 4
  ! Times: hours only, hours and minutes, without a.m. and p.m., 24 hours.
  integer(4), parameter :: nls_nominutesorseconds = 1
  integer(4), parameter :: nls_noseconds = 2
  integer(4), parameter :: nls_notimemarker = 4
  integer(4), parameter :: nls_force24hourformat = 8

  ! A locale of the host. Names have trailing blanks.
  integer, parameter :: nls_maxlanguagelen = 64
  integer, parameter :: nls_maxcountrylen = 64
  type :: nls_enumlocales
    sequence
    character(len=nls_maxlanguagelen) :: language
    character(len=nls_maxcountrylen) :: country
    integer(4) :: defaultwindowscodepage
    integer(4) :: defaultconsolecodepage
  end type nls_enumlocales

  ! Types of locale information: the host's LOCALE_... numbers.

  ! The language and the country: numbers, names in the user's language and in English, abbreviations, names in
  ! their own language; default language and country, default console and ANSI code pages.
  integer(4), parameter :: nls_li_ilanguage = 1
  integer(4), parameter :: nls_li_slanguage = 2
  integer(4), parameter :: nls_li_senglanguage = 4097
  integer(4), parameter :: nls_li_sabbrevlangname = 3
  integer(4), parameter :: nls_li_snativelangname = 4
  integer(4), parameter :: nls_li_icountry = 5
  integer(4), parameter :: nls_li_scountry = 6
  integer(4), parameter :: nls_li_sengcountry = 4098
  integer(4), parameter :: nls_li_sabbrevctryname = 7
  integer(4), parameter :: nls_li_snativectryname = 8
  integer(4), parameter :: nls_li_idefaultlanguage = 9
  integer(4), parameter :: nls_li_idefaultcountry = 10
  integer(4), parameter :: nls_li_idefaultcodepage = 11
  integer(4), parameter :: nls_li_idefaultansicodepage = 4100

  ! Numbers: separators of lists, decimals and groups, sizes of groups, decimal digits, leading zeros, negative
  ! numbers, digits, signs; metric (0) or U.S. (1) measures.
  integer(4), parameter :: nls_li_slist = 12
  integer(4), parameter :: nls_li_imeasure = 13
  integer(4), parameter :: nls_li_sdecimal = 14
  integer(4), parameter :: nls_li_sthousand = 15
  integer(4), parameter :: nls_li_sgrouping = 16
  integer(4), parameter :: nls_li_idigits = 17
  integer(4), parameter :: nls_li_ilzero = 18
  integer(4), parameter :: nls_li_inegnumber = 4112
  integer(4), parameter :: nls_li_snativedigits = 19
  integer(4), parameter :: nls_li_spositivesign = 80
  integer(4), parameter :: nls_li_snegativesign = 81

  ! Money: symbols, separators, groups, digits, and where symbols and signs stand.
  integer(4), parameter :: nls_li_scurrency = 20
  integer(4), parameter :: nls_li_sintlsymbol = 21
  integer(4), parameter :: nls_li_smondecimalsep = 22
  integer(4), parameter :: nls_li_smonthousandsep = 23
  integer(4), parameter :: nls_li_smongrouping = 24
  integer(4), parameter :: nls_li_icurrdigits = 25
  integer(4), parameter :: nls_li_iintlcurrdigits = 26
  integer(4), parameter :: nls_li_icurrency = 27
  integer(4), parameter :: nls_li_inegcurr = 28
  integer(4), parameter :: nls_li_ipossignposn = 82
  integer(4), parameter :: nls_li_inegsignposn = 83
  integer(4), parameter :: nls_li_ipossymprecedes = 84
  integer(4), parameter :: nls_li_ipossepbyspace = 85
  integer(4), parameter :: nls_li_inegsymprecedes = 86
  integer(4), parameter :: nls_li_inegsepbyspace = 87

  ! Dates and times: separators, formats, order of the parts, 12 or 24 hours, leading zeros, markers of the half
  ! day, calendars, first day and week.
  integer(4), parameter :: nls_li_sdate = 29
  integer(4), parameter :: nls_li_stime = 30
  integer(4), parameter :: nls_li_sshortdate = 31
  integer(4), parameter :: nls_li_slongdate = 32
  integer(4), parameter :: nls_li_stimeformat = 4099
  integer(4), parameter :: nls_li_idate = 33
  integer(4), parameter :: nls_li_ildate = 34
  integer(4), parameter :: nls_li_itime = 35
  integer(4), parameter :: nls_li_itimemarkposn = 4101
  integer(4), parameter :: nls_li_icentury = 36
  integer(4), parameter :: nls_li_itlzero = 37
  integer(4), parameter :: nls_li_idaylzero = 38
  integer(4), parameter :: nls_li_imonlzero = 39
  integer(4), parameter :: nls_li_s1159 = 40
  integer(4), parameter :: nls_li_s2359 = 41
  integer(4), parameter :: nls_li_icalendartype = 4105
  integer(4), parameter :: nls_li_ioptionalcalendar = 4107
  integer(4), parameter :: nls_li_ifirstdayofweek = 4108
  integer(4), parameter :: nls_li_ifirstweekofyear = 4109

  ! Names of days, Monday first, and of months, and their abbreviations; month 13 is that of some calendars.
  integer(4), parameter :: nls_li_sdayname1 = 42
  integer(4), parameter :: nls_li_sdayname2 = 43
  integer(4), parameter :: nls_li_sdayname3 = 44
  integer(4), parameter :: nls_li_sdayname4 = 45
  integer(4), parameter :: nls_li_sdayname5 = 46
  integer(4), parameter :: nls_li_sdayname6 = 47
  integer(4), parameter :: nls_li_sdayname7 = 48
  integer(4), parameter :: nls_li_sabbrevdayname1 = 49
  integer(4), parameter :: nls_li_sabbrevdayname2 = 50
  integer(4), parameter :: nls_li_sabbrevdayname3 = 51
  integer(4), parameter :: nls_li_sabbrevdayname4 = 52
  integer(4), parameter :: nls_li_sabbrevdayname5 = 53
  integer(4), parameter :: nls_li_sabbrevdayname6 = 54
  integer(4), parameter :: nls_li_sabbrevdayname7 = 55
  integer(4), parameter :: nls_li_smonthname1 = 56
  integer(4), parameter :: nls_li_smonthname2 = 57
  integer(4), parameter :: nls_li_smonthname3 = 58
  integer(4), parameter :: nls_li_smonthname4 = 59
  integer(4), parameter :: nls_li_smonthname5 = 60
  integer(4), parameter :: nls_li_smonthname6 = 61
  integer(4), parameter :: nls_li_smonthname7 = 62
  integer(4), parameter :: nls_li_smonthname8 = 63
  integer(4), parameter :: nls_li_smonthname9 = 64
  integer(4), parameter :: nls_li_smonthname10 = 65
  integer(4), parameter :: nls_li_smonthname11 = 66
  integer(4), parameter :: nls_li_smonthname12 = 67
  integer(4), parameter :: nls_li_smonthname13 = 4110
  integer(4), parameter :: nls_li_sabbrevmonthname1 = 68
  integer(4), parameter :: nls_li_sabbrevmonthname2 = 69
  integer(4), parameter :: nls_li_sabbrevmonthname3 = 70
  integer(4), parameter :: nls_li_sabbrevmonthname4 = 71
  integer(4), parameter :: nls_li_sabbrevmonthname5 = 72
  integer(4), parameter :: nls_li_sabbrevmonthname6 = 73
  integer(4), parameter :: nls_li_sabbrevmonthname7 = 74
  integer(4), parameter :: nls_li_sabbrevmonthname8 = 75
  integer(4), parameter :: nls_li_sabbrevmonthname9 = 76
  integer(4), parameter :: nls_li_sabbrevmonthname10 = 77
  integer(4), parameter :: nls_li_sabbrevmonthname11 = 78
  integer(4), parameter :: nls_li_sabbrevmonthname12 = 79
  integer(4), parameter :: nls_li_sabbrevmonthname13 = 4111

  interface

    ! Chooses the locale by English names. language: blank is the user's. country: left out or blank, the main
    ! one. codepage: left out, the locale's ANSI code page, 65001 (UTF-8) if it has none. READ and WRITE keep
    ! their decimal point.
    function nlssetlocale(language, country, codepage) result(status)
      character(len=*), intent(in) :: language
      character(len=*), intent(in), optional :: country
      integer(4), intent(in), optional :: codepage
      integer(4) :: status
    end function nlssetlocale

    ! The locale. 64 characters hold every name.
    subroutine nlsgetlocale(language, country, codepage)
      character(len=*), intent(inout), optional :: language, country
      integer(4), intent(inout), optional :: codepage
    end subroutine nlsgetlocale

    ! Sets a code page of the environment: the console's for all its programs; the ANSI code page is fixed and
    ! only its present value is accepted. flags: NLS_CONSOLEENVIRONMENTCODEPAGE, NLS_WINDOWSENVIRONMENTCODEPAGE.
    function nlssetenvironmentcodepage(codepage, flags) result(status)
      integer(4), intent(in) :: codepage, flags
      integer(4) :: status
    end function nlssetenvironmentcodepage

    ! A code page of the environment; 0 for the console's if there is no console.
    function nlsgetenvironmentcodepage(flags) result(codepage)
      integer(4), intent(in) :: flags
      integer(4) :: codepage
    end function nlsgetenvironmentcodepage

    ! A piece of information, NLS_LI_..., of the locale. Result: its length.
    function nlsgetlocaleinfo(type, outstr) result(length)
      integer(4), intent(in) :: type
      character(len=*), intent(inout) :: outstr
      integer(4) :: length
    end function nlsgetlocaleinfo

    ! A number, digits with an optional minus sign and decimal point, as the locale writes it or as an amount of
    ! money. Result: the text's length.
    function nlsformatnumber(outstr, intext, flags) result(length)
      character(len=*), intent(inout) :: outstr
      character(len=*), intent(in) :: intext
      integer(4), intent(in), optional :: flags
      integer(4) :: length
    end function nlsformatnumber

    function nlsformatcurrency(outstr, intext, flags) result(length)
      character(len=*), intent(inout) :: outstr
      character(len=*), intent(in) :: intext
      integer(4), intent(in), optional :: flags
      integer(4) :: length
    end function nlsformatcurrency

    ! A date or time of day in local time. intime: seconds since 1970-01-01 00:00:00 UTC, of PACKTIMEQQ; left
    ! out, now. Result: the text's length.
    function nlsformatdate(outstr, intime, flags) result(length)
      character(len=*), intent(inout) :: outstr
      integer(4), intent(in), optional :: intime
      integer(4), intent(in), optional :: flags
      integer(4) :: length
    end function nlsformatdate

    function nlsformattime(outstr, intime, flags) result(length)
      character(len=*), intent(inout) :: outstr
      integer(4), intent(in), optional :: intime
      integer(4), intent(in), optional :: flags
      integer(4) :: length
    end function nlsformattime

    function nlsenumlocales_raw(locales) result(count) bind(C, name='NLSENUMLOCALES')
      import :: array_descriptor, c_int32_t
      type(array_descriptor), intent(out) :: locales
      integer(c_int32_t) :: count
    end function nlsenumlocales_raw

    function nlsenumcodepages_raw(codepages) result(count) bind(C, name='NLSENUMCODEPAGES')
      import :: array_descriptor, c_int32_t
      type(array_descriptor), intent(out) :: codepages
      integer(c_int32_t) :: count
    end function nlsenumcodepages_raw

  end interface

contains

  ! The host's locales; of size 0 after a failure.
  function nlsenumlocales() result(locales)
    type(nls_enumlocales), allocatable :: locales(:)
    type(nls_enumlocales), pointer :: list(:)
    type(array_descriptor) :: descriptor
    integer(4) :: count, status

    count = nlsenumlocales_raw(descriptor)
    allocate (locales(count), stat=status)
    if (count == 0 .or. status /= 0) return
    call c_f_pointer(descriptor%base, list, [count])
    locales(:) = list
    deallocate (list, stat=status)
  end function nlsenumlocales

  ! The host's code pages, in ascending order; of size 0 after a failure.
  function nlsenumcodepages() result(codepages)
    integer(4), allocatable :: codepages(:)
    integer(c_int32_t), pointer :: list(:)
    type(array_descriptor) :: descriptor
    integer(4) :: count, status

    count = nlsenumcodepages_raw(descriptor)
    allocate (codepages(count), stat=status)
    if (count == 0 .or. status /= 0) return
    call c_f_pointer(descriptor%base, list, [count])
    codepages(:) = list
    deallocate (list, stat=status)
  end function nlsenumcodepages

end module qwport_nls
