# SPDX-License-Identifier: MIT
# cmake -DDEF=... -DOUT=... -DDLLTOOL=... -DLLVM=ON|OFF -P msvc_import_library.cmake
# Makes the import library for linkers that want Microsoft's form, with the exports by their own names. LLVM's
# dlltool writes that form. GNU dlltool writes import objects in its stead, which lld links as well.
cmake_policy(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/QwportExports.cmake)

# A second name is an export like others to the caller.
qwport_read_exports(${DEF} exports)
list(TRANSFORM exports REPLACE "(.+)" "    \"\\1\"")
list(JOIN exports "\n" lines)
set(definition ${OUT}.def)
file(WRITE ${definition} "LIBRARY libqwport.dll\nEXPORTS\n${lines}\n")

if(LLVM)
  set(options -m i386:x86-64)
else()
  set(options --deterministic-libraries --temp-prefix qwport_lib)
endif()
cmake_path(GET OUT PARENT_PATH directory)
cmake_path(GET OUT FILENAME name)
file(REMOVE ${OUT})
execute_process(
  COMMAND ${DLLTOOL} ${options} -d ${definition} -l ${name}
  WORKING_DIRECTORY ${directory}
  COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE ${definition})
