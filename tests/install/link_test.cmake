# SPDX-License-Identifier: MIT
# Installs the build, or unpacks its release package, and builds programs against that tree in every way
# that the documentation tells. Each runs with the tree's DLLs.
#   TREE (install or package), BUILD_DIR, WORK_DIR, SOURCE_DIR (of this file), FORTRAN_COMPILER, CXX_COMPILER,
#   C_RUNTIME, EMULATOR
cmake_policy(VERSION 3.25)

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
  file(GLOB package ${WORK_DIR}/packing/qwport-*-windows-x64-${C_RUNTIME}.zip)
  # Whoever builds the package from the same sources gets the same bytes, so its order is none by chance.
  run(${CMAKE_COMMAND} -E tar tf ${package})
  string(REPLACE "\n" ";" names "${output}")
  set(sorted ${names})
  list(SORT sorted)
  if(NOT names STREQUAL sorted)
    message(FATAL_ERROR "${package} is not sorted: ${names}")
  endif()
  file(SHA256 ${package} sum)
  file(STRINGS ${package}.sha256 written_sum REGEX "^${sum} ")
  if(NOT written_sum)
    message(FATAL_ERROR "${package}.sha256 is not that of the package")
  endif()
  run(${CMAKE_COMMAND} -E tar xf ${package})
  file(REMOVE_RECURSE ${WORK_DIR}/packing)
  file(GLOB tree ${WORK_DIR}/qwport-*-windows-x64-${C_RUNTIME})
endif()
set(docs ${tree}/share/doc/qwport)

# Every page's links lead to something that is installed.
file(GLOB_RECURSE pages ${docs}/*.md)
foreach(page IN LISTS pages)
  cmake_path(GET page PARENT_PATH dir)
  file(READ ${page} text)
  string(REPLACE "](" "@@" text "${text}")
  string(REGEX REPLACE "[][;]" "" text "${text}")  # they mean something in lists
  string(REGEX MATCHALL "@@[^)#:]+" links "${text}")
  foreach(link IN LISTS links)
    string(SUBSTRING "${link}" 2 -1 link)
    if(NOT link STREQUAL "https" AND NOT EXISTS "${dir}/${link}")
      message(FATAL_ERROR "${page} links to ${link}, which is not installed")
    endif()
  endforeach()
endforeach()
foreach(file IN ITEMS lib/libqwport.def lib/qwport.lib)
  if(NOT EXISTS ${tree}/${file})
    message(FATAL_ERROR "${file} is not installed")
  endif()
endforeach()

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

set(toolchain_file mingw-w64-x86_64.cmake)
if(C_RUNTIME STREQUAL "ucrt")
  set(toolchain_file mingw-w64-x86_64-ucrt.cmake)
endif()
run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B cmake -G Ninja -DCMAKE_BUILD_TYPE=Release
  --toolchain ${tree}/lib/cmake/qwport/${toolchain_file} -DCMAKE_PREFIX_PATH=${tree})
run(${CMAKE_COMMAND} --build cmake)
run_with_its_dlls(${WORK_DIR}/cmake/hello.exe)
run_with_its_dlls(${WORK_DIR}/cmake/no_core.exe)

# A configuration for another system, and one with another C run-time, are refused in one sentence.
set(package_dir ${tree}/lib/cmake/qwport)
function(expect_refusal sentence)
  execute_process(COMMAND ${CMAKE_COMMAND} ${ARGN} -Dqwport_DIR=${package_dir} -P ${SOURCE_DIR}/find_package.cmake
    ERROR_VARIABLE errors OUTPUT_QUIET RESULT_VARIABLE status)
  string(REGEX REPLACE "[ \n]+" " " errors "${errors}")
  if(status EQUAL 0 OR NOT errors MATCHES "${sentence}")
    message(FATAL_ERROR "${ARGN}\ngave ${status}\n${errors}")
  endif()
endfunction()
expect_refusal("qwport is for 64-bit Windows on x86-64")
expect_refusal("qwport is for 64-bit Windows on x86-64" -DWIN32=1 -DCMAKE_SIZEOF_VOID_P=4)
expect_refusal("qwport is for 64-bit Windows on x86-64" -DWIN32=1 -DCMAKE_CXX_COMPILER_ARCHITECTURE_ID=ARM64)
set(other_runtime ucrt)
if(C_RUNTIME STREQUAL "ucrt")
  set(other_runtime msvcrt)
endif()
file(WRITE ${WORK_DIR}/libmsvcrt.a "\n${other_runtime}base.dll\n${other_runtime}.dll\n")
file(CONFIGURE OUTPUT ${WORK_DIR}/other-compiler CONTENT "#!/bin/sh\necho ${WORK_DIR}/libmsvcrt.a\n"
  FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
if(NOT CMAKE_HOST_WIN32)
  expect_refusal("built for the C run-time ${C_RUNTIME}, and .* uses ${other_runtime}"
    -DWIN32=1 -DCMAKE_CXX_COMPILER=${WORK_DIR}/other-compiler)
endif()

# The import library for linkers that want Microsoft's form.
find_program(lld_link lld-link)
if(lld_link)
  run(${CXX_COMPILER} -x c -c ${SOURCE_DIR}/plain.c -o plain.obj -I${tree}/include)
  run(${CXX_COMPILER} -print-file-name=libkernel32.a)
  run(${lld_link} /nologo /entry:start /subsystem:console /out:plain.exe plain.obj ${tree}/lib/qwport.lib ${output})
  run_with_its_dlls(${WORK_DIR}/plain.exe)
endif()
