# SPDX-License-Identifier: MIT
# Reading the one list of exports.

# The exported names of a .def file.
function(qwport_read_exports def result)
  file(STRINGS ${def} lines REGEX "^ +\"?[A-Z0-9_$]+")
  list(TRANSFORM lines REPLACE "^ +\"?([A-Z0-9_$]+).*" "\\1")
  set(${result} ${lines} PARENT_SCOPE)
endfunction()

# A Fortran program's name for an export. Fortran names have no dollar signs.
function(qwport_fortran_name export result)
  string(TOLOWER ${export} name)
  string(REGEX REPLACE "^[$]+" "" name ${name})
  string(REPLACE "$" "_" name ${name})
  set(${result} ${name} PARENT_SCOPE)
endfunction()
