# SPDX-License-Identifier: MIT
# How programs of this build run: they need GNU Fortran's DLLs beside the library's, and Wine where the
# build machine is no Windows.

# The directories of the DLLs that a GNU Fortran program needs.
set(qwport_dll_dirs ${PROJECT_BINARY_DIR})
foreach(dll IN ITEMS libgfortran-5.dll libgcc_s_seh-1.dll libquadmath-0.dll libwinpthread-1.dll)
  execute_process(
    COMMAND ${CMAKE_Fortran_COMPILER} -print-file-name=${dll}
    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(IS_ABSOLUTE ${path} AND EXISTS ${path})
    cmake_path(GET path PARENT_PATH dir)
    cmake_path(NORMAL_PATH dir)
    list(APPEND qwport_dll_dirs ${dir})
  endif()
endforeach()
list(REMOVE_DUPLICATES qwport_dll_dirs)

if(NOT CMAKE_HOST_WIN32)
  find_program(QWPORT_WINE NAMES wine64 wine64-stable PATHS /usr/lib/wine REQUIRED
    NO_CMAKE_FIND_ROOT_PATH)
  set(QWPORT_WINE_PREFIX ${PROJECT_SOURCE_DIR}/build/wine CACHE PATH
    "The Wine prefix that tests and examples run in")
  list(TRANSFORM qwport_dll_dirs PREPEND "Z:" OUTPUT_VARIABLE wine_dirs)
  string(REPLACE "/" "\\" QWPORT_WINE_PATH "${wine_dirs}")
  configure_file(${PROJECT_SOURCE_DIR}/cmake/run_under_wine.sh.in ${PROJECT_BINARY_DIR}/run-under-wine
    @ONLY FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${PROJECT_BINARY_DIR}/run-under-wine)
endif()
