! SPDX-License-Identifier: MIT
! SORTQQ against std::sort, qsort and a plain Shell sort, BSEARCHQQ against std::lower_bound, and QSORT against
! the bare qsort.
program sorting
  use, intrinsic :: iso_c_binding, only: c_double, c_int16_t, c_int32_t, c_int64_t
  use qwport
  use timing
  implicit none

  interface
    subroutine fill_array(array, count, type, pattern) bind(C)
      import :: c_int32_t, c_int64_t
      type(*), intent(inout) :: array(*)
      integer(c_int64_t), value :: count
      integer(c_int32_t), value :: type, pattern
    end subroutine fill_array

    subroutine standard_sort(array, count, type, method) bind(C)
      import :: c_int32_t, c_int64_t
      type(*), intent(inout) :: array(*)
      integer(c_int64_t), value :: count
      integer(c_int32_t), value :: type, method
    end subroutine standard_sort

    function standard_search(key, array, count) result(index) bind(C)
      import :: c_double, c_int32_t, c_int64_t
      real(c_double), intent(in) :: key, array(*)
      integer(c_int64_t), value :: count
      integer(c_int32_t) :: index
    end function standard_search

    function compare_int4(left, right) result(order) bind(C)
      import :: c_int16_t, c_int32_t
      integer(c_int32_t), intent(in) :: left, right
      integer(c_int16_t) :: order
    end function compare_int4
  end interface

  integer, parameter :: by_library = 0, by_std_sort = 1, by_qsort = 2, by_shell_sort = 3
  integer(4), parameter :: types(*) = &
    [sort_real4, sort_real8, sort_int1, sort_int2, sort_int4, sort_int8, sort_real16, 10]
  integer(8), parameter :: sizes(*) = [4, 8, 1, 2, 4, 8, 16, 10]
  character(len=9), parameter :: type_names(*) = [character(len=9) :: &
    'REAL(4)', 'REAL(8)', 'INT(1)', 'INT(2)', 'INT(4)', 'INT(8)', 'REAL(16)', '10 bytes']
  character(len=8), parameter :: patterns(*) = [character(len=8) :: 'random', 'sorted', 'reversed', 'few']
  integer(8), parameter :: counts(*) = [100, 10000, 1000000, 10000000]
  integer(1), allocatable :: array(:)
  integer :: i, type, pattern

  do i = 1, size(counts)
    allocate (array(counts(i)*maxval(sizes)))
    print '(a,i0,a)', 'SORTQQ, ', counts(i), ' elements'
    call print_head('an element', 'SORTQQ', 'std::sort')
    do type = 1, size(types)
      do pattern = 1, size(patterns)
        call compare(by_std_sort, '')
      end do
    end do
    if (counts(i) == 1000000) then
      call print_head('an element', 'SORTQQ', 'Shell sort')
      do type = 1, size(types)
        pattern = 1
        call compare(by_shell_sort, ', Shell')
      end do
    end if
    call print_head('an element', 'SORTQQ', 'qsort')
    do type = 1, size(types)
      pattern = 1
      call compare(by_qsort, ', qsort')
    end do
    deallocate (array)
  end do
  call print_head('a search, of a million', 'BSEARCHQQ', 'lower_bound')
  call compare_searches()
  call print_head('an element, 100000', 'QSORT', 'bare qsort')
  call compare_procedures()

contains

  subroutine compare(method, what)
    integer, intent(in) :: method
    character(len=*), intent(in) :: what
    integer :: rounds, round
    real(8), allocatable, dimension(:) :: library, standard

    rounds = merge(3, 7, counts(i) > 100000)
    allocate (library(rounds), standard(rounds))
    do round = 1, rounds
      library(round) = time_of(by_library)
      standard(round) = time_of(method)
    end do
    call report(trim(type_names(type))//' '//trim(patterns(pattern))//what, library, standard, int(counts(i)))
  end subroutine compare

  ! Small arrays are sorted many times, so that the clock can tell.
  real(8) function time_of(method)
    integer, intent(in) :: method
    integer(8) :: count
    integer :: repeats, repeat
    real(8) :: start

    repeats = int(max(1_8, 20000_8/counts(i)))
    time_of = 0
    do repeat = 1, repeats
      call fill_array(array, counts(i), types(type), pattern)
      count = counts(i)
      start = now()
      if (method == by_library) then
        call sortqq(loc(array), count, types(type))
      else
        call standard_sort(array, count, types(type), method)
      end if
      time_of = time_of + (now() - start)
    end do
    time_of = time_of/repeats
  end function time_of

  subroutine compare_searches()
    integer, parameter :: count = 1000000, rounds = 11, searches = 200000
    real(8), allocatable :: values(:), keys(:)
    real(8), dimension(rounds) :: library, standard
    real(8) :: start
    integer :: round, j, found, expected

    allocate (values(count), keys(searches))
    values = [(real(j, 8), j=1, count)]
    call random_number(keys)
    keys = aint(keys*count)
    do round = 1, rounds
      found = 0
      expected = 0
      start = now()
      do j = 1, searches
        found = found + bsearchqq(loc(keys(j)), loc(values), int(count, 8), sort_real8)/2
      end do
      library(round) = now() - start
      start = now()
      do j = 1, searches
        expected = expected + standard_search(keys(j), values, int(count, 8))/2
      end do
      standard(round) = now() - start
      if (found /= expected) error stop 'bsearchqq'
    end do
    call report('BSEARCHQQ, REAL(8)', library, standard, searches)
  end subroutine compare_searches

  subroutine compare_procedures()
    integer, parameter :: count = 100000, rounds = 7
    integer(4), allocatable :: numbers(:)
    real(8), dimension(rounds) :: library, standard
    real(8) :: start
    integer :: round

    allocate (numbers(count))
    do round = 1, rounds
      call fill_array(numbers, int(count, 8), sort_int4, 1)
      start = now()
      call qsort(numbers, count, 4, compare_int4)
      library(round) = now() - start
      call fill_array(numbers, int(count, 8), sort_int4, 1)
      start = now()
      call standard_sort(numbers, int(count, 8), sort_int4, by_qsort)
      standard(round) = now() - start
    end do
    call report('QSORT, INTEGER(4)', library, standard, count)
  end subroutine compare_procedures

end program sorting
