# SPDX-License-Identifier: MIT
# Compile and link options that the library's own targets share.

add_library(qwport_compile_options INTERFACE)
target_compile_features(qwport_compile_options INTERFACE cxx_std_20)
target_include_directories(qwport_compile_options INTERFACE
  ${PROJECT_SOURCE_DIR}/include
  ${PROJECT_SOURCE_DIR}/src
  ${PROJECT_SOURCE_DIR}/src/frame)
target_compile_definitions(qwport_compile_options INTERFACE
  WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00)
target_compile_options(qwport_compile_options INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wpedantic;-Wconversion;-Wmissing-declarations;-Wshadow;-Werror>
  $<$<COMPILE_LANGUAGE:CXX>:-Wno-cast-function-type>
  $<$<COMPILE_LANGUAGE:Fortran>:-std=f2018;-Wall;-Wextra;-Wimplicit-interface;-Werror>
  -fno-ident -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)

# -O2 makes smaller DLLs than -O3; the loops that count are written in blocks.
string(REPLACE "-O3" "-O2" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})

# A DLL that needs nothing beyond system DLLs (and, for the core runtime, libgfortran), exports what its
# .def file lists, and has the same bytes whenever it is built from the same sources.
function(qwport_configure_dll target)
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src/frame/no_exceptions.cpp)
  target_link_libraries(${target} PRIVATE qwport_compile_options)
  target_include_directories(${target} INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  # Not only -static-libgcc and -static-libstdc++: those two call the thread library that a compiler with POSIX threads
  # has, and would call it in libwinpthread-1.dll.
  target_link_options(${target} PRIVATE
    -static LINKER:--no-insert-timestamp
    LINKER:--dynamicbase,--high-entropy-va,--nxcompat $<$<CONFIG:Release>:-s>)
  set_target_properties(${target} PROPERTIES PREFIX lib LINKER_LANGUAGE CXX)
endfunction()

# The DLL's name, version and licence, for the Explorer and for installers.
function(qwport_add_version_resource target description)
  file(STRINGS ${PROJECT_SOURCE_DIR}/LICENSE copyright REGEX "^Copyright")
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${resource} @ONLY)
  target_sources(${target} PRIVATE ${resource})
endfunction()
