# SPDX-License-Identifier: Apache-2.0
# Does what docs/first-steps.md says, with the blocks as they stand there: makes the project in ${folder} from them, builds
# it against the tree installed at ${prefix}, and compares what the program prints with what the page shows.
file(READ ${page} text)
string(REPLACE ";" "\\;" text "${text}")
string(REPLACE "[" "<bracket>" text "${text}")  # an open one keeps lists from being split
string(REPLACE "]" "</bracket>" text "${text}")

# blocks(<kind> <variable>): the blocks of one language, joined.
function(blocks kind result)
  string(REGEX MATCHALL "```${kind}\n[^`]*```" found "${text}")
  set(joined "")
  foreach(block IN LISTS found)
    string(REGEX REPLACE "^```${kind}\n|```$" "" block "${block}")
    string(APPEND joined "${block}")
  endforeach()
  string(REPLACE "<bracket>" "[" joined "${joined}")
  string(REPLACE "</bracket>" "]" joined "${joined}")
  if(joined STREQUAL "")
    message(FATAL_ERROR "${page} has no block of ${kind}")
  endif()
  set(${result} "${joined}" PARENT_SCOPE)
endfunction()
blocks(cmake lists)
blocks(cpp program)
blocks(text expected)

file(WRITE ${folder}/CMakeLists.txt "${lists}")
file(WRITE ${folder}/main.cpp "${program}")
execute_process(COMMAND ${CMAKE_COMMAND} -G ${generator} -S ${folder} -B ${folder}/build
    -DCMAKE_CXX_COMPILER=${compiler} -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Debug
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${folder}/build COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${folder}/build/first_steps OUTPUT_VARIABLE printed COMMAND_ERROR_IS_FATAL ANY)
if(NOT printed STREQUAL expected)
  message(FATAL_ERROR "The program prints\n${printed}\nand the page shows\n${expected}")
endif()
