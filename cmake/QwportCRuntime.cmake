# SPDX-License-Identifier: MIT
# Which C run-time a compiler's programs use: "msvcrt" for msvcrt.dll, "ucrt" for the Universal C run-time, empty if
# that cannot be told. Programs and DLLs share errno, descriptors and the environment only if theirs is one.

# MinGW compilers of either kind call the import library of their C run-time libmsvcrt.a; it tells the DLLs' names.
function(qwport_find_c_runtime compiler result)
  set(${result} "" PARENT_SCOPE)
  execute_process(COMMAND ${compiler} -print-file-name=libmsvcrt.a
    OUTPUT_VARIABLE library OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(NOT IS_ABSOLUTE "${library}" OR NOT EXISTS "${library}")
    return()
  endif()
  file(STRINGS "${library}" names LIMIT_COUNT 1 REGEX "^api-ms-win-crt-.*[.]dll$|^ucrtbased?[.]dll$|^msvcrt[.]dll$")
  if(names STREQUAL "msvcrt.dll")
    set(${result} msvcrt PARENT_SCOPE)
  elseif(names)
    set(${result} ucrt PARENT_SCOPE)
  endif()
endfunction()
