# SPDX-License-Identifier: MIT
# MinGW-w64 with GNU Fortran, for 64-bit Windows and its msvcrt.dll: a cross compiler elsewhere, the one in the PATH
# on Windows, whatever its C run-time is.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

if(CMAKE_HOST_WIN32)
  set(prefix "")
else()
  if(NOT QWPORT_TARGET)
    set(QWPORT_TARGET x86_64-w64-mingw32)
  endif()
  set(prefix ${QWPORT_TARGET}-)
  set(CMAKE_FIND_ROOT_PATH /usr/${QWPORT_TARGET})
  set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
  set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
  set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
  set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
endif()
set(CMAKE_C_COMPILER ${prefix}gcc)
set(CMAKE_CXX_COMPILER ${prefix}g++)
set(CMAKE_Fortran_COMPILER ${prefix}gfortran)
set(CMAKE_RC_COMPILER ${prefix}windres)
