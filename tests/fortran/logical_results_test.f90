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

  logical :: done

  call expect_answer(-1_c_int64_t, .true.)
  call expect_answer(1_c_int64_t, .true.)
  call expect_answer(0_c_int64_t, .false.)
  call finish()

contains

  subroutine expect_answer(value, expected)
    integer(c_int64_t), intent(in) :: value
    logical, intent(in) :: expected

    call recording_answer(c_char_'FLUSHQQ' // c_null_char, value)
    call recording_answer(c_char_'COMMITQQ' // c_null_char, value)
    done = flushqq(1)
    call expect('flushqq', done .eqv. expected)
    call expect('not flushqq', (.not. done) .eqv. (.not. expected))
    call expect('not flushqq at once', (.not. flushqq(1)) .eqv. (.not. expected))
    call expect('not commitqq at once', (.not. commitqq(1)) .eqv. (.not. expected))
  end subroutine expect_answer

end program logical_results_test
