# SPDX-License-Identifier: Apache-2.0
# Preprocesses HEADER and fails where it brings in a header of the project that is not ALLOWED: a typed form of a value
# facility must pull in no object runtime.
cmake_minimum_required(VERSION 3.25)

execute_process(
  COMMAND ${COMPILER} -std=c++20 -I ${SOURCE_DIR} -x c++ -M ${SOURCE_DIR}/${HEADER}
  OUTPUT_VARIABLE rule RESULT_VARIABLE failed)
if(failed)
  message(FATAL_ERROR "${HEADER} does not compile alone")
endif()
string(REGEX MATCHALL "HavrinFoundation/[A-Za-z0-9_/]+\\.h" found "${rule}")
list(REMOVE_DUPLICATES found)
foreach(header IN LISTS found)
  if(NOT header STREQUAL HEADER AND NOT header IN_LIST ALLOWED)
    message(FATAL_ERROR "${HEADER} brings in ${header}")
  endif()
endforeach()
foreach(header IN LISTS ALLOWED)
  if(NOT header IN_LIST found)
    message(FATAL_ERROR "${HEADER} no longer brings in ${header}: take it off the list")
  endif()
endforeach()
