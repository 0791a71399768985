# SPDX-License-Identifier: Apache-2.0
# The body of havrin_compile_failure: compiles ${source} for each case, and compares what the compiler says.
string(REPLACE "\t" ";" expected "${expected}")

# try_case(<number> <variable for the status> <variable for the text>)
function(try_case number status text)
  set(added)
  if(number GREATER 0)
    set(added ${flags})
  endif()
  execute_process(
    COMMAND ${compiler} -std=c++20 ${added} -fsyntax-only -I ${include} -D HAVRIN_CASE=${number} ${source}
    RESULT_VARIABLE result ERROR_VARIABLE error OUTPUT_QUIET)
  set(${status} ${result} PARENT_SCOPE)
  set(${text} "${error}" PARENT_SCOPE)
endfunction()

try_case(0 status text)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "Case 0 must compile:\n${text}")
endif()

set(number 0)
foreach(wanted IN LISTS expected)
  math(EXPR number "${number} + 1")
  try_case(${number} status text)
  if(status EQUAL 0)
    message(FATAL_ERROR "Case ${number} compiled; it should be refused with: ${wanted}")
  endif()
  string(REPLACE " ... " ";" pieces "${wanted}")
  foreach(piece IN LISTS pieces)
    string(FIND "${text}" "${piece}" at)
    if(at EQUAL -1)
      message(FATAL_ERROR "Case ${number} was refused without saying '${piece}':\n${text}")
    endif()
  endforeach()
  message(STATUS "Case ${number} is refused: ${wanted}")
endforeach()
