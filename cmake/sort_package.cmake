# SPDX-License-Identifier: MIT
# Run by CPack when it has made the release package: makes it anew from the same tree with its files in alphabetical
# order, where CPack takes them as the directory gives them. Their times are SOURCE_DATE_EPOCH, if that is set.
cmake_policy(VERSION 3.25)
file(GLOB_RECURSE files LIST_DIRECTORIES false
  RELATIVE ${CPACK_TOPLEVEL_DIRECTORY} ${CPACK_TEMPORARY_DIRECTORY}/*)
list(SORT files)
set(listing ${CPACK_TOPLEVEL_DIRECTORY}/files.txt)
list(JOIN files "\n" lines)
file(WRITE ${listing} "${lines}\n")
execute_process(
  COMMAND ${CMAKE_COMMAND} -E tar cf ${CPACK_PACKAGE_FILES} --format=zip --files-from=${listing}
  WORKING_DIRECTORY ${CPACK_TOPLEVEL_DIRECTORY}
  COMMAND_ERROR_IS_FATAL ANY)
