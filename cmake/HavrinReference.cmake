# SPDX-License-Identifier: Apache-2.0
# The target `reference`: an API reference of the public headers as HTML, in build/<preset>/reference/html. Where doxygen is
# not installed there is no such target, and nothing else is missing.
find_package(Doxygen QUIET COMPONENTS doxygen)
find_program(havrin_reference_python python3)
if(NOT DOXYGEN_FOUND OR NOT havrin_reference_python)
  return()
endif()

set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/reference)
set(DOXYGEN_PROJECT_NAME HavrinFoundation)
set(DOXYGEN_PROJECT_NUMBER ${PROJECT_VERSION})
set(DOXYGEN_PROJECT_BRIEF "${PROJECT_DESCRIPTION}")
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR})
set(DOXYGEN_INPUT_FILTER "${havrin_reference_python} ${PROJECT_SOURCE_DIR}/tools/reference_filter.py")
set(DOXYGEN_FILE_PATTERNS *.h *.md)
set(DOXYGEN_EXCLUDE_SYMBOLS "havrin::detail::*" detail)
set(DOXYGEN_PREDEFINED HAVRIN_EXPORT= "HAVRIN_THREAD_SAFETY(...)=")
set(DOXYGEN_ENABLE_PREPROCESSING YES)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_USE_MDFILE_AS_MAINPAGE README.md)
set(DOXYGEN_EXTRACT_ALL YES)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_WARNINGS YES)
set(DOXYGEN_HTML_EXTRA_FILES docs/board-light.svg)  # the pages' pictures
foreach(plot IN ITEMS archive change debounce decoding hex select)
  list(APPEND DOXYGEN_HTML_EXTRA_FILES docs/growth/${plot}.svg)
endforeach()
set(DOXYGEN_HTML_TIMESTAMP NO)
set(headers)
foreach(library IN ITEMS HavrinTyped HavrinFoundation)
  get_target_property(files ${library} HEADER_SET)
  list(APPEND headers ${files})
endforeach()
doxygen_add_docs(reference ${headers} README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md docs
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
  COMMENT "API reference in ${PROJECT_BINARY_DIR}/reference/html/index.html")
