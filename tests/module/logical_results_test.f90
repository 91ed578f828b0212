! SPDX-License-Identifier: MIT
! A core runtime may answer true as -1, which is no LOGICAL of GNU Fortran's: the module makes a proper
! .TRUE. of it.
program logical_results_test
  use, intrinsic :: iso_c_binding
  use check
  use qwport
  implicit none

  interface
    subroutine recording_answer(entry, value) bind(C, name='recording_answer')
      import :: c_char, c_int64_t
      character(kind=c_char), intent(in) :: entry(*)
      integer(c_int64_t), value :: value
    end subroutine recording_answer
  end interface

  integer :: answer

  do answer = -1, 1
    call recording_answer(c_char_'FLUSHQQ'//c_null_char, int(answer, c_int64_t))
    call recording_answer(c_char_'COMMITQQ'//c_null_char, int(answer, c_int64_t))
    call expect('flushqq', flushqq(1) .eqv. answer /= 0)
    call expect('at once', ((.not. flushqq(1)) .eqv. answer == 0) .and. ((.not. commitqq(1)) .eqv. answer == 0))
  end do
  call finish()
end program logical_results_test
