! Packs a date, counts on by a week, and shows it in several forms.
program calendar
  use qwport
  implicit none
  integer, parameter :: week = 7*86400
  integer(4) :: time_value, fields(9)
  integer(2) :: year, month, day, hour, minute, second
  character(len=25) :: text
  real :: start

  start = secnds(0.0)
  call packtimeqq(time_value, 2024_2, 2_2, 22_2, 12_2, 30_2, 0_2)
  time_value = time_value + week

  call unpacktimeqq(time_value, year, month, day, hour, minute, second)
  print '(i4,2("-",i2.2))', year, month, day
  text = ctime(time_value)
  print '(a)', text(1:24)
  call ltime(time_value, fields)
  print '(a,i0,a,i0)', 'day ', fields(8), ' of the year, day of the week ', fields(7)

  if (secnds(start) < 60.0) print '(a)', 'worked out in less than a minute'
end program calendar
