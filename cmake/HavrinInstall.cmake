# What `cmake --install` copies: both libraries in both forms, their headers, and what lets another project find them
# with find_package(HavrinFoundation) or pkg-config. Everything is relative to the prefix, so the tree can be moved.
include(CMakePackageConfigHelpers)

set(havrin_config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/HavrinFoundation)
set(havrin_installed HavrinPlatform HavrinFoundation HavrinPlatformStatic HavrinFoundationStatic)
if(TARGET HavrinTestKit)
  list(APPEND havrin_installed HavrinTestKit)
endif()

install(TARGETS ${havrin_installed} EXPORT HavrinFoundationTargets FILE_SET HEADERS)
install(EXPORT HavrinFoundationTargets NAMESPACE HavrinFoundation:: DESTINATION ${havrin_config_dir})

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/HavrinFoundationConfig.cmake.in ${PROJECT_BINARY_DIR}/HavrinFoundationConfig.cmake
  INSTALL_DESTINATION ${havrin_config_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/HavrinFoundationConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/HavrinFoundationConfig.cmake ${PROJECT_BINARY_DIR}/HavrinFoundationConfigVersion.cmake
  DESTINATION ${havrin_config_dir})

# pkg-config: the prefix is found from where the file lies.
get_property(havrin_linker_names GLOBAL PROPERTY HAVRIN_LINKER_NAMES)
list(REMOVE_DUPLICATES havrin_linker_names)
list(TRANSFORM havrin_linker_names PREPEND -l)
list(JOIN havrin_linker_names " " havrin_private_libraries)
file(RELATIVE_PATH havrin_prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" havrin_prefix_from_pc ${havrin_prefix_from_pc})
configure_file(
  ${PROJECT_SOURCE_DIR}/cmake/HavrinFoundation.pc.in ${PROJECT_BINARY_DIR}/HavrinFoundation.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/HavrinFoundation.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
