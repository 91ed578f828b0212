# SPDX-License-Identifier: MIT
# cmake -DCOMMAND=program;arguments -DEXPECTED=file -P compare_output.cmake
# Runs a program that must succeed and print exactly the lines of a file.
execute_process(COMMAND ${COMMAND} OUTPUT_VARIABLE output RESULT_VARIABLE status)
string(REPLACE "\r" "" output "${output}")
file(READ ${EXPECTED} expected)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "status ${status}\n${output}")
endif()
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "printed\n${output}instead of\n${expected}")
endif()
