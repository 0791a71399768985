# SPDX-License-Identifier: Apache-2.0
# The functions that the rooms' lists call. Each list names its own files; nothing is globbed.

find_package(Threads REQUIRED)

# Flags that every target of the project is built with; none of them reaches a user of the library.
add_library(havrin_build_flags INTERFACE)
target_compile_features(havrin_build_flags INTERFACE cxx_std_20)
target_compile_options(havrin_build_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>  # g++ 12 sees overlaps in std::string's own concatenation
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
  # Newer clangs warn of what libstdc++ 12's own std::stable_sort uses.
  $<$<AND:$<CXX_COMPILER_ID:Clang>,$<VERSION_GREATER_EQUAL:$<CXX_COMPILER_VERSION>,17>>:-Wno-deprecated-declarations>
  $<$<BOOL:${HAVRIN_WARNINGS_AS_ERRORS}>:-Werror>)
if(HAVRIN_SANITIZERS)
  target_compile_options(havrin_build_flags INTERFACE
    -fsanitize=${HAVRIN_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(havrin_build_flags INTERFACE -fsanitize=${HAVRIN_SANITIZERS})
endif()

if(HAVRIN_BUILD_FUZZERS)  # the mutations follow what the library's own code does
  target_compile_options(havrin_build_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# havrin_library(<target> AS <name> LINKS ... STATIC_LINKS ...): one set of objects, a shared library HavrinFoundation::<name>
# and a static one, HavrinFoundation::<name>Static. The tests use the static one, through which they reach internals.
function(havrin_library shared)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "AS" "LINKS;STATIC_LINKS")
  set(objects ${shared}_objects)
  set(static ${shared}Static)
  add_library(${objects} OBJECT)
  set_target_properties(${objects} PROPERTIES
    POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_include_directories(${objects} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${objects} PRIVATE havrin_build_flags ${ARG_LINKS})

  add_library(${shared} SHARED $<TARGET_OBJECTS:${objects}>)
  add_library(${static} STATIC $<TARGET_OBJECTS:${objects}>)
  target_link_libraries(${shared} PUBLIC ${ARG_LINKS} PRIVATE $<BUILD_INTERFACE:havrin_build_flags>)
  target_link_libraries(${static} PUBLIC ${ARG_STATIC_LINKS})
  # Rows and block bodies are referred to for the life of the process, whoever opened the library.
  target_link_options(${shared} PRIVATE -Wl,-z,nodelete)
  if(NOT HAVRIN_SANITIZERS)  # whose entry points stand in the program
    target_link_options(${shared} PRIVATE -Wl,-z,defs)
  endif()
  set_target_properties(${shared} PROPERTIES
    EXPORT_NAME ${ARG_AS} LINKER_LANGUAGE CXX INSTALL_RPATH $ORIGIN
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  set_target_properties(${static} PROPERTIES EXPORT_NAME ${ARG_AS}Static LINKER_LANGUAGE CXX OUTPUT_NAME ${shared})
  foreach(library IN ITEMS ${shared} ${static})
    target_compile_features(${library} PUBLIC cxx_std_20)
    target_include_directories(${library} INTERFACE
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  endforeach()
  add_library(HavrinFoundation::${ARG_AS} ALIAS ${shared})
  add_library(HavrinFoundation::${ARG_AS}Static ALIAS ${static})
endfunction()

# havrin_sources(<name> HEADERS ... SOURCES ... LINKS ...): the public headers and the sources of one folder, and the
# third-party libraries that its sources (never its headers) use.
function(havrin_sources name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "HEADERS;SOURCES;LINKS")
  get_target_property(library HavrinFoundation::${name} ALIASED_TARGET)
  list(TRANSFORM ARG_HEADERS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  list(TRANSFORM ARG_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(${library} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARG_HEADERS})
  target_sources(${library}_objects PRIVATE ${ARG_SOURCES})
  # Builds of large units (CMAKE_UNITY_BUILD): every file of messages names its table of rows kRows, and json_decoder.cpp
  # has a member of an unnamed namespace's type, which g++ warns of outside a main file.
  list(FILTER ARG_SOURCES INCLUDE REGEX "(_messages|/json_decoder)\\.cpp$")
  set_source_files_properties(${ARG_SOURCES} DIRECTORY ${PROJECT_SOURCE_DIR}/HavrinFoundation
    PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  foreach(third_party IN LISTS ARG_LINKS)
    havrin_linker_name(linker_name ${third_party})
    target_link_libraries(${library}_objects PRIVATE ${third_party})
    target_link_libraries(${library} PRIVATE ${third_party})
    # Whoever links the installed static library finds the third-party ones where the linker does.
    target_link_libraries(${library}Static PRIVATE
      $<BUILD_INTERFACE:${third_party}> $<INSTALL_INTERFACE:${linker_name}>)
    set_property(GLOBAL APPEND PROPERTY HAVRIN_LINKER_NAMES_${name} ${linker_name})
  endforeach()
endfunction()

# The name by which a linker knows the library behind a target: crypto for OpenSSL::Crypto.
function(havrin_linker_name result target)
  set(ICU_uc icuuc)
  set(ICU_i18n icui18n)
  set(ICU_data icudata)
  set(OpenSSL_Crypto crypto)
  set(simdjson_simdjson simdjson)
  set(EXPAT_EXPAT expat)
  string(REPLACE "::" "_" key ${target})
  if(DEFINED ${key})
    set(${result} ${${key}} PARENT_SCOPE)
  elseif(target MATCHES "^[a-z0-9_]+$")
    set(${result} ${target} PARENT_SCOPE)
  else()
    message(FATAL_ERROR "havrin_linker_name does not know what the linker calls ${target}")
  endif()
endfunction()

# havrin_test(<name> SOURCES ... LIBRARIES ... TYPED THREADS): one test program, linked statically so that it reaches
# internal functions. TYPED: links the library Typed alone. THREADS: it is also run under the thread sanitizer.
function(havrin_test name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "TYPED;THREADS" "" "SOURCES;LIBRARIES")
  add_executable(${name} ${ARG_SOURCES})
  set(library HavrinFoundationStatic)
  if(ARG_TYPED)
    set(library TypedStatic)
  endif()
  target_link_libraries(${name} PRIVATE
    havrin_build_flags HavrinFoundation::${library} ${ARG_LIBRARIES} GTest::gtest GTest::gtest_main)
  set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300)
  if(ARG_THREADS)
    havrin_thread_test(${name})
  endif()
endfunction()

# havrin_thread_test(<name>): the test of this name, and the program of this name, are built and run under the thread
# sanitizer, too.
function(havrin_thread_test name)
  set_tests_properties(${name} PROPERTIES LABELS threads)
  if(NOT TARGET havrin_thread_tests)
    add_custom_target(havrin_thread_tests)
  endif()
  add_dependencies(havrin_thread_tests ${name})
endfunction()

# havrin_compile_failure(<name> SOURCE x.cpp EXPECT "text" ...): a test that compiles the file once for each EXPECT, with
# HAVRIN_CASE set to 1, 2, ..., and wants the compiler to refuse it with that text ("one piece ... another" asks for
# both); with HAVRIN_CASE 0 the file must compile, so that a refusal is about the case and nothing else. FLAGS are added in
# the cases from 1 on.
function(havrin_compile_failure name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "SOURCE" "EXPECT;FLAGS")
  list(JOIN ARG_EXPECT "\t" expected)
  add_test(NAME ${name} COMMAND ${CMAKE_COMMAND}
    -D compiler=${CMAKE_CXX_COMPILER} -D include=${PROJECT_SOURCE_DIR}
    -D source=${CMAKE_CURRENT_SOURCE_DIR}/${ARG_SOURCE} -D expected=${expected} -D flags=${ARG_FLAGS}
    -P ${PROJECT_SOURCE_DIR}/cmake/compile_failure.cmake)
  set_tests_properties(${name} PROPERTIES TIMEOUT 300)
endfunction()

# havrin_fuzz(<name> SOURCES ... CORPUS dir DICTIONARY file): one body, two builds: libFuzzer where asked for, and a
# replay of the corpus among the tests.
function(havrin_fuzz name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "CORPUS;DICTIONARY" "SOURCES;LIBRARIES")
  if(HAVRIN_BUILD_FUZZERS)
    add_executable(${name} ${ARG_SOURCES})
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_libraries(${name} PRIVATE havrin_build_flags HavrinFoundation::HavrinFoundationStatic ${ARG_LIBRARIES})
  endif()
  if(HAVRIN_BUILD_TESTS)
    add_executable(${name}_replay ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/fuzz/replay.cpp)
    target_link_libraries(${name}_replay PRIVATE
      havrin_build_flags HavrinFoundation::HavrinFoundationStatic ${ARG_LIBRARIES})
    add_test(NAME ${name}_replay COMMAND ${name}_replay ${CMAKE_CURRENT_SOURCE_DIR}/${ARG_CORPUS})
    set_tests_properties(${name}_replay PROPERTIES TIMEOUT 300)
  endif()
endfunction()

# havrin_benchmark(<name> SOURCES ... LIBRARIES ...): one benchmark program with its peers, release builds only.
function(havrin_benchmark name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;LIBRARIES")
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE
    havrin_build_flags HavrinFoundation::HavrinFoundation ${ARG_LIBRARIES} benchmark::benchmark)
  set_property(GLOBAL APPEND PROPERTY HAVRIN_BENCHMARKS ${name})
endfunction()
