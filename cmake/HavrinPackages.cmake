# SPDX-License-Identifier: Apache-2.0
# The Debian packages that `cpack --preset package` makes of the components: each shared library with its debug information
# apart, what building needs, and the documentation. tools/package_test builds, examines and tries them.
set(HAVRIN_MAINTAINER "" CACHE STRING
  "The maintainer that the packages name, \"Name <address>\": whoever builds them. Empty: DEBFULLNAME and DEBEMAIL")
set(havrin_maintainer "${HAVRIN_MAINTAINER}")
if(NOT havrin_maintainer AND DEFINED ENV{DEBFULLNAME} AND DEFINED ENV{DEBEMAIL})  # where Debian's own tools look
  set(havrin_maintainer "$ENV{DEBFULLNAME} <$ENV{DEBEMAIL}>")
elseif(NOT havrin_maintainer)
  set(havrin_maintainer "Maintainers of HavrinFoundation <maintainers@localhost>")
endif()
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/packaging/announce_maintainer.cmake)  # warns of that address

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME havrinfoundation)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${havrin_maintainer})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL HavrinTyped HavrinFoundation dev doc)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE havrinfoundation)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/HavrinFoundation)

set(havrin_package_version "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
set(havrin_package_folder ${PROJECT_BINARY_DIR}/packaging)
string(TIMESTAMP havrin_package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${CMAKE_CURRENT_LIST_DIR}/packaging/changelog.in ${havrin_package_folder}/changelog.Debian @ONLY)
configure_file(${CMAKE_CURRENT_LIST_DIR}/packaging/copyright.in ${havrin_package_folder}/copyright @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${havrin_package_folder}/changelog COPYONLY)
foreach(file IN ITEMS changelog.Debian changelog)
  execute_process(COMMAND gzip -9nc ${havrin_package_folder}/${file}
    OUTPUT_FILE ${havrin_package_folder}/${file}.gz COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(WRITE ${havrin_package_folder}/triggers "activate-noawait ldconfig\n")

# havrin_package(<component> <package> <section> "summary" "description" DEPENDS ...)
function(havrin_package component package section summary description)
  cmake_parse_arguments(PARSE_ARGV 5 ARG "" "" "DEPENDS")
  string(TOUPPER ${component} upper)
  list(JOIN ARG_DEPENDS ", " depends)
  install(FILES ${havrin_package_folder}/copyright ${havrin_package_folder}/changelog.Debian.gz
      ${havrin_package_folder}/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${description}" PARENT_SCOPE)
endfunction()

havrin_package(HavrinTyped libhavrintyped1 libs "everyday value operations for C++20, shared library"
  "Numbers and texts in compact, base-36 and hexadecimal form, dates by the
calendar of a zone, colour codes, links and campaign parameters, unfair locks
and a locked box: plain C++ on standard types.")
havrin_package(HavrinFoundation libhavrinfoundation1 libs "everyday object operations for C++20, shared library"
  "Objects with messages found at run time, categories, collections with block
operations, key-value observing, queues and run loops, property lists, lenient
decoding and keyed archives."
  DEPENDS "libhavrintyped1 (= ${havrin_package_version})")
havrin_package(dev libhavrinfoundation-dev libdevel "everyday value and object operations for C++20, development files"
  "Headers, static libraries, and the files by which CMake and pkg-config find
HavrinFoundation and HavrinTyped."
  DEPENDS "libhavrinfoundation1 (= ${havrin_package_version})" "libhavrintyped1 (= ${havrin_package_version})"
    libicu-dev libcctz-dev libssl-dev libsimdjson-dev libexpat1-dev)
havrin_package(doc libhavrinfoundation-doc doc "everyday value and object operations for C++20, documentation"
  "How the library is built, its names, and what its versions promise.")

foreach(component IN ITEMS HAVRINTYPED HAVRINFOUNDATION)
  set(CPACK_DEBIAN_${component}_DEBUGINFO_PACKAGE ON)
  set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA ${havrin_package_folder}/triggers)
endforeach()
foreach(component IN ITEMS DEV DOC)
  set(CPACK_DEBIAN_${component}_PACKAGE_SHLIBDEPS OFF)
endforeach()
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
include(CPack)
