! SPDX-License-Identifier: MIT
! The command line, as the core runtime gives it to the library. Run with the words: alpha "b c".
program arguments_test
  use, intrinsic :: iso_c_binding
  use check
  implicit none

  interface
    function for_nargs() bind(C)
      import :: c_int32_t
      integer(c_int32_t) :: for_nargs
    end function for_nargs
    subroutine for_getarg(number, buffer, length, buffer_length) bind(C)
      import :: c_char, c_int32_t, c_int64_t, c_size_t
      integer(c_int32_t), intent(in) :: number
      character(kind=c_char), intent(inout) :: buffer(*)
      integer(c_int64_t), intent(out) :: length
      integer(c_size_t), value :: buffer_length
    end subroutine for_getarg
  end interface

  call expect('words', for_nargs(), 3)
  call expect_word(1, 8, 5_8, 'alpha   ')
  call expect_word(2, 2, 3_8, 'b ')
  call expect_word(2, 0, 3_8, '')
  call expect_word(3, 4, -1_8, '')
  call expect_word(-1, 4, -1_8, '')
  call finish()

contains

  subroutine expect_word(number, room, expected_length, expected_text)
    integer, intent(in) :: number, room
    integer(8), intent(in) :: expected_length
    character(len=*), intent(in) :: expected_text
    character(len=room) :: buffer
    integer(c_int64_t) :: length

    buffer = repeat('#', room)
    call for_getarg(number, buffer, length, int(room, c_size_t))
    call expect('length', length, expected_length)
    if (expected_length >= 0) call expect('text', buffer, expected_text)
  end subroutine expect_word

end program arguments_test
