# SPDX-License-Identifier: MIT
# LLVM flang compiles the module's source and the examples for the target; a program that calls a routine of each
# family, linked to the import library, runs without a core runtime.
#   FLANG, CXX_COMPILER, BUILD_DIR, WORK_DIR, SOURCE_DIR (of this file), INCLUDE_DIR, EXAMPLES_DIR, EMULATOR
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
set(compile ${FLANG} --target=x86_64-w64-mingw32 -O2 -I${INCLUDE_DIR} -c)
run(${compile} ${BUILD_DIR}/qwport.f90 -o qwport.o)
file(GLOB examples ${EXAMPLES_DIR}/*.f90 ${EXAMPLES_DIR}/legacy/*.f)
foreach(example IN LISTS examples)
  run(${compile} ${example} -o example.o)
endforeach()
foreach(part IN ITEMS inventory unit_copy demo)
  run(${compile} ${EXAMPLES_DIR}/demo/${part}.f90 -o example.o)
endforeach()

# Two entries that the module's source calls are the core runtime's own.
run(${compile} ${SOURCE_DIR}/without_core.f90 -o without_core.o)
run(${CXX_COMPILER} -std=c++20 -static ${SOURCE_DIR}/without_core.cpp without_core.o qwport.o -o without_core.exe
  ${BUILD_DIR}/libqwport-gfortran.dll.a -Wl,--defsym=FLUSHQQ=abort,--defsym=COMMITQQ=abort)
file(COPY ${BUILD_DIR}/libqwport.dll DESTINATION ${WORK_DIR})
run(${EMULATOR} ${WORK_DIR}/without_core.exe)
if(NOT output STREQUAL "qwport")
  message(FATAL_ERROR "printed ${output}")
endif()
