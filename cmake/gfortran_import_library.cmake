# SPDX-License-Identifier: MIT
# cmake -DDEF=... -DOUT=... -DDLLTOOL=... -DAR=... -DOBJECTS=a;b -P gfortran_import_library.cmake
# Makes the import library for GNU Fortran programs from the one list of exports: each export under its
# own name and under GNU Fortran's (SLEEPQQ and sleepqq_), and the object code of the Fortran module.
file(STRINGS ${DEF} lines)

set(exports "")
foreach(line IN LISTS lines)
  if(line MATCHES "^ +\"?([A-Z0-9_$]+)\"?( = [A-Za-z0-9_]+)?$")
    set(export ${CMAKE_MATCH_1})
    # Fortran names have no dollar signs.
    string(TOLOWER ${export} lower)
    string(REGEX REPLACE "^[$]+" "" lower ${lower})
    string(REPLACE "$" "_" lower ${lower})
    string(APPEND exports "    \"${export}\"\n    ${lower}_ == \"${export}\"\n")
  endif()
endforeach()

set(definition ${OUT}.def)
file(WRITE ${definition} "LIBRARY libqwport.dll\nEXPORTS\n${exports}")
file(REMOVE ${OUT})
execute_process(
  COMMAND ${DLLTOOL} --deterministic-libraries --input-def ${definition} --output-lib ${OUT}
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${AR} qcsD ${OUT} ${OBJECTS}
  COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE ${definition})
