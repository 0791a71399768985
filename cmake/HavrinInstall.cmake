# SPDX-License-Identifier: Apache-2.0
# What `cmake --install` copies: both libraries, shared and static, their headers, and what lets another project find them
# with find_package(HavrinFoundation) or pkg-config. Everything is relative to the prefix, so the tree can be moved.
include(CMakePackageConfigHelpers)

set(havrin_config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/HavrinFoundation)
set(havrin_installed HavrinTyped HavrinFoundation HavrinTypedStatic HavrinFoundationStatic)
if(TARGET HavrinTestKit)
  list(APPEND havrin_installed HavrinTestKit)
endif()

# The components are the Debian packages: each shared library by itself, what building needs, and what people read.
foreach(target IN LISTS havrin_installed)
  install(TARGETS ${target} EXPORT HavrinFoundationTargets
    LIBRARY COMPONENT ${target} NAMELINK_COMPONENT dev
    ARCHIVE COMPONENT dev
    FILE_SET HEADERS COMPONENT dev)
endforeach()
install(EXPORT HavrinFoundationTargets NAMESPACE HavrinFoundation:: DESTINATION ${havrin_config_dir} COMPONENT dev)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT doc
  FILES_MATCHING PATTERN *.md PATTERN *.svg)
install(DIRECTORY ${PROJECT_BINARY_DIR}/reference/html DESTINATION ${CMAKE_INSTALL_DOCDIR}/reference COMPONENT doc
  OPTIONAL)  # there when the target `reference` has been built
execute_process(COMMAND gzip -9nc ${PROJECT_SOURCE_DIR}/docs/havrinfoundation.7
  OUTPUT_FILE ${PROJECT_BINARY_DIR}/havrinfoundation.7.gz COMMAND_ERROR_IS_FATAL ANY)
install(FILES ${PROJECT_BINARY_DIR}/havrinfoundation.7.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man7 COMPONENT doc)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md NOTICE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc)

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/HavrinFoundationConfig.cmake.in ${PROJECT_BINARY_DIR}/HavrinFoundationConfig.cmake
  INSTALL_DESTINATION ${havrin_config_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/HavrinFoundationConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/HavrinFoundationConfig.cmake ${PROJECT_BINARY_DIR}/HavrinFoundationConfigVersion.cmake
  DESTINATION ${havrin_config_dir} COMPONENT dev)

# pkg-config: the prefix is found from where the file lies.
file(RELATIVE_PATH havrin_prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" havrin_prefix_from_pc ${havrin_prefix_from_pc})

# havrin_pkg_config(<library> AS <name> REQUIRES ...): the file of one library.
function(havrin_pkg_config library)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "AS;DESCRIPTION;REQUIRES" "")
  get_property(linker_names GLOBAL PROPERTY HAVRIN_LINKER_NAMES_${ARG_AS})
  list(REMOVE_DUPLICATES linker_names)
  list(TRANSFORM linker_names PREPEND -l)
  list(JOIN linker_names " " private_libraries)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/library.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
endfunction()
havrin_pkg_config(HavrinTyped AS Typed DESCRIPTION "The typed forms of HavrinFoundation, without objects")
havrin_pkg_config(HavrinFoundation AS HavrinFoundation DESCRIPTION "${PROJECT_DESCRIPTION}" REQUIRES HavrinTyped)

# gdb looks for a library's script by the library's own path, below its folder for such scripts.
foreach(library IN ITEMS HavrinTyped HavrinFoundation)
  install(FILES ${PROJECT_SOURCE_DIR}/tools/gdb/havrin_printers.py
    DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load/${CMAKE_INSTALL_FULL_LIBDIR}
    RENAME lib${library}.so.${PROJECT_VERSION}-gdb.py COMPONENT ${library})
endforeach()

if(PROJECT_IS_TOP_LEVEL)
  include(HavrinPackages)
endif()
