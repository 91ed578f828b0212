# SPDX-License-Identifier: MIT
# How a test is made: a program, the DLLs that it is to meet, a time limit and a label.
include(QwportExports)

# Programs that meet the recording core stand in its directory, which comes first in the DLL search.
set(recording_dir ${PROJECT_BINARY_DIR}/tests/recording)
set(test_program_dir ${PROJECT_BINARY_DIR}/tests/programs)

# doctest is one header; only its directory may come from the build machine.
find_path(QWPORT_DOCTEST_DIR doctest/doctest.h REQUIRED NO_CMAKE_FIND_ROOT_PATH)
file(COPY ${QWPORT_DOCTEST_DIR}/doctest/doctest.h DESTINATION ${PROJECT_BINARY_DIR}/third_party/doctest)

add_library(qwport_test_support OBJECT
  support/child.cpp support/import_override.cpp support/main.cpp)
target_link_libraries(qwport_test_support PUBLIC qwport_compile_options)
target_include_directories(qwport_test_support PUBLIC support)
target_include_directories(qwport_test_support SYSTEM PUBLIC ${PROJECT_BINARY_DIR}/third_party)
target_compile_definitions(qwport_test_support PUBLIC DOCTEST_CONFIG_NO_MULTITHREADING)
# GCC 12 warns about its own std::string.
target_compile_options(qwport_test_support PUBLIC $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)

# recording_core exports the whole contract; incomplete_core lacks the version mark and FLUSHQQ.
function(add_recording_core target directory)
  cmake_parse_arguments(arg "" "" "WITHOUT" ${ARGN})
  file(STRINGS ${PROJECT_SOURCE_DIR}/core/libqwcorert.def lines REGEX "^ +[A-Za-z0-9_]+$")
  list(TRANSFORM lines STRIP)
  list(REMOVE_ITEM lines ERRSNS ${arg_WITHOUT})
  # Those that do more than record are in the source.
  set(entries ${lines})
  list(REMOVE_ITEM entries for__getenv __msportlib_d_gethandle)
  list(TRANSFORM entries REPLACE "(.+)" "ENTRY(\\1)\n")
  list(JOIN entries "" entries)
  file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${target}_entries.inc CONTENT "${entries}")
  list(APPEND lines recording_core recording_answer recording_text)
  list(JOIN lines "\n    " exports)
  set(def ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
  file(CONFIGURE OUTPUT ${def} CONTENT "LIBRARY libqwcorert.dll\nEXPORTS\n    ${exports}\n")
  add_library(${target} SHARED ${PROJECT_SOURCE_DIR}/tests/support/recording_core.cpp ${def})
  qwport_configure_dll(${target})
  target_compile_definitions(${target} PRIVATE
    RECORDED_ENTRIES="${CMAKE_CURRENT_BINARY_DIR}/${target}_entries.inc")
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME qwcorert
    RUNTIME_OUTPUT_DIRECTORY ${directory} ARCHIVE_OUTPUT_DIRECTORY ${directory})
endfunction()
add_recording_core(recording_core ${recording_dir})
add_recording_core(incomplete_core ${PROJECT_BINARY_DIR}/tests/incomplete WITHOUT for_qwcore_version FLUSHQQ)

# What every test has: a time limit, a label (its family, or what else its folder is called), the Wine prefix, and on Windows the DLLs in the PATH.
function(set_test_environment test label)
  set_tests_properties(${test} PROPERTIES TIMEOUT 120 LABELS ${label} FIXTURES_REQUIRED wine_prefix)
  if(CMAKE_HOST_WIN32)
    list(TRANSFORM qwport_dll_dirs REPLACE "(.+)" "PATH=path_list_prepend:\\1" OUTPUT_VARIABLE changes)
    set_tests_properties(${test} PROPERTIES ENVIRONMENT_MODIFICATION "${changes}")
  endif()
endfunction()

