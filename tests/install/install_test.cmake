# SPDX-License-Identifier: MIT
# Installs the build into a tree of its own, builds programs against that tree in every way that the
# README tells, and runs each with the tree's DLLs.
#   BUILD_DIR, WORK_DIR, SOURCE_DIR (of this file), FORTRAN_COMPILER, TOOLCHAIN_FILE, EMULATOR

function(run)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGN}\ngave ${status}\n${output}${errors}")
  endif()
  string(STRIP "${output}" output)
  set(output "${output}" PARENT_SCOPE)
endfunction()

set(tree ${WORK_DIR}/tree)

# A program finds DLLs beside itself before all others.
function(run_with_installed_dlls program)
  cmake_path(GET program PARENT_PATH dir)
  file(COPY ${tree}/bin/ DESTINATION ${dir} FILES_MATCHING PATTERN *.dll)
  run(${EMULATOR} ${program})
  if(NOT output STREQUAL "qwport")
    message(FATAL_ERROR "${program} printed ${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
foreach(way IN ITEMS plain pkg-config from-source)
  file(MAKE_DIRECTORY ${WORK_DIR}/${way})
endforeach()
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${tree})

run(${FORTRAN_COMPILER} ${SOURCE_DIR}/hello.f90 -o ${WORK_DIR}/plain/hello.exe
  -I${tree}/include -L${tree}/lib -lqwport-gfortran -Wl,-u,for_qwcore_version -lqwcorert)
run_with_installed_dlls(${WORK_DIR}/plain/hello.exe)

# A compiler whose .mod files are of another version compiles the module itself.
run(${FORTRAN_COMPILER} -c ${tree}/share/qwport/qwport.f90
  -J${WORK_DIR}/from-source -o ${WORK_DIR}/from-source/qwport.o)
run(${FORTRAN_COMPILER} ${SOURCE_DIR}/hello.f90 ${WORK_DIR}/from-source/qwport.o
  -o ${WORK_DIR}/from-source/hello.exe
  -I${WORK_DIR}/from-source -L${tree}/lib -lqwport-gfortran -Wl,-u,for_qwcore_version -lqwcorert)
run_with_installed_dlls(${WORK_DIR}/from-source/hello.exe)

find_program(pkg_config pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${tree}/lib/pkgconfig)
run(${pkg_config} --cflags --libs qwport)
separate_arguments(flags UNIX_COMMAND "${output}")
run(${FORTRAN_COMPILER} ${SOURCE_DIR}/hello.f90 -o ${WORK_DIR}/pkg-config/hello.exe ${flags})
run_with_installed_dlls(${WORK_DIR}/pkg-config/hello.exe)

run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/cmake -G Ninja
  -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN_FILE} -DCMAKE_PREFIX_PATH=${tree}
  -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake)
run_with_installed_dlls(${WORK_DIR}/cmake/hello.exe)
run_with_installed_dlls(${WORK_DIR}/cmake/no_core.exe)
