# SPDX-License-Identifier: MIT
# cmake -DDEF=... -DOUT=... -DDLLTOOL=... -DAR=... -DMODULES=a;b -DEXTERNAL_SOURCES=a;b -DOBJECTS=a;b
#   -P gfortran_import_library.cmake
# Makes the import library for GNU Fortran programs from the one list of exports: each export under its
# own name and under GNU Fortran's (SLEEPQQ and sleepqq_), and the object code of the Fortran module. For the
# procedures of EXTERNAL_SOURCES GNU Fortran's name is that of their own code. A procedure of a generic name in
# MODULES has a name of its own for each kind: dim_real4_ is DIM, too.
cmake_policy(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/QwportExports.cmake)

qwport_read_exports(${DEF} exports)
set(own_code "")
foreach(source IN LISTS EXTERNAL_SOURCES)
  file(STRINGS ${source} headings REGEX "^(.+ )?(function|subroutine) [a-z]+\\(")
  list(TRANSFORM headings REPLACE "^.*(function|subroutine) ([a-z]+).*" "\\2")
  list(APPEND own_code ${headings})
endforeach()

set(lines "")
foreach(export IN LISTS exports)
  qwport_fortran_name(${export} name)
  string(APPEND lines "    \"${export}\"\n")
  if(NOT name IN_LIST own_code)
    string(APPEND lines "    ${name}_ == \"${export}\"\n")
  endif()
endforeach()
foreach(source IN LISTS MODULES)
  file(STRINGS ${source} kinds REGEX "^    (elemental )?(function|subroutine) [a-z0-9]+(_(int|real)[0-9])+\\(")
  list(TRANSFORM kinds REPLACE "^ +(elemental )?(function|subroutine) ([a-z0-9_]+).*" "\\3")
  foreach(kind IN LISTS kinds)
    string(REGEX REPLACE "_.*" "" export ${kind})
    string(TOUPPER ${export} export)
    string(APPEND lines "    ${kind}_ == \"${export}\"\n")
  endforeach()
endforeach()

set(definition ${OUT}.def)
file(WRITE ${definition} "LIBRARY libqwport.dll\nEXPORTS\n${lines}")
file(REMOVE ${OUT})
# dlltool makes symbols of the output's name as given: without its directory they are the same everywhere.
cmake_path(GET OUT PARENT_PATH directory)
cmake_path(GET OUT FILENAME name)
execute_process(
  COMMAND ${DLLTOOL} --deterministic-libraries --temp-prefix qwport --input-def ${definition} --output-lib ${name}
  WORKING_DIRECTORY ${directory}
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${AR} qcsD ${OUT} ${OBJECTS}
  COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE ${definition})
