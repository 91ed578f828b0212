! SPDX-License-Identifier: MIT
! SORTQQ against std::sort, BSEARCHQQ against std::lower_bound, and QSORT against the bare qsort.
!
! Small arrays are neighbours in a large one and are sorted once: a processor learns the branches of one that it
! sorts again. A million is too many to be learnt: each round sorts the same. Instead of NaNs, which std::sort cannot
! order, it gets numbers. An argument names the rows to run by a part of their text, as in "1000000 REAL(8)".
program sorting
  use, intrinsic :: iso_c_binding, only: c_double, c_int16_t, c_int32_t, c_int64_t
  use qwport
  use timing
  implicit none

  interface
    subroutine fill_array(array, count, type, pattern, seed) bind(C)
      import :: c_int32_t, c_int64_t
      type(*), intent(inout) :: array(*)
      integer(c_int64_t), value :: count
      integer(c_int32_t), value :: type, pattern, seed
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

  integer, parameter :: by_std_sort = 1, by_qsort = 2
  integer, parameter :: random = 1, few = 5, nans = 6, one_nan = 7, zeros = 8, half_zeros = 9
  character(len=*), parameter :: patterns(*) = [character(len=13) :: 'random', 'sorted', 'reversed', &
    'almost sorted', 'few values', '2 % NaN', 'one NaN', '1 % zeros', 'half zeros']
  integer, parameter :: types(*) = [sort_int1, sort_int2, sort_int4, sort_int8, sort_real4, sort_real8, &
    sort_real16, 4, 10, 20, 100]
  integer, parameter :: sizes(*) = [1, 2, 4, 8, 4, 8, 16, 4, 10, 20, 100]
  character(len=*), parameter :: type_names(*) = [character(len=10) :: 'INTEGER(1)', 'INTEGER(2)', 'INTEGER(4)', &
    'INTEGER(8)', 'REAL(4)', 'REAL(8)', 'REAL(16)', '4 bytes', '10 bytes', '20 bytes', '100 bytes']
  real(8), parameter :: goals(*) = [0.03d0, 0.06d0, 0.15d0, 0.25d0, 0.15d0, 0.27d0, 0.45d0, 0.1d0, 0.3d0, &
    0.35d0, 0.6d0]
  integer, parameter :: real_types(*) = [5, 6], number_types = 7, million = 1000000
  real(8), parameter :: any_order = 1.05d0, small_goals(*) = [0.6d0, 0.67d0, 0.7d0]
  character(len=40) :: wanted
  integer :: type, pattern, power

  call get_command_argument(1, wanted)
  call print_head('an element', 'SORTQQ', 'std::sort')
  do type = 1, size(types)
    call compare(type, million, random, goals(type))
    do pattern = random + 1, few
      call compare(type, million, pattern, merge(0.9d0, any_order, type > number_types .and. pattern == few))
    end do
  end do
  do type = real_types(1), real_types(2)
    call compare(type, million, nans, 6d0)
    call compare(type, million, one_nan, 2d0)
    call compare(type, million, zeros, 0.4d0)
    call compare(type, million, half_zeros, 1d0)
  end do
  do power = 1, 4
    call print_head('an element', 'SORTQQ', 'std::sort')
    do type = 1, size(types)
      do pattern = random, few
        call compare(type, 10**power, pattern, small_goal())
      end do
    end do
  end do
  call print_head('a search, of a million', 'BSEARCHQQ', 'lower_bound')
  call compare_searches()
  call print_head('an element, 100000', 'QSORT', 'bare qsort')
  call compare_procedures()

contains

  real(8) function small_goal() result(goal)
    goal = any_order
    if (type <= number_types .and. pattern == random .and. power <= size(small_goals)) goal = small_goals(power)
    if (type > number_types .and. power == 1 .and. patterns(pattern) == 'reversed') goal = 0.7d0
  end function small_goal

  ! A row: arrays of count elements.
  subroutine compare(type, count, pattern, goal)
    integer, intent(in) :: type, count, pattern
    real(8), intent(in) :: goal
    integer, parameter :: elements_in_a_round = 20000
    integer(1), allocatable :: array(:, :), filled(:, :), plain(:, :)
    real(8), dimension(merge(5, 9, count == million)) :: library, standard
    integer :: arrays, round, i
    logical :: has_nans
    character(len=8) :: number
    character(len=40) :: what

    write (number, '(i0)') count
    what = trim(number)//' '//trim(type_names(type))//', '//patterns(pattern)
    if (index(what, trim(wanted)) == 0) return
    has_nans = pattern == nans .or. pattern == one_nan
    arrays = max(1, elements_in_a_round/count)
    allocate (array(sizes(type)*count, arrays), filled(sizes(type)*count, arrays))
    do round = 1, size(library)
      if (round == 1 .or. arrays > 1) then
        do i = 1, arrays
          call fill_array(filled(:, i), int(count, 8), types(type), pattern, round*arrays + i)
        end do
      end if
      array = filled
      library(round) = time_of_library(array, sizes(type)*count, arrays, count, types(type))
      plain = filled
      if (has_nans) call fill_array(plain, int(count, 8), types(type), random, round)
      standard(round) = time_of_standard(plain, sizes(type)*count, arrays, count, types(type))
      if (pattern < nans .and. any(array /= plain)) error stop 'sortqq'
    end do
    call report(what, library, standard, arrays*count, goal)
  end subroutine compare

  real(8) function time_of_library(array, bytes, arrays, count, type) result(time)
    integer, intent(in) :: bytes, arrays, count, type
    integer(1), intent(inout), target :: array(bytes, arrays)
    integer(8) :: elements
    integer :: i

    time = -now()
    do i = 1, arrays
      elements = count
      call sortqq(loc(array(1, i)), elements, type)
    end do
    time = time + now()
  end function time_of_library

  real(8) function time_of_standard(array, bytes, arrays, count, type) result(time)
    integer, intent(in) :: bytes, arrays, count, type
    integer(1), intent(inout) :: array(bytes, arrays)
    integer :: i

    time = -now()
    do i = 1, arrays
      call standard_sort(array(1, i), int(count, 8), type, by_std_sort)
    end do
    time = time + now()
  end function time_of_standard

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
      call fill_array(numbers, int(count, 8), sort_int4, random, round)
      start = now()
      call qsort(numbers, count, 4, compare_int4)
      library(round) = now() - start
      call fill_array(numbers, int(count, 8), sort_int4, random, round)
      start = now()
      call standard_sort(numbers, int(count, 8), sort_int4, by_qsort)
      standard(round) = now() - start
    end do
    call report('QSORT, INTEGER(4)', library, standard, count)
  end subroutine compare_procedures

end program sorting