# Links a test program to its core runtime, recording, real or none, and puts it where it finds that. Further
# arguments are those of the program.
function(configure_test name core)
  target_link_options(${name} PRIVATE -static-libgcc -static-libstdc++)
  set(directory ${test_program_dir})
  if(core STREQUAL recording)
    # The module's code comes from the real import library, the DLL from the test's directory.
    target_link_libraries(${name} PRIVATE recording_core $<TARGET_LINKER_FILE:qwcorert>)
    target_link_options(${name} PRIVATE LINKER:-u,for_qwcore_version)
    set(directory ${recording_dir})
  elseif(core STREQUAL real)
    target_link_libraries(${name} PRIVATE qwport::core)
  endif()
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${directory})
  add_test(NAME ${name} COMMAND ${name} ${ARGN} WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
  cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME folder)
  set_test_environment(${name} ${folder})
endfunction()

# A doctest program.
function(qwport_add_test name)
  cmake_parse_arguments(arg "" "CORE" "SOURCES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  add_dependencies(${name} qwport_fortran)
  target_link_libraries(${name} PRIVATE qwport_test_support qwport::qwport)
  configure_test(${name} ${arg_CORE})
endfunction()

# A Fortran program, compiled as a user's program is: with the module, without the library's options, and twice, since
# interfaces that say too little are wrong only where the compiler optimises. Each runs in a directory of its own. Gives
# the two programs' names, NAME_O0 and NAME_O3, in NAME_programs.
function(qwport_add_fortran_test name)
  cmake_parse_arguments(arg "" "CORE" "SOURCES;ARGUMENTS" ${ARGN})
  set_source_files_properties(${arg_SOURCES} PROPERTIES OBJECT_DEPENDS ${qwport_module_file})
  foreach(level IN ITEMS O0 O3)
    set(program ${name}_${level})
    set(directory ${CMAKE_CURRENT_BINARY_DIR}/${program})
    add_executable(${program} ${PROJECT_SOURCE_DIR}/tests/support/check.f90 ${arg_SOURCES})
    add_dependencies(${program} qwport_fortran)
    target_compile_options(${program} PRIVATE $<$<COMPILE_LANGUAGE:Fortran>:-Wall;-${level}>)
    set_target_properties(${program} PROPERTIES Fortran_MODULE_DIRECTORY ${directory}/modules)
    target_link_libraries(${program} PRIVATE qwport::qwport)
    configure_test(${program} ${arg_CORE} ${arg_ARGUMENTS})
    file(MAKE_DIRECTORY ${directory})
    set_tests_properties(${program} PROPERTIES WORKING_DIRECTORY ${directory})
    list(APPEND programs ${program})
  endforeach()
  set(${name}_programs ${programs} PARENT_SCOPE)
endfunction()

# An example program must run and print what its .out file says, at both levels. FOLDER/NAME is the program
# FOLDER_NAME. Each runs in a directory of its own.
function(qwport_add_example_test example)
  string(REPLACE "/" "_" name ${example})
  set(label examples)
  if(example IN_LIST qwport_families)
    set(label ${example})
  endif()
  foreach(program IN ITEMS example_${name} example_${name}_O0)
    set(directory ${CMAKE_CURRENT_BINARY_DIR}/examples/${program})
    file(MAKE_DIRECTORY ${directory})
    add_test(NAME ${program}
      COMMAND ${CMAKE_COMMAND}
        "-DCOMMAND=${CMAKE_CROSSCOMPILING_EMULATOR};$<TARGET_FILE:${program}>;${ARGN}"
        -DEXPECTED=${PROJECT_SOURCE_DIR}/examples/${example}.out
        -P ${PROJECT_SOURCE_DIR}/tests/compare_output.cmake
      WORKING_DIRECTORY ${directory})
    set_test_environment(${program} ${label})
  endforeach()
endfunction()

# A Fortran program that imports every exported routine from the module; that it compiles is the test.
function(qwport_add_module_names name)
  qwport_read_exports(${PROJECT_SOURCE_DIR}/libqwport.def exports)
  set(text "program module_names\n")
  foreach(export IN LISTS exports)
    qwport_fortran_name(${export} routine)
    string(APPEND text "  use qwport, only: ${routine}\n")
  endforeach()
  set(source ${CMAKE_CURRENT_BINARY_DIR}/module_names.f90)
  file(CONFIGURE OUTPUT ${source} CONTENT "${text}end program module_names\n" @ONLY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/libqwport.def)
  add_library(${name} OBJECT ${source})
  add_dependencies(${name} qwport_fortran)
  target_link_libraries(${name} PRIVATE qwport::qwport)
endfunction()
