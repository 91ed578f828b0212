# SPDX-License-Identifier: MIT
# MinGW-w64 with GNU Fortran, for 64-bit Windows and the Universal C run-time.
set(QWPORT_TARGET x86_64-w64-mingw32ucrt)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-x86_64.cmake)
