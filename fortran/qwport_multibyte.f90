! SPDX-License-Identifier: MIT
! Multibyte text of the console's input code page: a character is one byte, or two when its first byte is a
! lead byte. Positions and lengths count bytes, positions from 1, and trailing blanks count. Nothing is
! reported: bad arguments give 0.
module qwport_multibyte
  use, intrinsic :: iso_c_binding, only: c_char, c_int16_t, c_int32_t, c_loc, c_size_t
  use qwport_arrays, only: array_descriptor
  implicit none
  public
  private :: c_char, c_int16_t, c_int32_t, c_loc, c_size_t
  private :: array_descriptor, mblead_raw, mbtounicode_raw, unicodetomb_raw, to_unicode, to_multibyte

  ! Flags of the comparisons, to be added: upper and lower case, marks on letters, symbols, Hiragana and
  ! Katakana, characters of full and half width are the same; punctuation sorts as symbols do.
  integer(4), parameter :: nls_ignorecase = 1
  integer(4), parameter :: nls_ignorenonspace = 2
  integer(4), parameter :: nls_ignoresymbols = 4
  integer(4), parameter :: nls_ignorekanatype = 65536
  integer(4), parameter :: nls_ignorewidth = 131072
  integer(4), parameter :: nls_stringsort = 4096

  ! Flags of MBCONVERTMBTOUNICODE: letters with marks as one character or as two, glyphs for control characters.
  integer(4), parameter :: nls_precomposed = 1
  integer(4), parameter :: nls_composite = 2
  integer(4), parameter :: nls_useglyphchars = 4

  ! Flags of MBCONVERTUNICODETOMB: put letters and marks together; of what cannot be put together lose the mark,
  ! keep both, or write the default character.
  integer(4), parameter :: nls_compositecheck = 512
  integer(4), parameter :: nls_discardns = 16
  integer(4), parameter :: nls_sepchars = 32
  integer(4), parameter :: nls_defaultchar = 64

  interface

    ! The most bytes that a character has; 0 if the host does not know the code page.
    pure function mbcurmax() result(bytes)
      integer(4) :: bytes
    end function mbcurmax

    ! The bytes of the first character; 0 for an empty text or a NUL.
    pure function mbcharlen(string) result(bytes)
      character(len=*), intent(in) :: string
      integer(4) :: bytes
    end function mbcharlen

    ! The position of the character behind or before the one at pos; 0 if there is none. MBPREV looks at one
    ! byte only, and may misjudge bytes that can be both lead and trail bytes.
    pure function mbnext(string, pos) result(position)
      character(len=*), intent(in) :: string
      integer(4), intent(in) :: pos
      integer(4) :: position
    end function mbnext

    pure function mbprev(string, pos) result(position)
      character(len=*), intent(in) :: string
      integer(4), intent(in) :: pos
      integer(4) :: position
    end function mbprev

    ! Whether a two-byte character begins at pos, seen from the start of the text.
    pure function mbstrlead(string, pos) result(answer)
      character(len=*), intent(in) :: string
      integer(4), intent(in) :: pos
      logical(4) :: answer
    end function mbstrlead

    ! The number of characters but for NULs; MBLEN_TRIM counts to the last one that is not a blank.
    pure function mblen(string) result(characters)
      character(len=*), intent(in) :: string
      integer(4) :: characters
    end function mblen

    pure function mblen_trim(string) result(characters)
      character(len=*), intent(in) :: string
      integer(4) :: characters
    end function mblen_trim

    ! Comparisons by the user's default locale. Two empty texts are equal; with one empty text all are false.
    pure function mblge(string1, string2, flags) result(answer)
      character(len=*), intent(in) :: string1, string2
      integer(4), intent(in), optional :: flags
      logical(4) :: answer
    end function mblge

    pure function mblgt(string1, string2, flags) result(answer)
      character(len=*), intent(in) :: string1, string2
      integer(4), intent(in), optional :: flags
      logical(4) :: answer
    end function mblgt

    pure function mblle(string1, string2, flags) result(answer)
      character(len=*), intent(in) :: string1, string2
      integer(4), intent(in), optional :: flags
      logical(4) :: answer
    end function mblle

    pure function mbllt(string1, string2, flags) result(answer)
      character(len=*), intent(in) :: string1, string2
      integer(4), intent(in), optional :: flags
      logical(4) :: answer
    end function mbllt

    pure function mbleq(string1, string2, flags) result(answer)
      character(len=*), intent(in) :: string1, string2
      integer(4), intent(in), optional :: flags
      logical(4) :: answer
    end function mbleq

    pure function mblne(string1, string2, flags) result(answer)
      character(len=*), intent(in) :: string1, string2
      integer(4), intent(in), optional :: flags
      logical(4) :: answer
    end function mblne

    ! The position of the first character that is, or is not, one of set; 0 if there is none. With back from
    ! the end: then the result is one more than the place of the walk (docs/multibyte.md).
    pure function mbscan(string, set, back) result(position)
      character(len=*), intent(in) :: string, set
      logical(4), intent(in), optional :: back
      integer(4) :: position
    end function mbscan

    pure function mbverify(string, set, back) result(position)
      character(len=*), intent(in) :: string, set
      logical(4), intent(in), optional :: back
      integer(4) :: position
    end function mbverify

    ! The position of the first, with back the last, occurrence of a text in UTF-8; 0 if there is none.
    pure function mbindex(string, substring, back) result(position)
      character(len=*), intent(in) :: string, substring
      logical(4), intent(in), optional :: back
      integer(4) :: position
    end function mbindex

    pure function mblead_raw(c, c_len) result(answer) bind(C, name='MBLEAD')
      import :: c_char, c_int32_t, c_size_t
      character(kind=c_char), intent(in) :: c
      integer(c_size_t), value :: c_len
      integer(c_int32_t) :: answer
    end function mblead_raw

    function mbtounicode_raw(mbtext, utf16, flags, mbtext_len) result(count) bind(C, name='MBCONVERTMBTOUNICODE')
      import :: array_descriptor, c_char, c_int32_t, c_size_t
      character(kind=c_char), intent(in) :: mbtext(*)
      type(array_descriptor), intent(in), target :: utf16
      integer(c_int32_t), intent(in), optional :: flags
      integer(c_size_t), value :: mbtext_len
      integer(c_int32_t) :: count
    end function mbtounicode_raw

    function unicodetomb_raw(utf16, mbtext, flags, mbtext_len) result(count) bind(C, name='MBCONVERTUNICODETOMB')
      import :: array_descriptor, c_char, c_int32_t, c_size_t
      type(array_descriptor), intent(in), target :: utf16
      character(kind=c_char), intent(inout) :: mbtext(*)
      integer(c_int32_t), intent(in), optional :: flags
      integer(c_size_t), value :: mbtext_len
      integer(c_int32_t) :: count
    end function unicodetomb_raw

  end interface

