# SPDX-License-Identifier: MIT
# Installs the build, or unpacks its release package, and builds programs against that tree in every way
# that the documentation tells. Each runs with the tree's DLLs.
#   TREE (install or package), BUILD_DIR, WORK_DIR, SOURCE_DIR (of this file), FORTRAN_COMPILER, EMULATOR

function(run)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${WORK_DIR}
    OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGN}\ngave ${status}\n${output}${errors}")
  endif()
  string(STRIP "${output}" output)
  set(output "${output}" PARENT_SCOPE)
endfunction()

# A program finds DLLs beside itself before all others.
function(run_with_its_dlls program)
  cmake_path(GET program PARENT_PATH dir)
  file(COPY ${tree}/bin/ DESTINATION ${dir} FILES_MATCHING PATTERN *.dll)
  run(${EMULATOR} ${program})
  if(NOT output STREQUAL "qwport")
    message(FATAL_ERROR "${program} printed ${output}")
  endif()
  file(REMOVE ${program})
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR}/modules)
file(COPY ${SOURCE_DIR}/hello.f90 DESTINATION ${WORK_DIR})
if(TREE STREQUAL "install")
  set(tree ${WORK_DIR}/tree)
  run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${tree})
else()
  run(${CMAKE_CPACK_COMMAND} --config ${BUILD_DIR}/CPackConfig.cmake -B ${WORK_DIR}/packing)
  file(GLOB package ${WORK_DIR}/packing/qwport-*-windows-x64.zip)
  run(${CMAKE_COMMAND} -E tar xf ${package})
  file(REMOVE_RECURSE ${WORK_DIR}/packing)
  file(GLOB tree ${WORK_DIR}/qwport-*-windows-x64)
endif()
set(docs ${tree}/share/doc/qwport)

# The README's one line.
file(STRINGS ${docs}/README.md line REGEX "^ +gfortran hello.f90 -o hello.exe -I")
separate_arguments(line UNIX_COMMAND "${line}")
list(POP_FRONT line)
string(REPLACE "DIR" "${tree}" plain "${line}")
run(${FORTRAN_COMPILER} ${plain})
run_with_its_dlls(${WORK_DIR}/hello.exe)

# A program without the module, by the one line of its page.
file(STRINGS ${docs}/docs/legacy.md legacy REGEX "^ +gfortran -std=legacy batch.f -o batch.exe")
separate_arguments(legacy UNIX_COMMAND "${legacy}")
list(POP_FRONT legacy)
string(REPLACE "DIR" "${tree}" legacy "${legacy}")
string(REPLACE "batch.f;" "${docs}/examples/legacy/batch.f;" legacy "${legacy}")
run(${FORTRAN_COMPILER} ${legacy})

# The first one with the module compiled from source, for compilers that cannot read qwport.mod.
run(${FORTRAN_COMPILER} -c ${tree}/share/qwport/qwport.f90 -Jmodules)
string(REPLACE "-IDIR/include" "-Imodules;qwport.o" from_source "${line}")
string(REPLACE "DIR" "${tree}" from_source "${from_source}")
run(${FORTRAN_COMPILER} ${from_source})
run_with_its_dlls(${WORK_DIR}/hello.exe)

find_program(pkg_config pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${tree}/lib/pkgconfig)
run(${pkg_config} --cflags --libs qwport)
separate_arguments(flags UNIX_COMMAND "${output}")
run(${FORTRAN_COMPILER} hello.f90 -o hello.exe ${flags})
run_with_its_dlls(${WORK_DIR}/hello.exe)

run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B cmake -G Ninja -DCMAKE_BUILD_TYPE=Release
  --toolchain ${tree}/lib/cmake/qwport/mingw-w64-x86_64.cmake -DCMAKE_PREFIX_PATH=${tree})
run(${CMAKE_COMMAND} --build cmake)
run_with_its_dlls(${WORK_DIR}/cmake/hello.exe)
run_with_its_dlls(${WORK_DIR}/cmake/no_core.exe)
