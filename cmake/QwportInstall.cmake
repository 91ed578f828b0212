# SPDX-License-Identifier: MIT
# The installed tree: DLLs in bin; import libraries, CMake package and pkg-config file in lib; headers and
# the Fortran module in include; the module's source in share/qwport; the documentation and its programs in
# share/doc/qwport. The release package is that tree in a zip file.
include(CMakePackageConfigHelpers)

# The import library for linkers that want Microsoft's form.
set(qwport_msvc_library ${PROJECT_BINARY_DIR}/qwport.lib)
find_program(QWPORT_LLVM_DLLTOOL NAMES llvm-dlltool NO_CMAKE_FIND_ROOT_PATH)
if(QWPORT_LLVM_DLLTOOL)
  set(dlltool -DDLLTOOL=${QWPORT_LLVM_DLLTOOL} -DLLVM=ON)
else()
  set(dlltool -DDLLTOOL=${CMAKE_DLLTOOL} -DLLVM=OFF)
endif()
add_custom_command(
  OUTPUT ${qwport_msvc_library}
  COMMAND ${CMAKE_COMMAND} -DDEF=${PROJECT_SOURCE_DIR}/libqwport.def -DOUT=${qwport_msvc_library} ${dlltool}
    -P ${PROJECT_SOURCE_DIR}/cmake/msvc_import_library.cmake
  DEPENDS libqwport.def cmake/msvc_import_library.cmake cmake/QwportExports.cmake
  VERBATIM)
add_custom_target(qwport_msvc ALL DEPENDS ${qwport_msvc_library})

set(qwport_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qwport)

install(TARGETS qwport qwcorert
  EXPORT qwport
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT qwport
  FILE qwportTargets.cmake
  NAMESPACE qwport::
  DESTINATION ${qwport_cmake_dir})
install(FILES ${qwport_gfortran_library} ${qwport_msvc_library} libqwport.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/qwport.h include/qwcore.h ${qwport_module_file}
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${qwport_module_source} DESTINATION ${CMAKE_INSTALL_DATADIR}/qwport)
install(FILES LICENSE README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING REGEX "[.](f|f90|out)$")

set(qwport_toolchain_file mingw-w64-x86_64.cmake)
if(QWPORT_C_RUNTIME STREQUAL "ucrt")
  set(qwport_toolchain_file mingw-w64-x86_64-ucrt.cmake)
endif()
configure_package_config_file(
  cmake/qwportConfig.cmake.in ${PROJECT_BINARY_DIR}/package/qwportConfig.cmake
  INSTALL_DESTINATION ${qwport_cmake_dir})
# The package itself refuses other architectures, with a sentence.
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/package/qwportConfigVersion.cmake COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
configure_file(cmake/qwport.pc.in ${PROJECT_BINARY_DIR}/package/qwport.pc @ONLY)
install(FILES
  ${PROJECT_BINARY_DIR}/package/qwportConfig.cmake
  ${PROJECT_BINARY_DIR}/package/qwportConfigVersion.cmake
  cmake/QwportCRuntime.cmake
  cmake/mingw-w64-x86_64.cmake
  cmake/mingw-w64-x86_64-ucrt.cmake
  DESTINATION ${qwport_cmake_dir})
install(FILES ${PROJECT_BINARY_DIR}/package/qwport.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
# The declarations for Fortran programs without the module.
install(FILES include/qwport.inc DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME qwport-${PROJECT_VERSION}-windows-x64-${QWPORT_C_RUNTIME})
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/sort_package.cmake)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_VERBATIM_VARIABLES TRUE)
include(CPack)
