! Throws dice: with a generator of the program's own, and with the shared one, read and set again.
program dice
  use qwport
  implicit none
  integer :: seed, saved, i
  integer :: throws(6), again(6)

  seed = 2024
  print '(a,6i2)', 'own seed:  ', [(1 + int(6*ran(seed)), i=1, 6)]

  call iranset(2024)
  call ranget(saved)
  throws = [(1 + int(6*rand(0)), i=1, 6)]
  call iranset(saved)
  again = [(1 + int(6*rand(0)), i=1, 6)]
  print '(a,6i2)', 'shared:    ', throws
  print '(a,6i2)', 'the same:  ', again
end program dice
