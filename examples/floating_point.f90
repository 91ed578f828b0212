! Bounds of 1/10 by directed rounding, the flags that it raised, and a trap.
program floating_point
  use qwport
  implicit none
  character(len=9) :: text
  real(8), volatile :: one = 1, ten = 10, zero = 0, lower, upper
  integer :: raised

  raised = ieee_flags('clearall', ' ', ' ', text)
  if (ieee_flags('set', 'direction', 'negative', text) == 0) lower = one/ten
  if (ieee_flags('set', 'direction', 'positive', text) == 0) upper = one/ten
  raised = ieee_flags('get', 'exception', ' ', text)
  print '(a,l2,2a)', 'lower < upper:', lower < upper, ', raised: ', trim(text)

  raised = ieee_flags('clearall', ' ', ' ', text)
  if (ieee_handler('set', 'division', report) /= 0) call abort('no handler')
  upper = one/zero
  print '(a)', 'not reached'
contains
  subroutine report(signum, code)
    integer(4) :: signum, code

    print '(2(a,i0))', 'signal ', signum, ', code ', code
    call exit(0)
  end subroutine report
end program floating_point