contains

  ! Whether c is a lead byte.
  elemental function mblead(c) result(answer)
    character(len=1), intent(in) :: c
    logical(4) :: answer

    answer = mblead_raw(c, 1_c_size_t) /= 0
  end function mblead

  ! mbtext, without its trailing blanks, from the ANSI code page to UTF-16. flags: NLS_PRECOMPOSED if left out.
  ! utf16 is filled up with blanks. Result: the elements converted, or with a utf16 of size 0 the elements
  ! needed; negative: a system error, such as -122 if utf16 is too small.
  function mbconvertmbtounicode(mbtext, utf16, flags) result(count)
    character(len=*), intent(in) :: mbtext
    integer(2), intent(inout) :: utf16(:)
    integer(4), intent(in), optional :: flags
    integer(4) :: count

    count = to_unicode(mbtext, utf16, size(utf16), flags)
  end function mbconvertmbtounicode

  ! All of utf16 to the ANSI code page. flags: NLS_COMPOSITECHECK + NLS_SEPCHARS if left out. mbtext is filled
  ! up with blanks. Result: the bytes converted, or with an mbtext of length 0 the bytes needed; negative: a
  ! system error.
  function mbconvertunicodetomb(utf16, mbtext, flags) result(count)
    integer(2), intent(in) :: utf16(:)
    character(len=*), intent(inout) :: mbtext
    integer(4), intent(in), optional :: flags
    integer(4) :: count

    count = to_multibyte(utf16, size(utf16), mbtext, flags)
  end function mbconvertunicodetomb

  ! The elements of an array of explicit shape follow one another.
  function to_unicode(mbtext, utf16, extent, flags) result(count)
    character(len=*), intent(in) :: mbtext
    integer, intent(in) :: extent
    integer(c_int16_t), intent(inout), target :: utf16(extent)
    integer(4), intent(in), optional :: flags
    integer(4) :: count
    type(array_descriptor) :: descriptor

    if (extent > 0) descriptor%base = c_loc(utf16)
    descriptor%extent = extent
    count = mbtounicode_raw(mbtext, descriptor, flags, len(mbtext, kind=c_size_t))
  end function to_unicode

  function to_multibyte(utf16, extent, mbtext, flags) result(count)
    integer, intent(in) :: extent
    integer(c_int16_t), intent(in), target :: utf16(extent)
    character(len=*), intent(inout) :: mbtext
    integer(4), intent(in), optional :: flags
    integer(4) :: count
    type(array_descriptor) :: descriptor

    if (extent > 0) descriptor%base = c_loc(utf16)
    descriptor%extent = extent
    count = unicodetomb_raw(descriptor, mbtext, flags, len(mbtext, kind=c_size_t))
  end function to_multibyte

end module qwport_multibyte
